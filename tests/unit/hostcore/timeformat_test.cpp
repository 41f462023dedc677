// SPDX-License-Identifier: Apache-2.0
// Dates and times in the suite's fixed formats, for any time and local offset.
#include "timeformat.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

TEST(TimeFormat, DateAndTimeForATimeAndOffset) {
    struct Case {
        int64_t ms;
        int offsetMinutes;
        const wchar_t* date;
        const wchar_t* time;
    };
    const Case cases[] = {
        {0, 0, L"1970-01-01", L"00:00:00"},
        {1795426209999, 0, L"2026-11-23", L"09:30:09"},    // milliseconds are cut, not rounded
        {1795426209000, 60, L"2026-11-23", L"10:30:09"},   // east of UTC
        {1795426209000, -600, L"2026-11-22", L"23:30:09"}, // west, across midnight
        {1795469400000, 180, L"2026-11-24", L"00:30:00"},  // east, across midnight
        {951782400000, 0, L"2000-02-29", L"00:00:00"},     // leap day of a century's leap year
        {-1, 0, L"1969-12-31", L"23:59:59"},               // before 1970
        {-86400000LL * 365, 0, L"1969-01-01", L"00:00:00"},
        {4102444799000, 0, L"2099-12-31", L"23:59:59"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.ms);
        EXPECT_EQ(FormatDate(c.ms, c.offsetMinutes), c.date);
        EXPECT_EQ(FormatTime(c.ms, c.offsetMinutes), c.time);
    }
}

TEST(TimeFormat, LocalTimeDiffFollowsTheZoneAndItsSummerTime) {
    const char* saved = std::getenv("TZ");
    const std::string previous = saved ? saved : "";
    struct Case {
        const char* zone;
        int64_t ms;
        int seconds;
    };
    const Case cases[] = {
        {"UTC0", 1795426209000, 0},
        {"CET-1CEST,M3.5.0,M10.5.0/3", 1795426209000, 3600}, // November: winter time
        {"CET-1CEST,M3.5.0,M10.5.0/3", 1783000000000, 7200}, // July: summer time
        {"EST5EDT,M3.2.0,M11.1.0", 1795426209000, -5 * 3600},
        {"IST-5:30", 1795426209000, 5 * 3600 + 1800},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.zone);
        setenv("TZ", c.zone, 1);
        tzset();
        EXPECT_EQ(PXLocalTimeDiff(c.ms), c.seconds);
    }
    if (saved)
        setenv("TZ", previous.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

TEST(TimeFormatTest, ElapsedInWordsAtTheUnitBoundaries) {
    const std::pair<int64_t, const wchar_t*> cases[] = {
        {-5, L"0 s"},         {0, L"0 s"},          {59, L"59 s"},
        {60, L"1 min 0 s"},   {72, L"1 min 12 s"},  {3599, L"59 min 59 s"},
        {3600, L"1 h 0 min"}, {7500, L"2 h 5 min"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(FormatElapsed(seconds), text) << seconds;
}
