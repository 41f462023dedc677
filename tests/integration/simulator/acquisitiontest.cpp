// SPDX-License-Identifier: Apache-2.0
// Acquisitions: a method file run on the simulator writes a data file that the workstation's own
// reader accepts, the same seed gives the same scans, SIM records only its ions, and a stop writes
// the scans so far.
#include <chrono>
#include <map>
#include <sstream>
#include <thread>

#include "simulatorfixture.h"
#include "vexadatafile.h"
#include "vexarun.h"

namespace {

// A 20 s run (injection at 0, end at 20 s) of masses 40..60, or of the SIM ions given.
std::string ShortMethod(int endSeconds, const std::string& simIons = {}) {
    return R"({"format":"VexaMethod","version":1,"description":"short","model":1,"accessory":1,
        "methodMode":0,"scanMode":)" +
           std::string(simIons.empty() ? "0" : "1") +
           R"(,"concentrator":0,"gc":{"initialTemp":40,"initialHold":0,"rate":60,"finalTemp":200,"finalHold":0},
        "ms":{"massLow":40,"massHigh":60,"simIons":[)" +
           simIons + R"(]},"events":[{"time":0,"valveState":6},{"time":)" +
           std::to_string(endSeconds * 1000) + R"(,"valveState":12}]})";
}

// The header's start time is the wall clock's: everything else must match.
std::string WithoutStartTime(std::string bytes) {
    if (bytes.size() >= 16)
        bytes.replace(12, 4, 4, '\0');
    return bytes;
}

} // namespace

class AcquisitionTest : public SimulatorTest {
protected:
    std::string Output(RawLinkClient& client, const std::string& command) {
        const ReceivedFrame frame = Ask(client, ++m_id, kWireRun, command);
        EXPECT_EQ(frame.kind, kWireData) << command << ": " << frame.message();
        return frame.text();
    }
    std::map<std::string, std::string> Status(RawLinkClient& client) {
        std::map<std::string, std::string> values;
        std::istringstream lines(Output(client, "status"));
        for (std::string line; std::getline(lines, line);)
            if (const size_t equals = line.find('='); equals != std::string::npos)
                values[line.substr(0, equals)] = line.substr(equals + 1);
        return values;
    }
    // The event queue's text once it holds something (empty after 20 s).
    std::string AwaitEvents(RawLinkClient& client) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        std::string events;
        while (events.empty() && std::chrono::steady_clock::now() < deadline) {
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            events = Output(client, "events");
        }
        return events;
    }
    VexaRun ReadData(const std::string& instrumentPath) {
        VexaRun run;
        std::string reason;
        EXPECT_TRUE(VexaDataFile::ReadRun(ReadWholeFile(root() + instrumentPath), &run, &reason)) << reason;
        return run;
    }

    std::uint32_t m_id = 0;
};

TEST_F(AcquisitionTest, AMethodRunWritesTheNextRunFileAndTheSameSeedGivesTheSameScans) {
    m_temp.createFile("root/Method/Short.mth", ShortMethod(20));
    Start({"--time-scale", "10", "--seed", "7"});
    auto client = Connect();
    ASSERT_EQ(Output(*client, "method run /Method/Short.mth"), "ok");
    const std::map<std::string, std::string> running = Status(*client);
    EXPECT_EQ(running.at("process"), "/Method/Short.mth");
    EXPECT_EQ(running.at("processTotal"), "2"); // 20 s at ten times the speed
    EXPECT_EQ(AwaitEvents(*client), "1048882 method finished /Data/Run008.vxs\n"); // after the demo's Run007
    EXPECT_EQ(Status(*client).at("process"), "");

    const VexaRun run = ReadData("/Data/Run008.vxs");
    EXPECT_EQ(run.ScanCount(), 40u); // one every 0.5 s
    EXPECT_EQ(run.TimesMs()[39], 19500u);
    EXPECT_EQ(run.Masses(0).size(), 21u);
    EXPECT_EQ(run.Parameter(L"SENSOR"), L"/Method/Short.mth");
    EXPECT_EQ(run.Parameter(L"INSTRUMENT"), L"vexaron-0427");
    EXPECT_EQ(run.Parameter(L"STOPPED"), L"0");
    EXPECT_EQ(run.MassRange(), (std::pair<double, double>{40, 60}));

    ASSERT_EQ(Output(*client, "method run \"/Method/Short.mth\""), "ok");
    EXPECT_EQ(AwaitEvents(*client), "1048882 method finished /Data/Run009.vxs\n");
    const std::string first = WithoutStartTime(ReadWholeFile(root() + "/Data/Run008.vxs"));
    EXPECT_TRUE(first == WithoutStartTime(ReadWholeFile(root() + "/Data/Run009.vxs")));

    Start({"--time-scale", "10", "--seed", "8"});
    client = Connect();
    ASSERT_EQ(Output(*client, "method run /Method/Short.mth"), "ok");
    EXPECT_EQ(AwaitEvents(*client), "1048882 method finished /Data/Run010.vxs\n");
    EXPECT_FALSE(first == WithoutStartTime(ReadWholeFile(root() + "/Data/Run010.vxs")));
    EXPECT_TRUE(LeftoverTemporaries(root()).empty());
}

TEST_F(AcquisitionTest, SimRecordsOnlyItsIons) {
    m_temp.createFile("root/Method/Sim.mth", ShortMethod(5, "207, 91, 78, 91"));
    Start({"--time-scale", "20"});
    auto client = Connect();
    ASSERT_EQ(Output(*client, "method run /Method/Sim.mth"), "ok");
    EXPECT_EQ(AwaitEvents(*client), "1048882 method finished /Data/Run008.vxs\n");
    const VexaRun run = ReadData("/Data/Run008.vxs");
    ASSERT_EQ(run.ScanCount(), 10u);
    for (size_t scan = 0; scan < run.ScanCount(); ++scan) {
        const auto masses = run.Masses(scan);
        EXPECT_EQ(std::vector<float>(masses.begin(), masses.end()), (std::vector<float>{78, 91, 207}));
        EXPECT_EQ(run.Flags(scan), VexaRun::kSimScanFlag);
    }
    EXPECT_TRUE(run.IsSim());
    EXPECT_EQ(run.Parameter(L"SCANMODE"), L"1");
}

TEST_F(AcquisitionTest, StopWritesTheScansSoFarMarkedStopped) {
    m_temp.createFile("root/Method/Long.mth", ShortMethod(600));
    Start();
    auto client = Connect();
    ASSERT_EQ(Output(*client, "method run /Method/Long.mth"), "ok");
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    const std::map<std::string, std::string> running = Status(*client);
    EXPECT_GE(std::stoi(running.at("processElapsed")), 1);
    EXPECT_LE(std::stoi(running.at("processElapsed")), 5);
    EXPECT_EQ(running.at("processTotal"), "600");
    EXPECT_EQ(Output(*client, "method stop"), "ok");
    EXPECT_EQ(AwaitEvents(*client), "1048882 method stopped /Data/Run008.vxs\n");
    const VexaRun run = ReadData("/Data/Run008.vxs");
    EXPECT_TRUE(run.WasStopped());
    EXPECT_GE(run.ScanCount(), 2u);
    EXPECT_LE(run.ScanCount(), 20u); // generous: the stop came after 1.2 s and a status
    EXPECT_NE(Ask(*client, ++m_id, kWireRun, "method stop").status(), 0u);
}

TEST_F(AcquisitionTest, MethodsThatCannotRunAreRefused) {
    m_temp.createFile("root/Method/NoEnd.mth", ShortMethod(0));
    m_temp.createFile("root/Method/Broken.mth", "{not json");
    Start();
    auto client = Connect();
    for (const char* command : {"method run /Method/Missing.mth", "method run /Method/NoEnd.mth",
                                "method run /Method/Broken.mth", "method run /../outside/x.mth"}) {
        const ReceivedFrame reply = Ask(*client, ++m_id, kWireRun, command);
        EXPECT_EQ(reply.kind, kWireReply) << command;
        EXPECT_NE(reply.status(), 0u) << command;
        EXPECT_FALSE(reply.message().empty()) << command;
    }
    EXPECT_EQ(Status(*client).at("process"), "");
}
