// SPDX-License-Identifier: Apache-2.0
#include "timespan.h"

std::wstring FormatTimeSpan(int64_t seconds) {
    // Negate in unsigned arithmetic: the most negative value has no signed opposite.
    const bool negative = seconds < 0;
    const uint64_t magnitude = negative ? 0 - static_cast<uint64_t>(seconds) : static_cast<uint64_t>(seconds);
    const uint64_t rest = magnitude % 60;
    return (negative ? L"-" : L"") + std::to_wstring(magnitude / 60) + (rest < 10 ? L":0" : L":") +
           std::to_wstring(rest);
}
