// SPDX-License-Identifier: Apache-2.0
#pragma once
// The link reports Winsock error numbers on every platform, so that users and logs see the same numbers
// whatever the workstation runs.
#include <string>

enum : int {
    kErrBadFile = 9,   // no open file
    kErrInvalid = 22,  // bad argument
    kErrTooLarge = 34, // frame or result too large
    kWsaWouldBlock = 10035,
    kWsaNotSock = 10038,
    kWsaAddrNotAvail = 10049,
    kWsaNetDown = 10050,
    kWsaNetUnreach = 10051,
    kWsaConnAborted = 10053,
    kWsaConnReset = 10054,
    kWsaNoBufs = 10055,
    kWsaNotConn = 10057,
    kWsaShutdown = 10058,
    kWsaTimedOut = 10060,
    kWsaConnRefused = 10061,
    kWsaHostDown = 10064,
    kWsaHostUnreach = 10065,
};

// Maps a POSIX errno value to its Winsock number; values without a counterpart pass through unchanged.
// Not on Windows, where the socket calls report Winsock numbers themselves.
int WinsockFromErrno(int err);
// The Winsock number of the calling thread's last socket error (WSAGetLastError on Windows).
int LastSocketError();
// The C library's text for one of its error numbers; empty when it has none.
std::string SystemErrorText(int code);
// A short meaning of an error number ("connection timed out"); empty when unknown.
std::wstring ErrorMeaning(int code);
// Back ends with numbers of their own (FTP replies, ...) add their meanings here; a source answers an
// empty text for numbers it does not know. Sources are asked after the built-in table, in order.
void RegisterErrorMeaningSource(std::wstring (*source)(int code));
void UnregisterErrorMeaningSource(std::wstring (*source)(int code));
// "10060 (connection timed out)", or just the number when no meaning is known.
std::wstring DescribeError(int code);
