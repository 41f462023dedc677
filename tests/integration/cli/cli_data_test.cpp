// SPDX-License-Identifier: Apache-2.0
// `vexa method run|stop` and `vexa data` end to end against the simulator: a run acquired, waited for
// and read back from the instrument, exports written, damaged files refused with their reasons.
#include "demotree.h"
#include "processrun.h"
#include "simulator.h"
#include "tempdir.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

// Injection at 0, end at 30 s, masses 40..120: 60 scans; at --time-scale 20, 1.5 s.
constexpr const char* kShortMethod = R"({"format":"VexaMethod","version":1,"description":"short","model":1,
    "accessory":1,"methodMode":0,"scanMode":0,"concentrator":0,
    "gc":{"initialTemp":40,"initialHold":0,"rate":60,"finalTemp":200,"finalHold":0},
    "ms":{"massLow":40,"massHigh":120,"simIons":[]},
    "events":[{"time":0,"valveState":6},{"time":30000,"valveState":12}]})";

class CliDataTest : public ::testing::Test {
protected:
    CliDataTest() {
        CopyDemoTree(m_root.path());
        m_root.createFile("Method/Short Run.mth", kShortMethod);
        m_sim = std::make_unique<SimulatorProcess>(
            m_root.path(), std::vector<std::string>{"--time-scale", "20", "--seed", "3"});
    }
    std::string Remote(const std::string& path) const { return "@" + m_sim->address() + ":" + path; }

    TempDir m_root;
    TempDir m_pc;
    std::unique_ptr<SimulatorProcess> m_sim;
};

} // namespace

TEST_F(CliDataTest, RunWaitThenReadAndExportTheRemoteFile) {
    ProcessResult r = RunVexa({"method", "run", "--wait", Remote("/Method/Short Run.mth")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const std::string file = Remote("/Data/Run008.vxs");
    EXPECT_EQ(r.out, file + "\n");

    r = RunVexa({"data", "info", "--json", file});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const nlohmann::json facts = nlohmann::json::parse(r.out).at(0);
    EXPECT_EQ(facts["method"], "/Method/Short Run.mth");
    EXPECT_EQ(facts["scans"], 60);
    EXPECT_EQ(facts["scanMode"], "Full Scan");
    EXPECT_EQ(facts["massLow"], 40);
    EXPECT_EQ(facts["massHigh"], 120);
    EXPECT_EQ(facts["stopped"], false);

    r = RunVexa({"data", "tic", "--mz", "91", file});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out.substr(0, r.out.find('\n')), "time_s,tic,mz_91");
    EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 61);

    // The average of 1..2 s minus the average of 5..6 s, against the library's own arithmetic.
    r = RunVexa({"data", "spectrum", "--json", "--time", "1", "--to", "2", "--background", "5..6", file});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const nlohmann::json spectrum = nlohmann::json::parse(r.out);
    VexaRun run;
    std::string reason;
    ASSERT_TRUE(VexaDataFile::ReadRun(ReadWholeFile(m_root.file("Data/Run008.vxs")), &run, &reason))
        << reason;
    const VexaSpectrum expected = run.Average(2, 4).Minus(run.Average(10, 12));
    EXPECT_EQ(spectrum["mz"].get<std::vector<float>>(), expected.mz);
    EXPECT_EQ(spectrum["intensity"].get<std::vector<float>>(), expected.intensity);

    for (const char* format : {"andi", "msp", "csv"}) {
        const std::string out = m_pc.file(std::string("run.") + format);
        r = RunVexa({"data", "export", "--format", format, "-o", out, file});
        EXPECT_EQ(r.exitCode, 0) << format << ": " << r.err;
        EXPECT_TRUE(FileExists(out)) << format;
    }
    EXPECT_EQ(ReadWholeFile(m_pc.file("run.msp")).rfind("Name: VOC demo mix ", 0), 0u);
}

TEST_F(CliDataTest, StopEndsTheRunAndANothingToStopFails) {
    m_root.createFile(
        "Method/Long.mth",
        std::string(kShortMethod).replace(std::string(kShortMethod).find("30000"), 5, "900000"));
    ProcessResult r = RunVexa({"method", "run", Remote("/Method/Long.mth")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    r = RunVexa({"method", "stop", m_sim->address()});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    r = RunVexa({"method", "stop", m_sim->address()});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("no method is running"), std::string::npos) << r.err;
    EXPECT_EQ(RunVexa({"method", "run", "--wait", m_pc.file("local.mth")}).exitCode, 2);
}

TEST_F(CliDataTest, DamagedFilesAreRefusedWithTheirReason) {
    std::string good = ReadWholeFile(DemoTreePath("Data/Run007.vxs"));
    std::string backwards = good;
    backwards[48 + 16 + 1] = '\x7f'; // scan 2 moves to 32.5 s, after scan 3
    const std::string cut = m_pc.createFile("cut.vxs", good.substr(0, 1000));
    const std::string late = m_pc.createFile("late.vxs", backwards);
    const std::string v3 = m_pc.createFile("v3.vxs", std::string("VXS1\x03", 5) + good.substr(5));
    const struct {
        std::string file;
        const char* reason;
    } cases[] = {{cut, "truncated"},
                 {late, "scan 3: retention time 1000 ms goes backwards"},
                 {v3, "version 3 is not supported"}};
    for (const auto& c : cases) {
        for (const char* command : {"info", "tic"}) {
            const ProcessResult r = RunVexa({"data", command, c.file});
            EXPECT_EQ(r.exitCode, 1) << command << " " << c.file;
            EXPECT_NE(r.err.find(c.reason), std::string::npos) << r.err;
        }
    }
    EXPECT_EQ(RunVexa({"data", "info", Remote("/Data/missing.vxs")}).exitCode, 1);
}
