#pragma once
// A VEXASensorObject for one host, released (last reference) when the fixture goes.
#include "sensorobserver.h"
#include "vexasensorobject.h"

#include <mutex>
#include <vector>

struct SensorHandle {
    explicit SensorHandle(const std::wstring& host)
        : sensor(new VEXASensorObject(nullptr, ISensorAddress(host))) {}
    ~SensorHandle() { sensor->DecRef(); }
    VEXASensorObject* operator->() const { return sensor; }
    VEXASensorObject* sensor;
};

class RecordingObserver : public ISensorObserver {
public:
    void OnSensorEvent(const ISensorEvent& event) override {
        std::lock_guard lock(mutex);
        codes.push_back(event.code);
    }
    std::vector<uint32_t> Codes() {
        std::lock_guard lock(mutex);
        return codes;
    }
    std::mutex mutex;
    std::vector<uint32_t> codes;
};
