// SPDX-License-Identifier: Apache-2.0
#include "socketcalls.h"

#include "winsockerror.h"

#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

SocketHandle OpenStreamSocket() {
    const int s = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (s < 0)
        return kNoSocket;
    const int flags = fcntl(s, F_GETFL, 0);
    if (flags < 0 || fcntl(s, F_SETFL, flags | O_NONBLOCK) != 0) {
        const int error = errno;
        ::close(s);
        errno = error;
        return kNoSocket;
    }
    return s;
}

int StartConnect(SocketHandle socket, uint32_t address, uint16_t port) {
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = htons(port);
    sa.sin_addr.s_addr = address;
    if (::connect(int(socket), reinterpret_cast<sockaddr*>(&sa), sizeof sa) == 0)
        return 0;
    return errno == EINPROGRESS ? kWsaWouldBlock : LastSocketError();
}

int PollWritableNow(SocketHandle socket) {
    pollfd p{int(socket), POLLOUT, 0};
    const int r = poll(&p, 1, 0);
    if (r < 0)
        return errno == EINTR ? 0 : -1;
    return (r > 0 && (p.revents & (POLLOUT | POLLERR | POLLHUP))) ? 1 : 0;
}

int WaitForSocket(SocketHandle socket, bool forWrite, int ms) {
    pollfd fd{};
    fd.fd = int(socket);
    fd.events = forWrite ? POLLOUT : POLLIN;
    const int n = poll(&fd, 1, ms);
    if (n < 0)
        return errno == EINTR ? 0 : -1;
    return n == 0 ? 0 : 1;
}

long SendSome(SocketHandle socket, const char* bytes, int count) {
    return ::send(int(socket), bytes, size_t(count), MSG_NOSIGNAL);
}

long ReceiveSome(SocketHandle socket, char* bytes, int count) {
    return ::recv(int(socket), bytes, size_t(count), 0);
}

bool IsRetryableSocketError(int error) {
    return error == kWsaWouldBlock || error == EINTR;
}

void ShutDownSocket(SocketHandle socket) {
    ::shutdown(int(socket), SHUT_RDWR);
}

void CloseSocket(SocketHandle socket) {
    ::close(int(socket));
}

uint32_t ResolveIPv4(const std::string& host) {
    in_addr address{};
    if (inet_pton(AF_INET, host.c_str(), &address) == 1)
        return address.s_addr;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* result = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &result) != 0 || result == nullptr)
        return 0;
    uint32_t value = 0;
    for (const addrinfo* ai = result; ai != nullptr; ai = ai->ai_next) {
        if (ai->ai_family == AF_INET && ai->ai_addr != nullptr) {
            value = reinterpret_cast<const sockaddr_in*>(ai->ai_addr)->sin_addr.s_addr;
            break;
        }
    }
    freeaddrinfo(result);
    return value;
}
