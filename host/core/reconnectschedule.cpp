// SPDX-License-Identifier: Apache-2.0
#include "reconnectschedule.h"

#include <algorithm>

ReconnectSchedule::ReconnectSchedule(uint32_t seed) : m_random(seed == 0 ? 1 : seed) {}

int64_t ReconnectSchedule::BaseDelayMs(int attempt) {
    if (attempt <= 1)
        return kFirstDelayMs;
    // Doubling stops before it could overflow: 2^5 s already exceeds the longest wait.
    const int doublings = std::min(attempt - 1, 5);
    return std::min(kFirstDelayMs << doublings, kLongestDelayMs);
}

int64_t ReconnectSchedule::JitterMs(int attempt) {
    return std::max(BaseDelayMs(attempt) * kJitterPercent / 100, kLeastJitterMs);
}

void ReconnectSchedule::Start(int64_t nowMs) {
    m_active = true;
    m_attempt = 1;
    Schedule(nowMs);
}

void ReconnectSchedule::AttemptFailed(int64_t nowMs) {
    if (!m_active)
        return;
    ++m_attempt;
    Schedule(nowMs);
}

void ReconnectSchedule::DueNow(int64_t nowMs) {
    if (m_active)
        m_dueAtMs = std::min(m_dueAtMs, nowMs);
}

void ReconnectSchedule::Stop() {
    m_active = false;
    m_attempt = 0;
}

int64_t ReconnectSchedule::SecondsLeft(int64_t nowMs) const {
    if (!m_active || nowMs >= m_dueAtMs)
        return 0;
    return (m_dueAtMs - nowMs + 999) / 1000;
}

void ReconnectSchedule::Schedule(int64_t nowMs) {
    const int64_t spread = JitterMs(m_attempt);
    std::uniform_int_distribution<int64_t> jitter(-spread, spread);
    m_dueAtMs = nowMs + BaseDelayMs(m_attempt) + jitter(m_random);
}
