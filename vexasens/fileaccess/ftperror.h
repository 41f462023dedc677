// SPDX-License-Identifier: Apache-2.0
#pragma once
// Error numbers of the FTP back end. A failed FTP operation keeps one number:
// - 9 (no open file) and 22 (bad argument), as every back end;
// - the server's reply code (400-599) when the server refused the command, e.g. 530 login refused,
//   550 file not found;
// - otherwise the FTP library's own number: on Windows WinINet's error (12002 timed out, 12029
//   cannot connect, ...), elsewhere kFtpCurlErrorBase + the libcurl result code (12007 could not
//   connect, 12028 timed out, 12018 partial file, 12056 receive failure, ...).
#include <string>

inline constexpr int kFtpCurlErrorBase = 12000;
// The library's numbers stay below this; numbers from kFtpCurlErrorBase up to here are the library's.
inline constexpr int kFtpCurlErrorLimit = 12200;
// The ones a caller may want to tell apart: the instrument is not reachable over FTP.
extern const int kFtpErrCannotResolve;
extern const int kFtpErrCannotConnect;
extern const int kFtpErrTimedOut;

// A short meaning of an FTP back-end error number ("file not found or not accessible"); empty when the
// number is not one of the FTP numbers above.
std::wstring FtpErrorMeaning(int code);
// Whether the number says the FTP server could not be reached at all (name, connection, time-out).
bool IsFtpUnreachableError(int code);
// The meanings of the FTP server's refusal codes (4xx, 5xx); empty for other numbers.
std::wstring FtpReplyMeaning(int code);
