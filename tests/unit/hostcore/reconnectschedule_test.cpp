// SPDX-License-Identifier: Apache-2.0
#include "reconnectschedule.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace {

// Every attempt of one schedule driven by a fake clock that fails each attempt the moment it is due.
TEST(ReconnectScheduleTest, StepsDoubleToThirtySecondsWithinTheirJitter) {
    struct Step {
        int attempt;
        int64_t baseMs;
        int64_t jitterMs;
    };
    const Step steps[] = {{1, 1000, 600},      {2, 2000, 600},          {3, 4000, 800},   {4, 8000, 1600},
                          {5, 16000, 3200},    {6, 30000, 6000},        {7, 30000, 6000}, {8, 30000, 6000},
                          {1000, 30000, 6000}, {INT32_MAX, 30000, 6000}};
    for (const Step& step : steps) {
        EXPECT_EQ(ReconnectSchedule::BaseDelayMs(step.attempt), step.baseMs) << step.attempt;
        EXPECT_EQ(ReconnectSchedule::JitterMs(step.attempt), step.jitterMs) << step.attempt;
    }

    for (uint32_t seed : {1u, 7u, 12345u}) {
        ReconnectSchedule schedule(seed);
        int64_t now = 50'000;
        schedule.Start(now);
        for (int attempt = 1; attempt <= 9; ++attempt) {
            ASSERT_EQ(schedule.Attempt(), attempt);
            const int64_t wait = schedule.DueAtMs() - now;
            const int64_t base = ReconnectSchedule::BaseDelayMs(attempt);
            const int64_t jitter = ReconnectSchedule::JitterMs(attempt);
            EXPECT_GE(wait, base - jitter) << "attempt " << attempt << " seed " << seed;
            EXPECT_LE(wait, base + jitter) << "attempt " << attempt << " seed " << seed;
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
    EXPECT_LE(schedule.DueAtMs() - 2'000'000, 1600);
}

TEST(ReconnectScheduleTest, FleetDroppedTogetherDoesNotRetryInStep) {
    std::vector<int64_t> firstAttempts;
    for (uint32_t seed = 1; seed <= 50; ++seed) {
        ReconnectSchedule schedule(seed * 2654435761u);
        schedule.Start(0);
        firstAttempts.push_back(schedule.DueAtMs());
    }
    std::sort(firstAttempts.begin(), firstAttempts.end());
    // The first step is 1 s +/- 600 ms: 50 seeds spread over more than a second of that window.
    EXPECT_GE(firstAttempts.back() - firstAttempts.front(), 1000);
    EXPECT_GT(std::unique(firstAttempts.begin(), firstAttempts.end()) - firstAttempts.begin(), 25);
}

} // namespace
