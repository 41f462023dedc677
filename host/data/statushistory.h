// SPDX-License-Identifier: Apache-2.0
#pragma once
// The recent past of one instrument's numeric readings: one point per poll, kept for a time window
// (an hour by default), as columns of single-precision values so an instrument-hour at one poll a second
// stays far below 2 MB. A reading missing from a poll is a gap (NaN) at that point. Not thread-safe:
// one owner thread.
#include "statusreading.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

class StatusHistory {
public:
    struct Channel {
        std::string key;
        std::wstring name;
        std::wstring unit;
        std::deque<float> values; // one per point, aligned with Times()
    };

    explicit StatusHistory(int64_t windowMs = 3600 * 1000);

    // Adds one point; points older than the window before `timeMs` are dropped. A time before the last
    // point's (a clock set back) starts the history afresh rather than breaking its order.
    void Append(int64_t timeMs, const std::vector<StatusReading>& readings);
    void Clear();

    const std::deque<int64_t>& Times() const { return m_times; }
    const std::vector<Channel>& Channels() const { return m_channels; }
    // The channel with that key, null when none.
    const Channel* Find(const std::string& key) const;
    int64_t WindowMs() const { return m_windowMs; }
    // Bytes held by the points (times and values), without the container's fixed overhead.
    size_t MemoryBytes() const;

private:
    int64_t m_windowMs;
    std::deque<int64_t> m_times;
    std::vector<Channel> m_channels;
};
