// SPDX-License-Identifier: Apache-2.0
#include "loopbackpeer.h"

#include "loopback.h"
#include "peersocket.h"

#include <algorithm>
#include <chrono>

LoopbackPeer::LoopbackPeer(Handler handler, uint16_t port, const std::string& address, int backlog)
    : m_handler(std::move(handler)), m_address(address.empty() ? FreshLoopbackAddress() : address),
      m_listen(PeerSocket::Listen(m_address, port, backlog)) {
    if (m_listen >= 0 && m_handler)
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
        PeerSocket::Close(m_listen);
}

std::wstring LoopbackPeer::host() const {
    return std::wstring(m_address.begin(), m_address.end());
}

void LoopbackPeer::AcceptLoop() {
    while (!m_stop) {
        const int s = PeerSocket::Accept(m_listen, 20);
        if (s < 0)
            continue;
        ++m_connections;
        m_handlerThreads.emplace_back([this, s] {
            m_handler(s);
            PeerSocket::Close(s);
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
        if (!PeerSocket::WaitReadable(socket, std::min(left, 50)))
            continue;
        const long n = PeerSocket::Receive(socket, static_cast<char*>(buffer) + got, count - got);
        if (n <= 0)
            return false;
        got += size_t(n);
    }
    return true;
}

bool LoopbackPeer::WaitReadable(int socket, int timeoutMs) {
    return PeerSocket::WaitReadable(socket, timeoutMs);
}

void LoopbackPeer::ShutdownWrite(int socket) {
    PeerSocket::ShutdownWrite(socket);
}

void LoopbackPeer::ShutdownBoth(int socket) {
    PeerSocket::ShutdownBoth(socket);
}

bool LoopbackPeer::WriteAll(int socket, const void* buffer, size_t count) {
    return PeerSocket::SendAll(socket, buffer, count);
}

std::vector<uint8_t> LoopbackPeer::ReadUntilClosed(int socket, int timeoutMs) {
    std::vector<uint8_t> data;
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (std::chrono::steady_clock::now() < deadline) {
        if (!PeerSocket::WaitReadable(socket, 20))
            continue;
        uint8_t buffer[4096];
        const long n = PeerSocket::Receive(socket, buffer, sizeof buffer);
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
