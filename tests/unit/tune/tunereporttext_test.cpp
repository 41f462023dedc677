// SPDX-License-Identifier: Apache-2.0
// The report text of one tune: header, settings and the mass table judged against the limits.
#include "generatetunereport.h"
#include "timeformat.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

namespace {

VexaTuneReportSection MakeReport() {
    VexaTuneReportSection report;
    report.time = 1795426209123456; // 2026-11-23 09:30:09 UTC
    report.instrument = L"vexaron-0427";
    report.tune.calibrant = L"PFTBA";
    report.tune.electronEnergy = 70;
    report.tune.emission = 50;
    report.tune.repeller = 2.4;
    report.tune.masses = {{69, 100.0, 0.55}, {219, 40.0, 0.60}, {502, 3.0, 0.60}};
    return report;
}

// The line of the mass table for `mass`, or empty.
std::wstring MassLine(const std::vector<std::wstring>& lines, int mass) {
    const std::wstring prefix =
        L"  " + std::wstring(5 - std::to_wstring(mass).size(), L' ') + std::to_wstring(mass);
    for (const std::wstring& line : lines) {
        if (line.rfind(prefix, 0) == 0)
            return line;
    }
    return {};
}

bool Contains(const std::vector<std::wstring>& lines, const std::wstring& text) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const std::wstring& line) { return line.find(text) != std::wstring::npos; });
}

} // namespace

TEST(TuneReportText, HeaderNamesTheTuneFileInstrumentAndLocalTime) {
    setenv("TZ", "CET-1", 1);
    tzset();
    VexaTuneReportSection report = MakeReport();
    report.results = {{69, 100.0, 0.55, true}, {219, 40.0, 0.6, true}, {502, 3.0, 0.6, true}};
    const std::vector<std::wstring> lines =
        GenerateTuneReport(L"@10.0.0.5:/Tune/Default.tun", report, report.tune, true);
    EXPECT_EQ(lines.at(0), L"Tune Report");
    EXPECT_TRUE(Contains(lines, L"Tune file:   Default.tun"));
    EXPECT_TRUE(Contains(lines, L"Instrument:  vexaron-0427"));
    EXPECT_TRUE(Contains(lines, L"Date:        2026-11-23"));
    EXPECT_TRUE(Contains(lines, L"Time:        10:30:09"));
    EXPECT_TRUE(Contains(lines, L"Calibrant:        PFTBA"));
    EXPECT_TRUE(Contains(lines, L"Repeller:         2.40 V"));
    EXPECT_EQ(lines.back(), L"Result: PASS (3 of 3 masses within limits)");

    const std::vector<std::wstring> body = GenerateTuneReport(L"Default.tun", report, report.tune, false);
    EXPECT_FALSE(Contains(body, L"Tune Report"));
    EXPECT_FALSE(Contains(body, L"Instrument:"));
    EXPECT_EQ(body.back(), lines.back());
    unsetenv("TZ");
    tzset();
}

TEST(TuneReportText, EachMassIsJudgedAgainstItsLimits) {
    struct Case {
        const char* what;
        double abundance; // measured, target 40 (limits 32 - 48)
        double width;     // measured, target 0.60 (limits 0.50 - 0.70)
        bool pass;
    };
    const Case cases[] = {
        {"on target", 40.0, 0.60, true},
        {"abundance at the upper limit", 48.0, 0.60, true},
        {"abundance at the lower limit", 32.0, 0.60, true},
        {"abundance above", 48.1, 0.60, false},
        {"abundance below", 31.9, 0.60, false},
        {"width at the limits", 40.0, 0.70, true},
        {"width too wide", 40.0, 0.71, false},
        {"width too narrow", 40.0, 0.49, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        VexaTuneReportSection report = MakeReport();
        // The instrument's own verdict does not decide the report's: the limits do.
        report.results = {
            {69, 100.0, 0.55, true}, {219, c.abundance, c.width, !c.pass}, {502, 3.0, 0.6, true}};
        const std::vector<std::wstring> lines = GenerateTuneReport(L"Default.tun", report, report.tune, true);
        const std::wstring line = MassLine(lines, 219);
        ASSERT_FALSE(line.empty());
        EXPECT_NE(line.find(L"32.0 - 48.0"), std::wstring::npos) << line;
        EXPECT_NE(line.find(L"0.50 - 0.70"), std::wstring::npos) << line;
        EXPECT_EQ(line.substr(line.size() - 4), c.pass ? L"PASS" : L"FAIL");
        EXPECT_EQ(lines.back().rfind(c.pass ? L"Result: PASS" : L"Result: FAIL", 0), 0u) << lines.back();
    }
}

TEST(TuneReportText, UnmeasuredMassFailsAndEmptyTuneNeverPasses) {
    VexaTuneReportSection report = MakeReport();
    report.results = {{69, 100.0, 0.55, true}, {219, 40.0, 0.6, true}};
    std::vector<std::wstring> lines = GenerateTuneReport(L"Default.tun", report, report.tune, true);
    EXPECT_NE(MassLine(lines, 502).find(L"not measured"), std::wstring::npos);
    EXPECT_EQ(lines.back(), L"Result: FAIL (2 of 3 masses within limits)");

    VexaTuneSection empty;
    lines = GenerateTuneReport(L"Default.tun", report, empty, true);
    EXPECT_EQ(lines.back(), L"Result: FAIL (0 of 0 masses within limits)");
}
