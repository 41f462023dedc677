// SPDX-License-Identifier: Apache-2.0
#include "peersocket.h"

#include <winsock2.h>
#include <ws2tcpip.h>

namespace PeerSocket {

namespace {

// Winsock needs WSAStartup once per process before any other call; the module's link does its own.
void StartWinsock() {
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    (void)started;
}

SOCKET Handle(int socket) {
    return static_cast<SOCKET>(socket);
}

} // namespace

int Listen(const std::string& address, uint16_t port, int backlog) {
    StartWinsock();
    const SOCKET s = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (s == INVALID_SOCKET)
        return -1;
    // Not SO_REUSEADDR: on Windows it lets a second listener take the port; exclusive use is the
    // behaviour the POSIX twin gets by default.
    BOOL exclusive = TRUE;
    setsockopt(s, SOL_SOCKET, SO_EXCLUSIVEADDRUSE, reinterpret_cast<const char*>(&exclusive),
               sizeof exclusive);
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = htons(port);
    if (inet_pton(AF_INET, address.c_str(), &sa.sin_addr) != 1 ||
        ::bind(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0 || ::listen(s, backlog) != 0) {
        closesocket(s);
        return -1;
    }
    return static_cast<int>(s);
}

int Accept(int listening, int timeoutMs) {
    if (!WaitReadable(listening, timeoutMs))
        return -1;
    const SOCKET s = ::accept(Handle(listening), nullptr, nullptr);
    return s == INVALID_SOCKET ? -1 : static_cast<int>(s);
}

bool WaitReadable(int socket, int timeoutMs) {
    WSAPOLLFD p{Handle(socket), POLLRDNORM, 0};
    return WSAPoll(&p, 1, timeoutMs) > 0;
}

long Receive(int socket, void* buffer, size_t count) {
    return ::recv(Handle(socket), static_cast<char*>(buffer), int(count), 0);
}

bool SendAll(int socket, const void* buffer, size_t count) {
    size_t sent = 0;
    while (sent < count) {
        const int n = ::send(Handle(socket), static_cast<const char*>(buffer) + sent, int(count - sent), 0);
        if (n == SOCKET_ERROR && WSAGetLastError() == WSAEWOULDBLOCK)
            continue;
        if (n <= 0)
            return false;
        sent += size_t(n);
    }
    return true;
}

void ShutdownWrite(int socket) {
    ::shutdown(Handle(socket), SD_SEND);
}

void ShutdownBoth(int socket) {
    ::shutdown(Handle(socket), SD_BOTH);
}

void Close(int socket) {
    closesocket(Handle(socket));
}

unsigned ProcessId() {
    return unsigned(GetCurrentProcessId());
}

} // namespace PeerSocket
