// SPDX-License-Identifier: Apache-2.0
#include "statusreading.h"

#include "sensorobject.h"
#include "text.h"

#include <cstdlib>

namespace {

bool ParseNumber(const std::wstring& text, double* value) {
    const std::string narrow(TrimBlanks(ToUtf8(text)));
    if (narrow.empty())
        return false;
    char* end = nullptr;
    const double parsed = std::strtod(narrow.c_str(), &end);
    if (end != narrow.c_str() + narrow.size())
        return false;
    *value = parsed;
    return true;
}

std::wstring WithoutColon(std::wstring label) {
    while (!label.empty() && (label.back() == L' ' || label.back() == L':'))
        label.pop_back();
    return ReplaceAll(std::move(label), L": (", L" (");
}

} // namespace

std::wstring UnitOf(const std::wstring& text) {
    const size_t close = text.rfind(L')');
    if (close == std::wstring::npos)
        return {};
    const size_t open = text.rfind(L'(', close);
    return open == std::wstring::npos ? std::wstring() : text.substr(open + 1, close - open - 1);
}

std::vector<StatusReading> ReadNumericStatus(ISensorObject& sensor) {
    std::vector<StatusReading> readings;
    const int sections = sensor.GetStatusSectionCount();
    for (int section = 0; section < sections; ++section) {
        const std::wstring title = sensor.GetStatusSectionTitle(section);
        const int lines = sensor.GetStatusLineCount(section);
        for (int line = 0; line < lines; ++line) {
            std::wstring name = WithoutColon(sensor.GetStatusLabel(section, line));
            double value = 0;
            if (name.empty() || !ParseNumber(sensor.GetStatusValue(section, line), &value))
                continue;
            StatusReading reading;
            reading.unit = UnitOf(name);
            if (reading.unit.empty())
                reading.unit = UnitOf(title);
            reading.key = ToUtf8(title) + "/" + ToUtf8(name);
            reading.name = std::move(name);
            reading.value = value;
            readings.push_back(std::move(reading));
        }
    }
    return readings;
}
