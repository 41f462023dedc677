// SPDX-License-Identifier: Apache-2.0
#include "instrumentactivity.h"

#include "vexadevice.h"

#include <algorithm>

InstrumentActivity InstrumentActivity::FromDevice(const IDevice& device) {
    const VexaDevice vexa(device);
    InstrumentActivity activity;
    activity.hasStatus = vexa.HasSnapshot();
    if (!activity.hasStatus)
        return activity;
    activity.process = vexa.getActiveProcess();
    if (activity.IsRunning()) {
        bool available = false;
        const int elapsed = vexa.getProcessElapsed(&available);
        activity.elapsed = available && elapsed >= 0 ? elapsed : -1;
        const int total = vexa.getProcessTotal(&available);
        activity.total = available && total > 0 ? total : -1;
    }
    activity.ready = vexa.isReady(&activity.readyKnown);
    return activity;
}

int InstrumentActivity::PercentDone() const {
    if (!IsRunning() || total <= 0 || elapsed < 0)
        return -1;
    return int(std::min<int64_t>(100, int64_t(elapsed) * 100 / total));
}

std::wstring InstrumentActivity::ProcessPath() const {
    const std::wstring::size_type start = process.find_first_not_of(L' ');
    if (start == std::wstring::npos)
        return {};
    if (process[start] == L'"') {
        const std::wstring::size_type end = process.find(L'"', start + 1);
        return process.substr(start + 1, end == std::wstring::npos ? std::wstring::npos : end - start - 1);
    }
    const std::wstring::size_type end = process.find(L' ', start);
    return process.substr(start, end == std::wstring::npos ? std::wstring::npos : end - start);
}

std::wstring InstrumentActivity::ProcessName() const {
    const std::wstring path = ProcessPath();
    const std::wstring::size_type slash = path.find_last_of(L'/');
    return slash == std::wstring::npos ? path : path.substr(slash + 1);
}

std::wstring FormatRunTime(int64_t seconds) {
    if (seconds < 0)
        return L"-";
    const int64_t hours = seconds / 3600, minutes = seconds / 60 % 60, rest = seconds % 60;
    const auto two = [](int64_t value) { return (value < 10 ? L"0" : L"") + std::to_wstring(value); };
    if (hours > 0)
        return std::to_wstring(hours) + L":" + two(minutes) + L":" + two(rest);
    return std::to_wstring(minutes) + L":" + two(rest);
}
