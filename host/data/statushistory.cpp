// SPDX-License-Identifier: Apache-2.0
#include "statushistory.h"

#include <cmath>
#include <limits>

StatusHistory::StatusHistory(int64_t windowMs) : m_windowMs(windowMs) {}

void StatusHistory::Append(int64_t timeMs, const std::vector<StatusReading>& readings) {
    if (!m_times.empty() && timeMs < m_times.back())
        Clear();
    const float gap = std::numeric_limits<float>::quiet_NaN();
    const size_t before = m_times.size();
    m_times.push_back(timeMs);
    for (Channel& channel : m_channels)
        channel.values.push_back(gap);
    for (const StatusReading& reading : readings) {
        Channel* channel = nullptr;
        for (Channel& candidate : m_channels) {
            if (candidate.key == reading.key)
                channel = &candidate;
        }
        if (!channel) {
            channel = &m_channels.emplace_back();
            channel->key = reading.key;
            channel->values.assign(before + 1, gap);
        }
        channel->name = reading.name;
        channel->unit = reading.unit;
        channel->values.back() = static_cast<float>(reading.value);
    }
    while (!m_times.empty() && m_times.front() < timeMs - m_windowMs) {
        m_times.pop_front();
        for (Channel& channel : m_channels)
            channel.values.pop_front();
    }
}

void StatusHistory::Clear() {
    m_times.clear();
    m_channels.clear();
}

const StatusHistory::Channel* StatusHistory::Find(const std::string& key) const {
    for (const Channel& channel : m_channels) {
        if (channel.key == key)
            return &channel;
    }
    return nullptr;
}

size_t StatusHistory::MemoryBytes() const {
    size_t bytes = m_times.size() * sizeof(int64_t);
    for (const Channel& channel : m_channels)
        bytes += channel.values.size() * sizeof(float) + channel.key.size() +
                 channel.name.size() * sizeof(wchar_t);
    return bytes;
}
