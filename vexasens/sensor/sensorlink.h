// SPDX-License-Identifier: Apache-2.0
#pragma once
// One TCP connection to an instrument with the link's timed primitives. The sensor object keeps one for
// files and listings; the communication channel keeps a second one for commands, so status polling
// never interleaves with a transfer.
//
// Every socket operation holds the link's recursive lock for that one call. The waits dispatch the
// calling thread's events (PumpWait), so a handler on the same thread may re-enter the link.
#include "socketcalls.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>

using LinkSocket = SocketHandle;
inline constexpr LinkSocket kInvalidSocket = kNoSocket;

inline constexpr uint16_t kLinkPort = 4840;
inline constexpr uint32_t kConnectLimitMs = 5000;
inline constexpr uint32_t kReceiveLimitMs = 3000; // from the start of the call
inline constexpr uint32_t kSendLimitMs = 3000;    // from the last progress

class SensorLink {
public:
    // `onTimeout` is called (under the lock) when a send or receive runs past its limit; the sensor
    // object passes its Disconnect(0).
    explicit SensorLink(std::function<void()> onTimeout = {});
    ~SensorLink();
    SensorLink(const SensorLink&) = delete;
    SensorLink& operator=(const SensorLink&) = delete;

    // Opens the connection to host:port and sends the hello frame. The outcome is IsOpen() and
    // LastError() (22 unresolvable host, 10060 after 5000 ms, or the socket's error).
    void Open(const std::wstring& host, uint16_t port = kLinkPort);
    // Closes the connection. A send or receive in progress on another thread ends at once with 10057
    // instead of holding the caller up to its time limit.
    void Close();
    bool IsOpen() const;
    int Receive(void* buffer, int count);
    int Send(const void* buffer, int count);
    int LastError() const;
    void SetLastError(int error);
    std::recursive_mutex& Lock() const { return m_lock; }

private:
    int Transfer(void* buffer, int count, bool sending);
    void Interrupt();

    std::function<void()> m_onTimeout;
    LinkSocket m_socket = kInvalidSocket; // changed only with both locks held
    mutable std::recursive_mutex m_lock;
    // Guards the socket handle alone, so Interrupt can reach it while another thread holds m_lock.
    std::mutex m_handleLock;
    std::atomic<bool> m_interrupted{false};
    int m_lastError = 0;
};
