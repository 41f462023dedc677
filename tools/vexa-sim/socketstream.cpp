// SPDX-License-Identifier: Apache-2.0
#include "socketstream.h"

#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

SocketStream::SocketStream(int fd) : m_fd(fd) {}

SocketStream::~SocketStream() {
    ::close(m_fd);
}

bool SocketStream::ReadExactly(void* buffer, std::size_t count) {
    auto* bytes = static_cast<char*>(buffer);
    while (count > 0) {
        const ssize_t received = ::recv(m_fd, bytes, count, 0);
        if (received < 0 && errno == EINTR)
            continue;
        if (received <= 0)
            return false;
        bytes += received;
        count -= static_cast<std::size_t>(received);
    }
    return true;
}

bool SocketStream::WriteAll(const void* buffer, std::size_t count) {
    auto* bytes = static_cast<const char*>(buffer);
    while (count > 0) {
        const ssize_t sent = ::send(m_fd, bytes, count, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        bytes += sent;
        count -= static_cast<std::size_t>(sent);
    }
    return true;
}

bool SocketStream::WriteAll(const void* head, std::size_t headCount, const void* body,
                            std::size_t bodyCount) {
    if (headCount + bodyCount == 0)
        return true;
    iovec parts[2] = {{const_cast<void*>(head), headCount}, {const_cast<void*>(body), bodyCount}};
    iovec* next = parts;
    int left = 2;
    while (left > 0) {
        msghdr message{};
        message.msg_iov = next;
        message.msg_iovlen = static_cast<std::size_t>(left);
        ssize_t sent = ::sendmsg(m_fd, &message, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            return false;
        // Skips the parts that left whole (an empty one included), then trims the one cut short.
        while (left > 0 && static_cast<std::size_t>(sent) >= next->iov_len) {
            sent -= static_cast<ssize_t>(next->iov_len);
            ++next;
            --left;
        }
        if (left > 0) {
            next->iov_base = static_cast<char*>(next->iov_base) + sent;
            next->iov_len -= static_cast<std::size_t>(sent);
        }
    }
    return true;
}

void SocketStream::SendImmediately() {
    const int on = 1;
    ::setsockopt(m_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

void SocketStream::Shutdown() {
    ::shutdown(m_fd, SHUT_RDWR);
}
