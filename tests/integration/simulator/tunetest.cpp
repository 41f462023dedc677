// SPDX-License-Identifier: Apache-2.0
// The instrument's tune: `tune run` appends a report to the report file beside the tune file.
#include <chrono>
#include <fstream>

#include <nlohmann/json.hpp>

#include "simulatorfixture.h"

using nlohmann::json;

namespace {

json ReadJson(const std::string& path) {
    std::ifstream in(path);
    return json::parse(in, nullptr, false);
}

std::int64_t NowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

} // namespace

class TuneTest : public SimulatorTest {
protected:
    ReceivedFrame Run(RawLinkClient& client, const std::string& command) {
        return Ask(client, ++m_id, kWireRun, command, {}, 0, 30);
    }
    std::uint32_t m_id = 0;
};

TEST_F(TuneTest, RunAppendsAReportOfTheCurrentTuneFile) {
    const std::string reportFile = root() + "/Tune/Reports/Default.rpt";
    const std::size_t before = ReadJson(reportFile)["reports"].size();
    ASSERT_GE(before, 10u); // the demo ships a few months of reports
    Start();
    auto client = Connect();
    const std::int64_t start = NowMicroseconds();
    const ReceivedFrame answer = Run(*client, "tune run");
    ASSERT_EQ(answer.kind, kWireData) << answer.message();
    EXPECT_EQ(answer.text(), "/Tune/Reports/Default.rpt\n");

    const json reports = ReadJson(reportFile);
    EXPECT_EQ(reports["format"], "VexaTuneReport");
    ASSERT_EQ(reports["reports"].size(), before + 1);
    const json& added = reports["reports"].back();
    EXPECT_GE(added["time"].get<std::int64_t>(), start);
    EXPECT_LE(added["time"].get<std::int64_t>(), NowMicroseconds());
    EXPECT_EQ(added["instrument"], "vexaron-0427");
    const json tune = ReadJson(root() + "/Tune/Default.tun")["tune"];
    EXPECT_EQ(added["tune"], tune);
    ASSERT_EQ(added["results"].size(), tune["masses"].size());
    for (const json& mass : tune["masses"]) {
        const json& result = added["results"][std::to_string(mass["mass"].get<int>())];
        // A little noise, never wild: within half the target either way.
        EXPECT_NEAR(result["abundance"].get<double>(), mass["abundance"].get<double>(),
                    mass["abundance"].get<double>() * 0.5);
        EXPECT_NEAR(result["width"].get<double>(), mass["width"].get<double>(), 0.3);
        EXPECT_TRUE(result["pass"].is_boolean());
    }
}

TEST_F(TuneTest, ManualTuneFileChoosesTheReportFile) {
    const std::string tune = ReadWholeFile(root() + "/Tune/Default.tun");
    m_temp.createFile("root/Tune/ab", tune);
    m_temp.createFile("root/Method/Site.tun", tune);
    Start();
    auto client = Connect();
    struct Case {
        const char* manual;  // the manual tune file set first (null: none)
        const char* command; // the tune command
        const char* report;  // the report file it answers with
    };
    const Case cases[] = {
        {"tune manual 3 /Tune/ab", "tune run", "/Tune/Reports/abrpt"},
        {"tune manual 3 @127.0.0.1:/Method/Site.tun", "tune run", "/Method/Reports/Site.rpt"},
        {"tune manual 5 /Tune/ab", "tune run 3", "/Method/Reports/Site.rpt"},
        {nullptr, "tune run 5", "/Tune/Reports/abrpt"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.command);
        if (c.manual) {
            ASSERT_EQ(Run(*client, c.manual).kind, kWireData);
        }
        const ReceivedFrame answer = Run(*client, c.command);
        ASSERT_EQ(answer.kind, kWireData) << answer.message();
        EXPECT_EQ(answer.text(), std::string(c.report) + "\n");
        EXPECT_FALSE(ReadJson(root() + c.report)["reports"].empty());
    }
    EXPECT_EQ(ReadJson(root() + "/Method/Reports/Site.rpt")["reports"].size(), 2u);
}

TEST_F(TuneTest, FailedTuneSaysWhyAndKeepsTheReportFile) {
    m_temp.createFile("root/Tune/Broken.tun", "{\"format\": \"VexaTune\", ");
    m_temp.createFile("root/Tune/Method.tun", R"({"format": "VexaMethod", "version": 1})");
    m_temp.createFile("root/Tune/Damaged.tun", ReadWholeFile(root() + "/Tune/Default.tun"));
    const std::string damaged = m_temp.createFile("root/Tune/Reports/Damaged.rpt", "{\"reports\": [");
    Start();
    auto client = Connect();
    struct Case {
        const char* tuneFile;
        std::uint32_t status;
    };
    const Case cases[] = {
        {"/Tune/Missing.tun", 2},  {"/Tune/Broken.tun", 22}, {"/Tune/Method.tun", 22},
        {"/Tune/Damaged.tun", 22}, {"/../outside.tun", 13},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tuneFile);
        ASSERT_EQ(Run(*client, std::string("tune manual 3 ") + c.tuneFile).kind, kWireData);
        const ReceivedFrame answer = Run(*client, "tune run");
        EXPECT_EQ(answer.kind, kWireReply);
        EXPECT_EQ(answer.status(), c.status);
        EXPECT_FALSE(answer.message().empty());
    }
    EXPECT_EQ(ReadWholeFile(damaged), "{\"reports\": [");
    EXPECT_NE(Run(*client, "tune run x").status(), 0u);
}
