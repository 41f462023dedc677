// SPDX-License-Identifier: Apache-2.0
// Tune and tune report files: what they read, what they refuse, and what survives a round trip.
#include "vexatune.h"
#include "vexatunereport.h"

#include <gtest/gtest.h>

namespace {

const char* const kReportFile = R"({
  "format": "VexaTuneReport", "version": 1, "site": "north",
  "reports": [
    {"time": -5000000, "instrument": "vexaron-0427", "operator": "kim",
     "tune": {"calibrant": "PFTBA", "electronEnergy": 70, "emission": 50, "repeller": 2.4,
              "masses": [{"mass": 69, "abundance": 100.0, "width": 0.55}], "lens": 3},
     "results": {"219": {"abundance": 40.0, "width": 0.6, "pass": true},
                 "69": {"abundance": 100.0, "width": 0.57, "pass": false}}},
    {"time": 1795426209123456, "tune": {}, "results": {}}
  ]})";

} // namespace

TEST(TuneReportFile, ReadsReportsWithTheirTimeTuneAndResults) {
    VexaTuneReport report;
    ASSERT_TRUE(report.Parse(kReportFile));
    const VexaTuneReportSections_& sections = report.Sections();
    ASSERT_EQ(sections.GetNumReports(), 2);
    const VexaTuneReportSection* first = sections.GetReport(0);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(first->time, -5000000);
    EXPECT_EQ(first->instrument, L"vexaron-0427");
    EXPECT_EQ(sections.GetTune(0)->calibrant, L"PFTBA");
    EXPECT_EQ(sections.GetTune(0)->repeller, 2.4);
    ASSERT_EQ(first->results.size(), 2u);
    EXPECT_EQ(first->results[0].mass, 69); // by mass, not by the file's order
    EXPECT_FALSE(first->results[0].pass);
    EXPECT_EQ(first->results[1].abundance, 40.0);
    EXPECT_EQ(sections.GetReport(1)->time, 1795426209123456);
    EXPECT_EQ(sections.GetReport(2), nullptr);
    EXPECT_EQ(sections.GetReport(-1), nullptr);
    EXPECT_EQ(sections.GetTune(2), nullptr);
}

TEST(TuneReportFile, RemovingAndSavingKeepsWhatItDoesNotKnow) {
    VexaTuneReport report;
    ASSERT_TRUE(report.Parse(kReportFile));
    EXPECT_FALSE(report.Sections().RemoveReport(2));
    EXPECT_FALSE(report.Sections().RemoveReport(-1));
    ASSERT_TRUE(report.Sections().RemoveReport(1));

    VexaTuneReport again;
    ASSERT_TRUE(again.Parse(report.Serialize()));
    ASSERT_EQ(again.Sections().GetNumReports(), 1);
    const std::string text = again.Serialize();
    for (const char* kept : {"\"site\": \"north\"", "\"operator\": \"kim\"", "\"lens\": 3"})
        EXPECT_NE(text.find(kept), std::string::npos) << kept;
    EXPECT_EQ(again.Sections().GetReport(0)->results.size(), 2u);
}

TEST(TuneReportFile, RefusesWhatIsNotAReportFileAndStaysAsItWas) {
    const char* const refused[] = {
        "",
        "{\"format\": \"VexaTuneReport\", \"version\": 1, \"reports\": [",
        R"({"format": "VexaTune", "version": 1, "reports": []})",
        R"({"format": "VexaTuneReport", "version": 2, "reports": []})",
        R"({"format": "VexaTuneReport", "reports": []})",
        "[1, 2]",
    };
    VexaTuneReport report;
    ASSERT_TRUE(report.Parse(kReportFile));
    for (const char* text : refused) {
        SCOPED_TRACE(text);
        EXPECT_FALSE(report.Parse(text));
        EXPECT_EQ(report.Sections().GetNumReports(), 2);
    }
    EXPECT_TRUE(report.Parse(R"({"format": "VexaTuneReport", "version": 1})"));
    EXPECT_EQ(report.Sections().GetNumReports(), 0);
}

// Partial files: the reports that read are listed, the others are named and survive a save.
TEST(TuneReportFile, ListsWhatReadsNamesTheRestAndKeepsIt) {
    const std::string good = R"({"time": 7, "tune": {}, "results": {}})";
    const struct {
        std::string reports;
        std::vector<std::wstring> unreadable;
    } cases[] = {
        {"{}", {L"reports"}},
        {"[{\"tune\": {}}, " + good + "]", {L"reports[1]"}},
        {"[" + good + ", {\"time\": 1.5}, {\"time\": \"1\"}]", {L"reports[2]", L"reports[3]"}},
        {"[{\"time\": 1, \"results\": {\"x\": {}}}, " + good + "]", {L"reports[1]"}},
        {"[{\"time\": 1, \"results\": {\"69\": {\"pass\": 1}}}, " + good + "]", {L"reports[1]"}},
        {"[{\"time\": 1, \"tune\": {\"masses\": [{}]}}, " + good + "]", {L"reports[1]"}},
        {"[{\"time\": 1, \"tune\": {\"emission\": \"high\"}}, " + good + "]", {L"reports[1]"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.reports);
        VexaTuneReport report;
        ASSERT_TRUE(
            report.Parse(R"({"format": "VexaTuneReport", "version": 1, "reports": )" + c.reports + "}"));
        EXPECT_EQ(report.GetUnreadable(), c.unreadable);
        const bool hasGood = c.reports.find(good) != std::string::npos;
        ASSERT_EQ(report.Sections().GetNumReports(), hasGood ? 1 : 0);
        if (hasGood) {
            ASSERT_TRUE(report.Sections().RemoveReport(0));
        }
        VexaTuneReport again;
        ASSERT_TRUE(again.Parse(report.Serialize()));
        EXPECT_EQ(again.Sections().GetNumReports(), 0);
        EXPECT_EQ(again.GetUnreadable().size(), c.unreadable.size())
            << "what could not be read is written back";
    }
}

TEST(TuneReportFile, ReportFileNameLiesInTheReportsFolder) {
    const struct {
        const wchar_t* tune;
        const wchar_t* report;
    } cases[] = {
        {L"/data/Tune/Default.tun", L"/data/Tune/Reports/Default.rpt"},
        {L"/data/Tune/ab", L"/data/Tune/Reports/abrpt"}, // shorter than three: kept whole
        {L"/data/Tune/abc", L"/data/Tune/Reports/rpt"},
        {L"@10.0.0.5:/Tune/Site.tun", L"@10.0.0.5:/Tune/Reports/Site.rpt"},
        {L"@10.0.0.5:/Default.tun", L"@10.0.0.5:/Reports/Default.rpt"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(VexaTuneReport::ReportFileName(c.tune), c.report) << c.tune;
}

TEST(TuneFile, ReadsWritesAndKeepsUnknownKeys) {
    VexaTune tune;
    ASSERT_TRUE(tune.Parse(R"({"format": "VexaTune", "version": 1, "note": "site A",
        "tune": {"calibrant": "PFTBA", "electronEnergy": 69.9, "emission": 45, "repeller": 2.1,
                 "masses": [{"mass": 69, "abundance": 100, "width": 0.5},
                            {"mass": 502, "abundance": 3.2, "width": 0.61}]},
        "parameters": {"SENSOR": "/Method/Default.mth", "operator": "kim"}})"));
    EXPECT_EQ(tune.GetSensorMethod(), L"/Method/Default.mth");
    ASSERT_EQ(tune.GetTuneSection().masses.size(), 2u);
    EXPECT_EQ(tune.GetTuneSection().masses[1].abundance, 3.2);
    tune.GetTuneSection().repeller = 2.5;

    VexaTune again;
    ASSERT_TRUE(again.Parse(tune.Serialize()));
    EXPECT_EQ(again.GetTuneSection().repeller, 2.5);
    EXPECT_EQ(again.GetTuneSection().electronEnergy, 69.9);
    const std::string text = again.Serialize();
    EXPECT_NE(text.find("\"note\": \"site A\""), std::string::npos);
    EXPECT_NE(text.find("\"operator\": \"kim\""), std::string::npos);

    for (const char* refused :
         {R"({"format": "VexaTuneReport", "version": 1})", R"({"format": "VexaTune", "version": 9})"})
        EXPECT_FALSE(again.Parse(refused)) << refused;
    EXPECT_EQ(again.GetTuneSection().repeller, 2.5);
}

// A partial tune reads what it can at the defaults for the rest, and names what it could not read.
TEST(TuneFile, ReadsWhatItCanAndNamesTheRest) {
    const struct {
        const char* text;
        std::vector<std::wstring> unreadable;
        size_t masses;
    } cases[] = {
        {R"({"format": "VexaTune", "version": 1, "parameters": {"SENSOR": 5}})", {L"parameters.SENSOR"}, 0},
        {R"({"format": "VexaTune", "version": 1, "tune": []})", {L"tune"}, 0},
        {R"({"format": "VexaTune", "version": 1, "tune": {"emission": "high", "repeller": 2.5,
            "masses": [{"mass": 69, "abundance": 100, "width": 0.5}, {"mass": "x"}]}})",
         {L"tune.emission", L"tune.masses[2]"},
         1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        VexaTune tune;
        ASSERT_TRUE(tune.Parse(c.text));
        EXPECT_EQ(tune.GetUnreadable(), c.unreadable);
        EXPECT_EQ(tune.GetTuneSection().masses.size(), c.masses);
        EXPECT_EQ(tune.GetTuneSection().emission, VexaTuneSection().emission);
    }
}

TEST(TuneFile, AnEmptyTuneWritesAFileItReadsBack) {
    VexaTune empty;
    VexaTune read;
    ASSERT_TRUE(read.Parse(empty.Serialize()));
    EXPECT_TRUE(read.GetTuneSection().masses.empty());
    EXPECT_TRUE(read.GetSensorMethod().empty());
}
