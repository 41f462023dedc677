// SPDX-License-Identifier: Apache-2.0
#pragma once
// When to try again an instrument that went away by itself: 1, 2, 4, 8 and 16 s after the drop and
// after each failed attempt, then every 30 s, each wait moved at random by up to 20 % and by at least
// 600 ms either way, so that a fleet that dropped together does not come back in step (20 % of the
// first step alone would keep fifty instruments within 400 ms of each other). Times are the caller's
// clock in milliseconds, so the schedule runs as well on a fake clock as on a real one. Not
// thread-safe: one owner drives it.
#include <cstdint>
#include <random>

class ReconnectSchedule {
public:
    static constexpr int64_t kFirstDelayMs = 1000;
    static constexpr int64_t kLongestDelayMs = 30000;
    static constexpr int kJitterPercent = 20;
    static constexpr int64_t kLeastJitterMs = 600;

    // `seed` feeds the jitter; schedules of one fleet need different seeds.
    explicit ReconnectSchedule(uint32_t seed);

    // The instrument dropped at `nowMs`: attempt 1 becomes due one first step later.
    void Start(int64_t nowMs);
    // The attempt made at `nowMs` failed: the next one is due one step later.
    void AttemptFailed(int64_t nowMs);
    // The operator asked to try now: the pending attempt is due at once, the count stays.
    void DueNow(int64_t nowMs);
    // Back on line, taken off line or removed: nothing more is due.
    void Stop();

    bool IsActive() const { return m_active; }
    bool IsDue(int64_t nowMs) const { return m_active && nowMs >= m_dueAtMs; }
    int64_t DueAtMs() const { return m_dueAtMs; }
    // The number of the attempt that is due next, from 1.
    int Attempt() const { return m_attempt; }
    // Whole seconds until the next attempt, rounded up; 0 when due.
    int64_t SecondsLeft(int64_t nowMs) const;

    // The wait before attempt `attempt` (from 1) without jitter.
    static int64_t BaseDelayMs(int attempt);
    // How far that wait may be moved either way.
    static int64_t JitterMs(int attempt);

private:
    void Schedule(int64_t nowMs);

    std::minstd_rand m_random;
    bool m_active = false;
    int m_attempt = 0;
    int64_t m_dueAtMs = 0;
};
