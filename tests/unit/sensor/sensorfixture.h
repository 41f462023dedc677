#pragma once
// A VEXASensorObject for one host, released (last reference) when the fixture goes.
#include "recordingobserver.h"
#include "vexasensorobject.h"

struct SensorHandle {
    explicit SensorHandle(const std::wstring& host)
        : sensor(new VEXASensorObject(nullptr, ISensorAddress(host))) {}
    ~SensorHandle() { sensor->DecRef(); }
    VEXASensorObject* operator->() const { return sensor; }
    VEXASensorObject* sensor;
};
