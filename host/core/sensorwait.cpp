// SPDX-License-Identifier: Apache-2.0
#include "sensorwait.h"

#include "pumpwait.h"
#include "reconnectschedule.h"
#include "sensorobject.h"

#include <chrono>

namespace {
constexpr uint32_t kSliceMs = 100;

int64_t NowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}
} // namespace

bool SensorWait::UntilOnline(ISensorObject& sensor) const {
    if (sensor.IsOnline(true))
        return true;
    if (sensor.IsOnline(false))
        sensor.Disconnect(0); // on line in name only: its link is gone
    const int64_t start = NowMs();
    ReconnectSchedule schedule(static_cast<uint32_t>(start) ^ sensor.GetId() * 2654435761u);
    schedule.Start(start);
    for (int64_t now = start; now - start < maxWaitMs; now = NowMs()) {
        if (sensor.KeepOffline() || (cancelled && cancelled()))
            return false;
        if (sensor.IsOnline(true))
            return true;
        if (schedule.IsDue(now)) {
            if (sensor.GoOnline())
                return true;
            schedule.AttemptFailed(NowMs());
        }
        PumpWait(kSliceMs);
    }
    return sensor.IsOnline(true);
}
