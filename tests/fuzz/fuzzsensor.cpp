// SPDX-License-Identifier: Apache-2.0
#include "fuzzsensor.h"

#include "vexasensorobject.h"

#include <cstdlib>

VEXASensorObject& OnlineFuzzSensor() {
    // Never released: the session ends with the process.
    static VEXASensorObject* sensor = new VEXASensorObject(nullptr, ISensorAddress(kFuzzHost));
    if (!sensor->IsOnline(true) && !sensor->GoOnline())
        std::abort(); // the scripted link always opens: anything else is a fault of the harness
    sensor->Link().SetLastError(0);
    return *sensor;
}

std::wstring FuzzRemoteName(const std::wstring& path) {
    return L"@" + std::wstring(kFuzzHost) + L":" + path;
}
