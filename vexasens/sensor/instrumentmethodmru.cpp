// SPDX-License-Identifier: Apache-2.0
#include "instrumentmethodmru.h"

#include "remotename.h"
#include "sensorobject.h"
#include "text.h"
#include "vexadevice.h"

namespace {
// The snapshot holds a bounded list; the bound only guards against a runaway answer.
constexpr int kMaxMethodMRU = 1000;
} // namespace

std::vector<std::wstring> InstrumentMethodMRU(ISensorObject& sensor, bool fullNames) {
    std::vector<std::wstring> methods;
    if (!sensor.IsOnline(true))
        return methods;
    VexaDevice device(sensor.GetDevice(L"VEXA"));
    const std::wstring host = sensor.GetSensorAddress().GetHostname();
    for (int index = 0; index < kMaxMethodMRU; ++index) {
        std::wstring path = device.getMethodMRU(index);
        if (path.empty())
            break;
        std::wstring folder, name;
        ParseFilename(path, &folder, &name, nullptr);
        if (fullNames)
            methods.push_back(MakeFilename(ReplaceAll(folder, L"\\Vexa", L""), name, host));
        else
            methods.push_back(name);
    }
    return methods;
}
