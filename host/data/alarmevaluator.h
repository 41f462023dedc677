// SPDX-License-Identifier: Apache-2.0
#pragma once
// Decides an instrument's alarms from its polls: a total pressure (a reading in Pa) above its limit,
// a heater (a reading in C) more than the allowed deviation from where it settled, not ready for longer
// than a limit, a lost link. Each alarm is reported once when it begins and once when it ends.
// Not thread-safe: one owner thread.
#include "statusreading.h"

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

struct AlarmLimits {
    double totalPressureHighPa = 1e-2;
    double heaterDeviationC = 10;
    // A heater has settled once its readings stayed within kSettledSpanC for this long.
    int settleSeconds = 60;
    int notReadySeconds = 600;
};

struct Alarm {
    enum class Kind { ReadingHigh, HeaterDeviation, NotReady, LinkLost };
    Kind kind = Kind::ReadingHigh;
    std::string key;     // unique per alarm: the reading's key, "ready" or "link"
    std::wstring name;   // the reading's name (readings only)
    std::wstring unit;   // the reading's unit (readings only)
    double value = 0;    // the reading, or the seconds not ready, or the link's error number
    double limit = 0;    // the limit, or the settled value of a heater
    int64_t sinceMs = 0; // when it began
};

struct AlarmChange {
    Alarm alarm;
    bool raised = true; // false: it cleared
    int64_t timeMs = 0;
};

struct StatusSample {
    int64_t timeMs = 0;
    std::vector<StatusReading> readings;
    bool readyKnown = false;
    bool ready = false;
    // A method or replay runs: heaters follow the method, so none is judged against its settled value.
    bool running = false;
};

class AlarmEvaluator {
public:
    static constexpr double kSettledSpanC = 1.0;

    void SetLimits(const AlarmLimits& limits) { m_limits = limits; }
    const AlarmLimits& Limits() const { return m_limits; }

    // One poll's readings.
    std::vector<AlarmChange> Evaluate(const StatusSample& sample);
    // The link dropped by itself (`error` its number, 0 when unknown) / came back.
    std::vector<AlarmChange> LinkLost(int64_t timeMs, int error);
    std::vector<AlarmChange> LinkBack(int64_t timeMs);
    // Nothing is watched any more (the operator took the instrument off line): every alarm ends.
    std::vector<AlarmChange> ClearAll(int64_t timeMs);

    // Active alarms by key.
    const std::map<std::string, Alarm>& Active() const { return m_active; }
    int ActiveCount() const { return static_cast<int>(m_active.size()); }

private:
    struct Heater {
        std::deque<std::pair<int64_t, double>> recent;
        bool settled = false;
        double settledAt = 0;
    };

    void Raise(Alarm alarm, int64_t timeMs, std::vector<AlarmChange>* changes);
    void Clear(const std::string& key, int64_t timeMs, std::vector<AlarmChange>* changes);
    void JudgeHeater(const StatusReading& reading, int64_t timeMs, std::vector<AlarmChange>* changes);

    AlarmLimits m_limits;
    std::map<std::string, Alarm> m_active;
    std::map<std::string, Heater> m_heaters;
    int64_t m_notReadySince = -1;
};
