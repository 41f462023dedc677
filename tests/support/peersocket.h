// SPDX-License-Identifier: Apache-2.0
#pragma once
// The few socket calls the tests' own peers make, on each platform's API (peersocket_posix.cpp,
// peersocket_win.cpp), so the link's tests run against the same scripted peers on both. Sockets are
// ints: Windows keeps its socket handles within 32 bits.
#include <cstddef>
#include <cstdint>
#include <string>

namespace PeerSocket {

// A listening socket on `address`:`port`, or -1.
int Listen(const std::string& address, uint16_t port, int backlog);
// A connection accepted within `timeoutMs`, or -1.
int Accept(int listening, int timeoutMs);
// True when data (or the end of the stream) can be read within `timeoutMs`.
bool WaitReadable(int socket, int timeoutMs);
// Bytes received (0: the other side closed; negative: an error).
long Receive(int socket, void* buffer, size_t count);
// Writes everything; false when the other side is gone.
bool SendAll(int socket, const void* buffer, size_t count);
// Ends our sending (the other side reads the end of the stream) or both directions.
void ShutdownWrite(int socket);
void ShutdownBoth(int socket);
void Close(int socket);
// This process's id, for addresses that differ between test programs running side by side.
unsigned ProcessId();

} // namespace PeerSocket
