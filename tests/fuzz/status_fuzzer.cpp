// SPDX-License-Identifier: Apache-2.0
// The instrument's status and events texts, as the sensor's timer takes them: the `status` answer
// becomes the "VEXA" device's readings and the status panel, each `events` line a notification to
// observers. The input is the status text, a NUL byte, then the events text.
#include "fakechannel.h"
#include "fuzzsensor.h"
#include "sensorobserver.h"
#include "text.h"
#include "vexadevice.h"
#include "vexasensorobject.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace {

class CountingObserver : public ISensorObserver {
public:
    void OnSensorEvent(const ISensorEvent&) override { ++events; }
    int events = 0;
};

void ReadEveryValue(VEXASensorObject& sensor) {
    for (int section = 0; section < sensor.GetStatusSectionCount(); ++section) {
        sensor.GetStatusSectionTitle(section);
        for (int line = 0; line < sensor.GetStatusLineCount(section); ++line) {
            sensor.GetStatusLabel(section, line);
            sensor.GetStatusValue(section, line);
        }
    }
    const VexaDevice device(sensor.GetDevice(L"VEXA"));
    for (int id = -1; id < 40; ++id) {
        device.getHeaterTemp(id);
        device.getAccessoryHeaterTemp(id);
    }
    for (int index = -1; index < 12; ++index)
        device.getMethodMRU(index);
    device.getTotalPres();
    device.getActiveProcess();
    device.getBackupProgress();
    sensor.GetInstrumentMethodMRU(true);
    sensor.GetActiveProcess();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const auto* text = reinterpret_cast<const char*>(data);
    const char* split = std::find(text, text + size, '\0');
    const std::string status(text, split);
    const std::string events = split == text + size ? std::string() : std::string(split + 1, text + size);

    VEXASensorObject& sensor = OnlineFuzzSensor();
    auto channel = std::make_unique<FakeChannel>();
    channel->answers[L"status"] = FromUtf8(status);
    channel->answers[L"events"] = FromUtf8(events);
    sensor.SetCommSensor(std::move(channel));
    CountingObserver observer;
    observer.SetSensor(&sensor);
    sensor.OnTimer(0);
    ReadEveryValue(sensor);
    observer.SetSensor(nullptr);
    sensor.SetCommSensor(nullptr);
    sensor.GetDevice(L"VEXA").ClearSnapshot();
    return 0;
}
