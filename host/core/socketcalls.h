// SPDX-License-Identifier: Apache-2.0
#pragma once
// The platform's socket calls as the link uses them: Winsock 2 on Windows, BSD sockets elsewhere. A
// handle is an intptr_t on both (Winsock's INVALID_SOCKET is -1 there too). Errors are Winsock numbers
// (LastSocketError): on Windows as WSAGetLastError gives them, elsewhere mapped from errno.
#include <cstdint>
#include <string>

using SocketHandle = intptr_t;
inline constexpr SocketHandle kNoSocket = -1;

// A non-blocking IPv4 stream socket that child processes do not inherit; kNoSocket on failure. Starts
// the socket library first when the platform has one (WSAStartup, once per process).
SocketHandle OpenStreamSocket();
// Starts connecting to `address` (network order) and `port`: 0 when connected at once, otherwise
// the error (kWsaWouldBlock while the connection is still being made).
int StartConnect(SocketHandle socket, uint32_t address, uint16_t port);
// Zero-time-out test of the connect poll ("select with the socket in the write set only"): 1 writable,
// 0 not yet, -1 failure (the error is then LastSocketError()).
int PollWritableNow(SocketHandle socket);
// Waits up to `ms` for the socket: -1 on a failure of the wait, 0 on time-out, 1 when ready (errors
// and hang-ups count as ready: the next send or receive reports them).
int WaitForSocket(SocketHandle socket, bool forWrite, int ms);
// One send or receive of at most `count` bytes: the count moved, or -1 (LastSocketError() says why).
// A send to a closed peer fails with an error; it never raises a signal.
long SendSome(SocketHandle socket, const char* bytes, int count);
long ReceiveSome(SocketHandle socket, char* bytes, int count);
// Whether a failed call is to be retried after a wait (would block; interrupted by a signal).
bool IsRetryableSocketError(int error);
// Wakes every wait on the socket (both directions shut down), without closing it.
void ShutDownSocket(SocketHandle socket);
void CloseSocket(SocketHandle socket);
// A dotted IPv4 address or a host name resolved to an IPv4 address in network order; 0 on failure.
uint32_t ResolveIPv4(const std::string& host);
