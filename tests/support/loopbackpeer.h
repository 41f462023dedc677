// SPDX-License-Identifier: Apache-2.0
#pragma once
// An in-process TCP peer on a loopback address and the instrument's port, scripted by the test: it
// accepts one connection at a time and runs the test's handler on it in its own thread. The handler
// gets the connected socket and may read, write, stall, trickle or close as it likes.
#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

class LoopbackPeer {
public:
    using Handler = std::function<void(int socket)>;

    // Listens on a fresh loopback address (or the given one) at `port`; backlog as given.
    explicit LoopbackPeer(Handler handler, uint16_t port = 4840, const std::string& address = {},
                          int backlog = 8);
    ~LoopbackPeer();
    LoopbackPeer(const LoopbackPeer&) = delete;
    LoopbackPeer& operator=(const LoopbackPeer&) = delete;

    const std::string& address() const { return m_address; }
    std::wstring host() const;
    bool listening() const { return m_listen >= 0; }
    int connections() const { return m_connections.load(); }
    // Asks handlers to end: stopping() turns true; the destructor waits for the handler threads.
    bool stopping() const { return m_stop.load(); }

    // Helpers for handlers. Each returns false when the peer closed or the test is stopping.
    static bool ReadExactly(int socket, void* buffer, size_t count, int timeoutMs = 5000);
    static bool WriteAll(int socket, const void* buffer, size_t count);
    // True when something (or the end of the stream) can be read within `timeoutMs`.
    static bool WaitReadable(int socket, int timeoutMs);
    // Reads whatever arrives until the other side closes or `timeoutMs` passes.
    static std::vector<uint8_t> ReadUntilClosed(int socket, int timeoutMs);
    // Ends the peer's sending (the module reads the end of the stream) or both directions.
    static void ShutdownWrite(int socket);
    static void ShutdownBoth(int socket);

private:
    void AcceptLoop();

    Handler m_handler;
    std::string m_address;
    int m_listen;
    std::atomic<bool> m_stop{false};
    std::atomic<int> m_connections{0};
    std::thread m_acceptThread;
    std::vector<std::thread> m_handlerThreads;
};

// Builds frames byte by byte for tests (independent of the module's own frame code).
std::vector<uint8_t> HexBytes(const std::string& hex);
