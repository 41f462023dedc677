// SPDX-License-Identifier: Apache-2.0
#include "statusmonitor.h"

#include "sensorobject.h"
#include "vexadevice.h"

std::vector<AlarmChange> StatusMonitor::Sample(ISensorObject& sensor, int64_t timeMs) {
    StatusSample sample;
    sample.timeMs = timeMs;
    sample.readings = ReadNumericStatus(sensor);
    const VexaDevice device(sensor.GetDevice(L"VEXA"));
    sample.ready = device.isReady(&sample.readyKnown);
    sample.running = !device.getActiveProcess().empty();
    return Sample(sample);
}

std::vector<AlarmChange> StatusMonitor::Sample(const StatusSample& sample) {
    m_history.Append(sample.timeMs, sample.readings);
    m_readyKnown = sample.readyKnown;
    m_ready = sample.ready;
    return m_alarms.Evaluate(sample);
}
