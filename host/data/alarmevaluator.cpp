// SPDX-License-Identifier: Apache-2.0
#include "alarmevaluator.h"

#include <algorithm>
#include <cmath>

namespace {
const std::string kReadyKey = "ready";
const std::string kLinkKey = "link";

bool IsTemperature(const StatusReading& reading) {
    return reading.unit == L"C";
}
bool IsTotalPressure(const StatusReading& reading) {
    return reading.unit == L"Pa";
}
} // namespace

void AlarmEvaluator::Raise(Alarm alarm, int64_t timeMs, std::vector<AlarmChange>* changes) {
    auto found = m_active.find(alarm.key);
    if (found != m_active.end()) {
        // Still on: the shown value follows, the onset stays.
        found->second.value = alarm.value;
        return;
    }
    alarm.sinceMs = timeMs;
    m_active.emplace(alarm.key, alarm);
    changes->push_back({alarm, true, timeMs});
}

void AlarmEvaluator::Clear(const std::string& key, int64_t timeMs, std::vector<AlarmChange>* changes) {
    auto found = m_active.find(key);
    if (found == m_active.end())
        return;
    changes->push_back({found->second, false, timeMs});
    m_active.erase(found);
}

void AlarmEvaluator::JudgeHeater(const StatusReading& reading, int64_t timeMs,
                                 std::vector<AlarmChange>* changes) {
    Heater& heater = m_heaters[reading.key];
    heater.recent.emplace_back(timeMs, reading.value);
    const int64_t window = int64_t(m_limits.settleSeconds) * 1000;
    while (heater.recent.size() > 1 && heater.recent[1].first <= timeMs - window)
        heater.recent.pop_front();
    // Settled (again) when the readings of a whole window stay within the span; a heater that settles
    // somewhere new has been moved there on purpose.
    if (heater.recent.front().first <= timeMs - window) {
        const auto [low, high] =
            std::minmax_element(heater.recent.begin(), heater.recent.end(),
                                [](const auto& a, const auto& b) { return a.second < b.second; });
        if (high->second - low->second <= kSettledSpanC) {
            double sum = 0;
            for (const auto& point : heater.recent)
                sum += point.second;
            heater.settled = true;
            heater.settledAt = sum / double(heater.recent.size());
        }
    }
    if (!heater.settled)
        return;
    if (std::fabs(reading.value - heater.settledAt) > m_limits.heaterDeviationC) {
        Alarm alarm;
        alarm.kind = Alarm::Kind::HeaterDeviation;
        alarm.key = reading.key;
        alarm.name = reading.name;
        alarm.unit = reading.unit;
        alarm.value = reading.value;
        alarm.limit = heater.settledAt;
        Raise(alarm, timeMs, changes);
    } else {
        Clear(reading.key, timeMs, changes);
    }
}

std::vector<AlarmChange> AlarmEvaluator::Evaluate(const StatusSample& sample) {
    std::vector<AlarmChange> changes;
    const int64_t now = sample.timeMs;
    Clear(kLinkKey, now, &changes);
    for (const StatusReading& reading : sample.readings) {
        if (IsTotalPressure(reading)) {
            if (reading.value > m_limits.totalPressureHighPa) {
                Alarm alarm;
                alarm.kind = Alarm::Kind::ReadingHigh;
                alarm.key = reading.key;
                alarm.name = reading.name;
                alarm.unit = reading.unit;
                alarm.value = reading.value;
                alarm.limit = m_limits.totalPressureHighPa;
                Raise(alarm, now, &changes);
            } else if (!std::isnan(reading.value)) {
                Clear(reading.key, now, &changes);
            }
        } else if (IsTemperature(reading)) {
            if (sample.running) {
                m_heaters.erase(reading.key);
                Clear(reading.key, now, &changes);
            } else {
                JudgeHeater(reading, now, &changes);
            }
        }
    }

    if (!sample.readyKnown || sample.ready) {
        m_notReadySince = -1;
        Clear(kReadyKey, now, &changes);
    } else {
        if (m_notReadySince < 0)
            m_notReadySince = now;
        const double seconds = double(now - m_notReadySince) / 1000.0;
        if (seconds > m_limits.notReadySeconds) {
            Alarm alarm;
            alarm.kind = Alarm::Kind::NotReady;
            alarm.key = kReadyKey;
            alarm.value = seconds;
            alarm.limit = m_limits.notReadySeconds;
            Raise(alarm, now, &changes);
        }
    }
    return changes;
}

std::vector<AlarmChange> AlarmEvaluator::LinkLost(int64_t timeMs, int error) {
    std::vector<AlarmChange> changes;
    Alarm alarm;
    alarm.kind = Alarm::Kind::LinkLost;
    alarm.key = kLinkKey;
    alarm.value = error;
    Raise(alarm, timeMs, &changes);
    // Nothing is read while the link is away: readings start afresh when it returns.
    m_heaters.clear();
    m_notReadySince = -1;
    return changes;
}

std::vector<AlarmChange> AlarmEvaluator::LinkBack(int64_t timeMs) {
    std::vector<AlarmChange> changes;
    Clear(kLinkKey, timeMs, &changes);
    return changes;
}

std::vector<AlarmChange> AlarmEvaluator::ClearAll(int64_t timeMs) {
    std::vector<AlarmChange> changes;
    while (!m_active.empty())
        Clear(m_active.begin()->first, timeMs, &changes);
    m_heaters.clear();
    m_notReadySince = -1;
    return changes;
}
