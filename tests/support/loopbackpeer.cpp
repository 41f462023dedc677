// SPDX-License-Identifier: Apache-2.0
#include "loopbackpeer.h"

#include "loopback.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

LoopbackPeer::LoopbackPeer(Handler handler, uint16_t port, const std::string& address, int backlog)
    : m_handler(std::move(handler)), m_address(address.empty() ? FreshLoopbackAddress() : address) {
    m_listen = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int one = 1;
    setsockopt(m_listen, SOL_SOCKET, SO_REUSEADDR, &one, sizeof one);
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = htons(port);
    inet_pton(AF_INET, m_address.c_str(), &sa.sin_addr);
    if (::bind(m_listen, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0 ||
        ::listen(m_listen, backlog) != 0) {
        ::close(m_listen);
        m_listen = -1;
        return;
    }
    if (m_handler)
        m_acceptThread = std::thread([this] { AcceptLoop(); });
}

LoopbackPeer::~LoopbackPeer() {
    m_stop = true;
    if (m_acceptThread.joinable())
        m_acceptThread.join();
    for (std::thread& t : m_handlerThreads)
        if (t.joinable())
            t.join();
    if (m_listen >= 0)
        ::close(m_listen);
}

std::wstring LoopbackPeer::host() const {
    return std::wstring(m_address.begin(), m_address.end());
}

void LoopbackPeer::AcceptLoop() {
    while (!m_stop) {
        pollfd p{m_listen, POLLIN, 0};
        if (poll(&p, 1, 20) <= 0)
            continue;
        int s = ::accept4(m_listen, nullptr, nullptr, SOCK_CLOEXEC);
        if (s < 0)
            continue;
        ++m_connections;
        m_handlerThreads.emplace_back([this, s] {
            m_handler(s);
            ::close(s);
        });
    }
}

bool LoopbackPeer::ReadExactly(int socket, void* buffer, size_t count, int timeoutMs) {
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    size_t got = 0;
    while (got < count) {
        int left = int(
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now())
                .count());
        if (left <= 0)
            return false;
        pollfd p{socket, POLLIN, 0};
        if (poll(&p, 1, std::min(left, 50)) <= 0)
            continue;
        ssize_t n = ::recv(socket, static_cast<char*>(buffer) + got, count - got, 0);
        if (n <= 0)
            return false;
        got += size_t(n);
    }
    return true;
}

bool LoopbackPeer::WriteAll(int socket, const void* buffer, size_t count) {
    size_t sent = 0;
    while (sent < count) {
        ssize_t n = ::send(socket, static_cast<const char*>(buffer) + sent, count - sent, MSG_NOSIGNAL);
        if (n <= 0) {
            if (n < 0 && (errno == EAGAIN || errno == EINTR))
                continue;
            return false;
        }
        sent += size_t(n);
    }
    return true;
}

std::vector<uint8_t> LoopbackPeer::ReadUntilClosed(int socket, int timeoutMs) {
    std::vector<uint8_t> data;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (std::chrono::steady_clock::now() < deadline) {
        pollfd p{socket, POLLIN, 0};
        if (poll(&p, 1, 20) <= 0)
            continue;
        uint8_t buffer[4096];
        ssize_t n = ::recv(socket, buffer, sizeof buffer, 0);
        if (n <= 0)
            break;
        data.insert(data.end(), buffer, buffer + n);
    }
    return data;
}

std::vector<uint8_t> HexBytes(const std::string& hex) {
    std::vector<uint8_t> out;
    int nibbles = 0, value = 0;
    for (char c : hex) {
        int v;
        if (c >= '0' && c <= '9')
            v = c - '0';
        else if (c >= 'a' && c <= 'f')
            v = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            v = c - 'A' + 10;
        else
            continue;
        value = value * 16 + v;
        if (++nibbles == 2) {
            out.push_back(uint8_t(value));
            nibbles = value = 0;
        }
    }
    return out;
}
