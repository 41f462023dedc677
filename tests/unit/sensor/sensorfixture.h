// SPDX-License-Identifier: Apache-2.0
#pragma once
// A VEXASensorObject for one host, released (last reference) when the handle goes.
#include "recordingobserver.h"
#include "sensorref.h"
#include "vexasensorobject.h"

class SensorHandle : public SensorRef<VEXASensorObject> {
public:
    explicit SensorHandle(const std::wstring& host)
        : SensorRef(Adopt(new VEXASensorObject(nullptr, ISensorAddress(host)))) {}
};
