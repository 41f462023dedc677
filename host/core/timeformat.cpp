// SPDX-License-Identifier: Apache-2.0
#include "timeformat.h"

#include <ctime>
#include <cwchar>

namespace {

constexpr int64_t kMsPerDay = 86400000;

// Floor division, so that a time before 1970 falls on the day before, not after.
int64_t FloorDiv(int64_t value, int64_t divisor) {
    int64_t quotient = value / divisor;
    if (value % divisor != 0 && (value < 0) != (divisor < 0))
        --quotient;
    return quotient;
}

// Days since 1970-01-01 to the civil date (proleptic Gregorian calendar).
void CivilFromDays(int64_t days, int64_t* year, int* month, int* day) {
    days += 719468;
    const int64_t era = FloorDiv(days, 146097);
    const int64_t dayOfEra = days - era * 146097;
    const int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const int64_t monthIndex = (5 * dayOfYear + 2) / 153;
    *day = int(dayOfYear - (153 * monthIndex + 2) / 5 + 1);
    *month = int(monthIndex < 10 ? monthIndex + 3 : monthIndex - 9);
    *year = yearOfEra + era * 400 + (*month <= 2 ? 1 : 0);
}

int64_t LocalMs(int64_t timeMs, int offsetMinutes) {
    return timeMs + int64_t(offsetMinutes) * 60000;
}

} // namespace

std::wstring FormatDate(int64_t timeMs, int offsetMinutes) {
    int64_t year = 0;
    int month = 0, day = 0;
    CivilFromDays(FloorDiv(LocalMs(timeMs, offsetMinutes), kMsPerDay), &year, &month, &day);
    wchar_t text[32];
    std::swprintf(text, sizeof text / sizeof text[0], L"%04lld-%02d-%02d", static_cast<long long>(year),
                  month, day);
    return text;
}

std::wstring FormatTime(int64_t timeMs, int offsetMinutes) {
    const int64_t local = LocalMs(timeMs, offsetMinutes);
    const int64_t secondOfDay = (local - FloorDiv(local, kMsPerDay) * kMsPerDay) / 1000;
    wchar_t text[16];
    std::swprintf(text, sizeof text / sizeof text[0], L"%02d:%02d:%02d", int(secondOfDay / 3600),
                  int(secondOfDay / 60 % 60), int(secondOfDay % 60));
    return text;
}

std::wstring FormatElapsed(int64_t seconds) {
    if (seconds < 0)
        seconds = 0;
    if (seconds < 60)
        return std::to_wstring(seconds) + L" s";
    if (seconds < 3600)
        return std::to_wstring(seconds / 60) + L" min " + std::to_wstring(seconds % 60) + L" s";
    return std::to_wstring(seconds / 3600) + L" h " + std::to_wstring(seconds / 60 % 60) + L" min";
}
