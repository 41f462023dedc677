// SPDX-License-Identifier: Apache-2.0
#pragma once
// Dates and times as the suite shows them. Times are milliseconds since 1970-01-01 UTC (signed, so
// dates before 1970 work); the offset is the local time's distance from UTC in minutes at that time,
// as PXLocalTimeDiff(time) / 60 gives it. The formats are fixed ("2026-11-23", "14:05:09") so lists of
// dates sort as text and read alike on every workstation.
#include <cstdint>
#include <ctime>
#include <string>

// Local time minus UTC in seconds at the given time (daylight saving included); 0 when the platform
// cannot tell.
int PXLocalTimeDiff(int64_t timeMs);
// The thread-safe local-time conversion of the platform (localtime_r, localtime_s); false on failure.
bool ToLocalTime(std::time_t seconds, std::tm* local);
// The same for UTC (gmtime_r, gmtime_s).
bool ToUtcTime(std::time_t seconds, std::tm* utc);

std::wstring FormatDate(int64_t timeMs, int offsetMinutes);
std::wstring FormatTime(int64_t timeMs, int offsetMinutes);

// A span as words: "45 s", "1 min 12 s", "2 h 5 min" (the seconds dropped from an hour on).
std::wstring FormatElapsed(int64_t seconds);
