// SPDX-License-Identifier: Apache-2.0
#pragma once
// One accepted TCP connection: exact reads, complete writes, and a shutdown that any thread may call
// to wake the connection's own thread out of a blocked read or write.
#include <cstddef>

class SocketStream {
public:
    explicit SocketStream(int fd);
    ~SocketStream();
    SocketStream(const SocketStream&) = delete;
    SocketStream& operator=(const SocketStream&) = delete;

    // False when the peer closed the connection or the socket failed before `count` bytes came.
    bool ReadExactly(void* buffer, std::size_t count);
    bool WriteAll(const void* buffer, std::size_t count);
    // Writes two buffers back to back with as few system calls as one would take: a frame's header
    // and its payload leave without being copied together first.
    bool WriteAll(const void* head, std::size_t headCount, const void* body, std::size_t bodyCount);
    // Turns Nagle's algorithm off, so single bytes leave at once (the trickle fault).
    void SendImmediately();
    // Ends both directions; safe from another thread while this one is blocked.
    void Shutdown();

private:
    int m_fd;
};
