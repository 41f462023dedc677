// SPDX-License-Identifier: Apache-2.0
#include "scriptedlink.h"

#include "linkframe.h"
#include "pumpwait.h"
#include "sensorlink.h"
#include "winsockerror.h"

#include <algorithm>
#include <cstring>

namespace {

const uint8_t* g_script = nullptr;
size_t g_left = 0;
thread_local PumpDispatcher* t_dispatcher = nullptr;
uint32_t g_tick = 0;
uint32_t g_lastRequestId = 0;
constexpr LinkSocket kOpenSocket = 3;
constexpr int kArgumentOffset = 16;

uint32_t LittleEndianAt(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void NoteSent(const uint8_t* bytes, int count) {
    if (count >= kFrameHeaderSize && LittleEndianAt(bytes) == kFrameMarker &&
        (bytes[4] | bytes[5] << 8) == kFrameRequest)
        g_lastRequestId = LittleEndianAt(bytes + kArgumentOffset);
}

void SubstituteId(uint8_t* bytes, int count) {
    if (count >= kArgumentOffset + 4 && LittleEndianAt(bytes) == kFrameMarker &&
        LittleEndianAt(bytes + kArgumentOffset) == kLastRequestId)
        for (int i = 0; i < 4; ++i)
            bytes[kArgumentOffset + i] = uint8_t(g_lastRequestId >> (8 * i));
}

} // namespace

void SetLinkScript(const uint8_t* data, size_t size) {
    g_script = data;
    g_left = size;
}

size_t LinkScriptLeft() {
    return g_left;
}

// ---- the waits: time passes only by being asked for ----

PumpDispatcher* SetThreadPumpDispatcher(PumpDispatcher* dispatcher) {
    PumpDispatcher* previous = t_dispatcher;
    t_dispatcher = dispatcher;
    return previous;
}

PumpDispatcher* ThreadPumpDispatcher() {
    return t_dispatcher;
}

uint32_t TickCount() {
    return g_tick += 10;
}

void PumpWait(uint32_t) {}

bool PumpWaitSocket(intptr_t, bool, int) {
    return true;
}

// ---- the link ----

SensorLink::SensorLink(std::function<void()> onTimeout) : m_onTimeout(std::move(onTimeout)) {}

SensorLink::~SensorLink() = default;

void SensorLink::Open(const std::wstring&, uint16_t) {
    std::lock_guard lock(m_lock);
    m_lastError = 0;
    m_socket = kOpenSocket;
}

void SensorLink::Close() {
    std::lock_guard lock(m_lock);
    m_socket = kInvalidSocket;
}

bool SensorLink::IsOpen() const {
    std::lock_guard lock(m_lock);
    return m_socket != kInvalidSocket;
}

int SensorLink::LastError() const {
    std::lock_guard lock(m_lock);
    return m_lastError;
}

void SensorLink::SetLastError(int error) {
    std::lock_guard lock(m_lock);
    m_lastError = error;
}

int SensorLink::Receive(void* buffer, int count) {
    return Transfer(buffer, count, false);
}

int SensorLink::Send(const void* buffer, int count) {
    return Transfer(const_cast<void*>(buffer), count, true);
}

// The real link's checks in the same order; a receive that wants more than is left times out.
int SensorLink::Transfer(void* buffer, int count, bool sending) {
    std::lock_guard lock(m_lock);
    if (m_socket == kInvalidSocket) {
        m_lastError = kWsaNotConn;
        return -1;
    }
    if (buffer == nullptr || count < 0) {
        m_lastError = kErrInvalid;
        return -1;
    }
    if (count == 0)
        return 0;
    if (sending) {
        NoteSent(static_cast<const uint8_t*>(buffer), count);
        return count;
    }
    if (size_t(count) > g_left) {
        g_left = 0;
        m_lastError = kWsaTimedOut;
        if (m_onTimeout)
            m_onTimeout();
        return -1;
    }
    std::memcpy(buffer, g_script, size_t(count));
    SubstituteId(static_cast<uint8_t*>(buffer), count);
    g_script += count;
    g_left -= size_t(count);
    return count;
}
