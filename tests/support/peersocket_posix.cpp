// SPDX-License-Identifier: Apache-2.0
#include "peersocket.h"

#include <cerrno>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace PeerSocket {

int Listen(const std::string& address, uint16_t port, int backlog) {
    const int s = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (s < 0)
        return -1;
    int one = 1;
    setsockopt(s, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &sa.sin_addr) != 1 ||
        ::bind(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0 || ::listen(s, backlog) != 0) {
        ::close(s);
        return -1;
    }
    return s;
}

int Accept(int listening, int timeoutMs) {
    if (!WaitReadable(listening, timeoutMs))
        return -1;
    return ::accept4(listening, nullptr, nullptr, SOCK_CLOEXEC);
}

bool WaitReadable(int socket, int timeoutMs) {
    pollfd p{socket, POLLIN, 0};
    return poll(&p, 1, timeoutMs) > 0;
}

long Receive(int socket, void* buffer, size_t count) {
    return long(::recv(socket, buffer, count, 0));
}

bool SendAll(int socket, const void* buffer, size_t count) {
    size_t sent = 0;
    while (sent < count) {
        const ssize_t n = ::send(socket, static_cast<const char*>(buffer) + sent, count - sent, MSG_NOSIGNAL);
        if (n < 0 && (errno == EAGAIN || errno == EINTR))
            continue;
        if (n <= 0)
            return false;
        sent += size_t(n);
    }
    return true;
}

void ShutdownWrite(int socket) {
    ::shutdown(socket, SHUT_WR);
}

void ShutdownBoth(int socket) {
    ::shutdown(socket, SHUT_RDWR);
}

void Close(int socket) {
    ::close(socket);
}

unsigned ProcessId() {
    return unsigned(getpid());
}

} // namespace PeerSocket
