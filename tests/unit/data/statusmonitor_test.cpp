// SPDX-License-Identifier: Apache-2.0
// Alarms begin and end once each, heaters are judged against where they settled, and the trend
// history keeps one hour in bounded memory.
#include "alarmevaluator.h"
#include "statushistory.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

StatusReading Reading(const std::string& name, const std::wstring& unit, double value) {
    return {"section/" + name, std::wstring(name.begin(), name.end()), unit, value};
}

// One poll a second from t = 0 s.
StatusSample Poll(int second, std::vector<StatusReading> readings, bool ready = true, bool running = false) {
    StatusSample sample;
    sample.timeMs = int64_t(second) * 1000;
    sample.readings = std::move(readings);
    sample.readyKnown = true;
    sample.ready = ready;
    sample.running = running;
    return sample;
}

std::string Changes(const std::vector<AlarmChange>& changes) {
    std::string text;
    for (const AlarmChange& change : changes)
        text += (change.raised ? "+" : "-") + change.alarm.key + " ";
    return text;
}

AlarmLimits Limits() {
    AlarmLimits limits;
    limits.settleSeconds = 5;
    limits.notReadySeconds = 10;
    return limits;
}

} // namespace

TEST(AlarmEvaluatorTest, TotalPressureAlarmBeginsAndEndsOnceEach) {
    AlarmEvaluator alarms;
    alarms.SetLimits(Limits());
    // Per poll: the pressure, and the changes expected ("" none).
    const std::pair<double, std::string> polls[] = {
        {2.5e-3, ""},          {1e-2, ""}, {1.1e-2, "+section/P "}, {5e-2, ""}, {NAN, ""},
        {1e-2, "-section/P "}, {1e-3, ""},
    };
    int second = 0;
    for (const auto& [pressure, expected] : polls) {
        SCOPED_TRACE(pressure);
        EXPECT_EQ(Changes(alarms.Evaluate(Poll(second++, {Reading("P", L"Pa", pressure)}))), expected);
    }
    EXPECT_EQ(alarms.ActiveCount(), 0);
}

TEST(AlarmEvaluatorTest, HeaterIsJudgedFromWhereItSettledAndNotWhileAMethodRuns) {
    AlarmEvaluator alarms;
    alarms.SetLimits(Limits()); // settles after 5 s within 1 C, deviation 10 C
    std::string log;
    int second = 0;
    const auto poll = [&](double temperature, bool running = false) {
        log +=
            Changes(alarms.Evaluate(Poll(second++, {Reading("Column", L"C", temperature)}, true, running)));
    };
    // Warming up (not settled): far moves are no alarm.
    for (double t : {20.0, 60.0, 100.0, 140.0})
        poll(t);
    EXPECT_EQ(log, "");
    // Settles at about 150, then one excursion beyond 10 C and back.
    for (int i = 0; i < 7; ++i)
        poll(150.0 + (i % 2) * 0.4);
    poll(160.1);
    poll(165.0);
    poll(151.0);
    EXPECT_EQ(log, "+section/Column -section/Column ");
    EXPECT_EQ(alarms.ActiveCount(), 0);

    // A run ramps the oven: nothing is judged, and the heater settles afresh afterwards.
    log.clear();
    poll(162.0);
    EXPECT_EQ(log, "+section/Column ");
    for (double t : {180.0, 250.0, 300.0})
        poll(t, true);
    EXPECT_EQ(log, "+section/Column -section/Column ");
    for (int i = 0; i < 4; ++i)
        poll(120.0 - i * 10);
    EXPECT_EQ(log, "+section/Column -section/Column ") << "not settled again yet";
    for (int i = 0; i < 7; ++i)
        poll(80.0);
    poll(95.0);
    EXPECT_EQ(log, "+section/Column -section/Column +section/Column ");
}

TEST(AlarmEvaluatorTest, NotReadyTooLongAndTheLinkEachAlarmOnce) {
    AlarmEvaluator alarms;
    alarms.SetLimits(Limits()); // not ready for more than 10 s
    std::string log;
    for (int second = 0; second <= 12; ++second)
        log += Changes(alarms.Evaluate(Poll(second, {}, false)));
    EXPECT_EQ(log, "+ready ");
    log += Changes(alarms.Evaluate(Poll(13, {}, true)));
    EXPECT_EQ(log, "+ready -ready ");

    log.clear();
    log += Changes(alarms.LinkLost(14000, 10060));
    log += Changes(alarms.LinkLost(15000, 10060));
    EXPECT_EQ(alarms.Active().at("link").value, 10060);
    log += Changes(alarms.LinkBack(20000));
    log += Changes(alarms.LinkBack(21000));
    EXPECT_EQ(log, "+link -link ");

    // The operator's off line ends whatever is on.
    alarms.Evaluate(Poll(30, {Reading("P", L"Pa", 1.0)}));
    alarms.LinkLost(31000, 0);
    EXPECT_EQ(Changes(alarms.ClearAll(32000)), "-link -section/P ");
    EXPECT_EQ(alarms.ActiveCount(), 0);
}

TEST(StatusHistoryTest, KeepsTheWindowWithGapsAndAnHourFitsInTwoMegabytes) {
    StatusHistory history(10 * 1000);
    history.Append(0, {Reading("A", L"C", 1)});
    history.Append(1000, {Reading("A", L"C", 2), Reading("B", L"kPa", 5)});
    history.Append(2000, {Reading("B", L"kPa", 6)});
    ASSERT_EQ(history.Times().size(), 3u);
    const StatusHistory::Channel* a = history.Find("section/A");
    const StatusHistory::Channel* b = history.Find("section/B");
    ASSERT_TRUE(a && b);
    EXPECT_EQ(a->values[1], 2.0f);
    EXPECT_TRUE(std::isnan(a->values[2])) << "a reading missing from a poll is a gap";
    EXPECT_TRUE(std::isnan(b->values[0])) << "a reading that appears later has gaps before it";

    history.Append(11500, {Reading("A", L"C", 3)});
    EXPECT_EQ(history.Times().front(), 2000) << "points older than the window go";
    EXPECT_EQ(history.Find("section/A")->values.size(), history.Times().size());
    history.Append(500, {Reading("A", L"C", 4)});
    EXPECT_EQ(history.Times().size(), 1u) << "a clock set back starts afresh";

    // An instrument-hour at one poll a second with every reading of a full status report.
    StatusHistory hour;
    std::vector<StatusReading> readings;
    for (int i = 0; i < 20; ++i)
        readings.push_back(Reading("Reading number " + std::to_string(i), L"C", i));
    for (int second = 0; second < 2 * 3600; ++second)
        hour.Append(int64_t(second) * 1000, readings);
    EXPECT_LE(hour.Times().size(), 3601u);
    EXPECT_LT(hour.MemoryBytes(), 2u * 1024 * 1024);
}
