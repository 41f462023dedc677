// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the studio watches of one instrument: the trend history of its readings and its alarms, fed
// once per poll from the sensor's status report and its device snapshot. Not thread-safe: the owner
// calls it on one thread, after the poll has ended.
#include "alarmevaluator.h"
#include "statushistory.h"

class ISensorObject;

class StatusMonitor {
public:
    // Reads the sensor's report and snapshot as they are now; one history point, and the alarms it
    // begins or ends.
    std::vector<AlarmChange> Sample(ISensorObject& sensor, int64_t timeMs);
    // The readings of one poll, already read.
    std::vector<AlarmChange> Sample(const StatusSample& sample);

    StatusHistory& History() { return m_history; }
    const StatusHistory& History() const { return m_history; }
    AlarmEvaluator& Alarms() { return m_alarms; }
    const AlarmEvaluator& Alarms() const { return m_alarms; }

    // The ready flag of the last poll; false when the instrument does not report one.
    bool ReadyKnown() const { return m_readyKnown; }
    bool Ready() const { return m_ready; }

private:
    StatusHistory m_history;
    AlarmEvaluator m_alarms;
    bool m_readyKnown = false;
    bool m_ready = false;
};
