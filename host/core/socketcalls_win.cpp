// SPDX-License-Identifier: Apache-2.0
#include "socketcalls.h"

#include "winsockerror.h"

#include <winsock2.h>
#include <ws2tcpip.h>

namespace {

// WSAStartup once per process, before the first socket or name lookup; never undone (the process's
// end releases Winsock).
bool WinsockStarted() {
    static const bool started = [] {
        WSADATA data{};
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started;
}

SOCKET Native(SocketHandle socket) {
    return static_cast<SOCKET>(socket);
}

} // namespace

SocketHandle OpenStreamSocket() {
    if (!WinsockStarted())
        return kNoSocket;
    const SOCKET s = WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0, WSA_FLAG_NO_HANDLE_INHERIT);
    if (s == INVALID_SOCKET)
        return kNoSocket;
    u_long on = 1;
    if (ioctlsocket(s, FIONBIO, &on) != 0) {
        const int error = WSAGetLastError();
        closesocket(s);
        WSASetLastError(error);
        return kNoSocket;
    }
    return static_cast<SocketHandle>(s);
}

int StartConnect(SocketHandle socket, uint32_t address, uint16_t port) {
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = htons(port);
    sa.sin_addr.s_addr = address;
    if (connect(Native(socket), reinterpret_cast<sockaddr*>(&sa), sizeof sa) == 0)
        return 0;
    return WSAGetLastError();
}

int PollWritableNow(SocketHandle socket) {
    fd_set writeSet;
    FD_ZERO(&writeSet);
    FD_SET(Native(socket), &writeSet);
    timeval zero{0, 0};
    const int r = select(0, nullptr, &writeSet, nullptr, &zero);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

// A connect that fails shows only in select's error set, which is left out on purpose: the connect
// poll takes writability alone, and a refused connection then ends at its time limit, not in a spin.
int WaitForSocket(SocketHandle socket, bool forWrite, int ms) {
    fd_set readySet;
    FD_ZERO(&readySet);
    FD_SET(Native(socket), &readySet);
    timeval limit{ms / 1000, (ms % 1000) * 1000};
    const int r = select(0, forWrite ? nullptr : &readySet, forWrite ? &readySet : nullptr, nullptr, &limit);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

long SendSome(SocketHandle socket, const char* bytes, int count) {
    return send(Native(socket), bytes, count, 0);
}

long ReceiveSome(SocketHandle socket, char* bytes, int count) {
    return recv(Native(socket), bytes, count, 0);
}

bool IsRetryableSocketError(int error) {
    return error == WSAEWOULDBLOCK || error == WSAEINTR;
}

void ShutDownSocket(SocketHandle socket) {
    shutdown(Native(socket), SD_BOTH);
}

void CloseSocket(SocketHandle socket) {
    closesocket(Native(socket));
}

uint32_t ResolveIPv4(const std::string& host) {
    if (!WinsockStarted())
        return 0;
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
