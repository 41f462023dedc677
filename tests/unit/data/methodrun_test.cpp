// SPDX-License-Identifier: Apache-2.0
// Following a run from status snapshots and the method-ended notification; the runs of a sequence.
#include "device.h"
#include "instrumentactivity.h"
#include "methodrun.h"
#include "sequenceplan.h"

#include <gtest/gtest.h>

namespace {

InstrumentActivity Running(const std::wstring& process, int elapsed, int total) {
    InstrumentActivity activity;
    activity.hasStatus = true;
    activity.process = process;
    activity.elapsed = elapsed;
    activity.total = total;
    return activity;
}

InstrumentActivity Idle() {
    InstrumentActivity activity;
    activity.hasStatus = true;
    return activity;
}

constexpr int64_t kLater = MethodRun::kStaleMs + 1;

} // namespace

TEST(InstrumentActivityTest, ReadsTheStatusKeysAndNamesTheProcess) {
    IDevice device(L"VEXA");
    device.SetSnapshot({{"process", "\"/Method/My Run.mth\" -x"},
                        {"processElapsed", "30"},
                        {"processTotal", "120"},
                        {"ready", "1"}});
    InstrumentActivity activity = InstrumentActivity::FromDevice(device);
    EXPECT_TRUE(activity.IsRunning());
    EXPECT_EQ(activity.ProcessPath(), L"/Method/My Run.mth");
    EXPECT_EQ(activity.ProcessName(), L"My Run.mth");
    EXPECT_EQ(activity.PercentDone(), 25);
    EXPECT_TRUE(activity.ready && activity.readyKnown);

    // Unreadable or missing counts are unknown, never zero; idle has no counts at all.
    device.SetSnapshot({{"process", "/Data/run1.vxs -speed=2"}, {"processElapsed", "x"}});
    activity = InstrumentActivity::FromDevice(device);
    EXPECT_EQ(activity.ProcessPath(), L"/Data/run1.vxs");
    EXPECT_EQ(activity.elapsed, -1);
    EXPECT_EQ(activity.PercentDone(), -1);
    EXPECT_FALSE(activity.readyKnown);
    device.SetSnapshot({{"process", ""}, {"processElapsed", "5"}, {"processTotal", "9"}});
    activity = InstrumentActivity::FromDevice(device);
    EXPECT_FALSE(activity.IsRunning());
    EXPECT_EQ(activity.total, -1);

    const std::pair<int, const wchar_t*> times[] = {
        {-1, L"-"}, {0, L"0:00"}, {65, L"1:05"}, {3723, L"1:02:03"}};
    for (const auto& [seconds, text] : times)
        EXPECT_EQ(FormatRunTime(seconds), text) << seconds;
}

TEST(MethodRunTest, FollowsARunStartedHereToItsDataFile) {
    MethodRun run;
    run.Started(L"/Method/Default.mth", 60, 0);
    // A poll that left before the start still says idle: not the end.
    run.Observe(Idle(), 100);
    EXPECT_TRUE(run.IsRunning());
    run.Observe(Running(L"\"/Method/Default.mth\"", 10, 60), 10'000);
    EXPECT_EQ(run.ElapsedAt(10'000), 10);
    EXPECT_EQ(run.ElapsedAt(12'500), 12) << "the clock moves between statuses";
    EXPECT_EQ(run.ElapsedAt(600'000), 60) << "never past the total";
    run.Observe(Idle(), 61'000);
    EXPECT_EQ(run.GetPhase(), MethodRun::Phase::Finished);
    EXPECT_FALSE(run.Notified());
    run.Ended(L"method finished /Data/Run008.vxs", 61'200);
    EXPECT_EQ(run.DataFile(), L"/Data/Run008.vxs");
    EXPECT_TRUE(run.Notified());
    EXPECT_EQ(run.ElapsedAt(70'000), 60);
    // A status that was on its way before the end does not start the run again.
    run.Observe(Running(L"\"/Method/Default.mth\"", 59, 60), 61'300);
    EXPECT_EQ(run.GetPhase(), MethodRun::Phase::Finished);
    run.Clear();
    EXPECT_EQ(run.GetPhase(), MethodRun::Phase::Idle);
}

TEST(MethodRunTest, EndsByTheNotificationAlone) {
    struct Case {
        const wchar_t* text;
        MethodRun::Phase phase;
        const wchar_t* file;
    };
    const Case cases[] = {
        {L"method finished /Data/Run001.vxs", MethodRun::Phase::Finished, L"/Data/Run001.vxs"},
        {L"method stopped /Data/Run002.vxs", MethodRun::Phase::Stopped, L"/Data/Run002.vxs"},
        {L"method finished", MethodRun::Phase::Finished, L""},
        {L"method stopped", MethodRun::Phase::Stopped, L""},
        {L"something else", MethodRun::Phase::Finished, L""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << std::wstring(c.text).size());
        MethodRun run;
        run.Observe(Running(L"/Method/A.mth", 40, 100), 0);
        EXPECT_FALSE(run.StartedHere());
        run.Ended(c.text, 5'000);
        EXPECT_EQ(run.GetPhase(), c.phase);
        EXPECT_EQ(run.DataFile(), c.file);
        if (c.phase == MethodRun::Phase::Stopped) {
            EXPECT_EQ(run.ElapsedAt(50'000), 45) << "a stopped run keeps where it stopped";
        }
    }
}

TEST(MethodRunTest, RunsStartedElsewhereAreNoticedAndReplaced) {
    MethodRun run;
    run.Observe(Idle(), 0);
    EXPECT_EQ(run.GetPhase(), MethodRun::Phase::Idle);
    run.Observe(Running(L"/Method/A.mth", 0, -1), 1'000);
    EXPECT_TRUE(run.IsRunning());
    EXPECT_EQ(run.Total(), -1);
    // The next status shows another run: the first ended unseen.
    run.Observe(Running(L"/Method/B.mth", 3, 30), 9'000);
    EXPECT_EQ(run.Path(), L"/Method/B.mth");
    EXPECT_EQ(run.Total(), 30);
    run.Observe(Idle(), 20'000);
    // Right after an end a running status is taken as stale; later it is a new run.
    run.Observe(Running(L"/Method/B.mth", 0, 30), 20'000 + kLater);
    EXPECT_TRUE(run.IsRunning());
    EXPECT_FALSE(run.StartedHere());
}

TEST(SequencePlanTest, HandsOutEachStepsRepeatsInOrderUntilCancelled) {
    SequencePlan plan({{L"@h:/Method/A.mth", 2}, {L"@h:/Method/Skip.mth", 0}, {L"@h:/Method/B.mth", 1}});
    EXPECT_EQ(plan.TotalRuns(), 3);
    std::vector<std::wstring> order;
    while (plan.HasNext()) {
        const SequencePlan::Run run = plan.Next();
        order.push_back(run.method + L"#" + std::to_wstring(run.repeat) + L"/" +
                        std::to_wstring(run.repeats));
    }
    EXPECT_EQ(order, (std::vector<std::wstring>{L"@h:/Method/A.mth#1/2", L"@h:/Method/A.mth#2/2",
                                                L"@h:/Method/B.mth#1/1"}));
    EXPECT_EQ(plan.RunsStarted(), 3);

    SequencePlan stopped({{L"A", 5}});
    stopped.Next();
    stopped.Cancel();
    EXPECT_FALSE(stopped.HasNext());
    EXPECT_EQ(stopped.RunsStarted(), 1);
    EXPECT_FALSE(SequencePlan().HasNext());
}
