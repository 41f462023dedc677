// SPDX-License-Identifier: Apache-2.0
#include "reconnectschedule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

// Every attempt of one schedule driven by a fake clock that fails each attempt the moment it is due.
TEST(ReconnectScheduleTest, StepsDoubleToThirtySecondsWithinTwentyPercent) {
    struct Step {
        int attempt;
        int64_t baseMs;
    };
    const Step steps[] = {{1, 1000},  {2, 2000},  {3, 4000},  {4, 8000},     {5, 16000},
                          {6, 30000}, {7, 30000}, {8, 30000}, {1000, 30000}, {INT32_MAX, 30000}};
    for (const Step& step : steps)
        EXPECT_EQ(ReconnectSchedule::BaseDelayMs(step.attempt), step.baseMs) << step.attempt;

    for (uint32_t seed : {1u, 7u, 12345u}) {
        ReconnectSchedule schedule(seed);
        int64_t now = 50'000;
        schedule.Start(now);
        for (int attempt = 1; attempt <= 9; ++attempt) {
            ASSERT_EQ(schedule.Attempt(), attempt);
            const int64_t wait = schedule.DueAtMs() - now;
            const int64_t base = ReconnectSchedule::BaseDelayMs(attempt);
            EXPECT_GE(wait, base * 8 / 10) << "attempt " << attempt << " seed " << seed;
            EXPECT_LE(wait, base * 12 / 10) << "attempt " << attempt << " seed " << seed;
            EXPECT_FALSE(schedule.IsDue(schedule.DueAtMs() - 1));
            EXPECT_EQ(schedule.SecondsLeft(schedule.DueAtMs() - 1001), 2);
            now = schedule.DueAtMs();
            EXPECT_TRUE(schedule.IsDue(now));
            EXPECT_EQ(schedule.SecondsLeft(now), 0);
            schedule.AttemptFailed(now);
        }
    }
}

TEST(ReconnectScheduleTest, OperatorActionsAndStop) {
    ReconnectSchedule schedule(3);
    EXPECT_FALSE(schedule.IsDue(0));
    schedule.AttemptFailed(0); // not started: nothing happens
    EXPECT_FALSE(schedule.IsActive());

    schedule.Start(0);
    schedule.AttemptFailed(2000);
    schedule.AttemptFailed(5000);
    ASSERT_EQ(schedule.Attempt(), 3);
    EXPECT_FALSE(schedule.IsDue(5001));
    schedule.DueNow(5001); // "Go on line" tries at once and keeps the count
    EXPECT_TRUE(schedule.IsDue(5001));
    EXPECT_EQ(schedule.Attempt(), 3);

    schedule.Stop();
    EXPECT_FALSE(schedule.IsActive());
    EXPECT_FALSE(schedule.IsDue(1'000'000));
    schedule.DueNow(1'000'000);
    EXPECT_FALSE(schedule.IsDue(1'000'000));

    schedule.Start(2'000'000); // a new drop starts again from the first step
    EXPECT_EQ(schedule.Attempt(), 1);
    EXPECT_LE(schedule.DueAtMs() - 2'000'000, 1200);
}

TEST(ReconnectScheduleTest, FleetDroppedTogetherDoesNotRetryInStep) {
    std::vector<int64_t> firstAttempts;
    for (uint32_t seed = 1; seed <= 50; ++seed) {
        ReconnectSchedule schedule(seed * 2654435761u);
        schedule.Start(0);
        firstAttempts.push_back(schedule.DueAtMs());
    }
    std::sort(firstAttempts.begin(), firstAttempts.end());
    // The first step is 1 s +/- 20 %: 50 seeds cover most of that 400 ms window.
    EXPECT_GE(firstAttempts.back() - firstAttempts.front(), 300);
    EXPECT_GT(std::unique(firstAttempts.begin(), firstAttempts.end()) - firstAttempts.begin(), 25);
}

} // namespace
