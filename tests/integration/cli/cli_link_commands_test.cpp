// SPDX-License-Identifier: Apache-2.0
// The command-line tool's link commands end to end against the simulator: words, numbers, exit codes.
#include "demotree.h"
#include "loopback.h"
#include "processrun.h"
#include "simulatedinstrument.h"
#include "simulator.h"
#include "tempdir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>

TEST(CliPing, ReachableInstrumentExitsZero) {
    SimulatorProcess sim(DemoTreePath());
    ProcessResult r = RunVexa({"ping", sim.address()});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("the instrument answers"), std::string::npos) << r.out;

    r = RunVexa({"--json", "ping", "@" + sim.address() + ":"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    auto json = nlohmann::json::parse(r.out);
    EXPECT_EQ(json["reachable"], true);
    EXPECT_EQ(json["host"], "@" + sim.address() + ":");
}

TEST(CliPing, UnreachableInstrumentSaysWhyInWordsAndNumbers) {
    std::string nobody = FreshLoopbackAddress();
    ProcessResult r = RunVexa({"ping", nobody});
    EXPECT_EQ(r.exitCode, 3);
    EXPECT_NE(r.err.find("10061 (connection refused)"), std::string::npos) << r.err;

    r = RunVexa({"--json", "ping", nobody});
    EXPECT_EQ(r.exitCode, 3);
    auto json = nlohmann::json::parse(r.out);
    EXPECT_EQ(json["reachable"], false);
    EXPECT_EQ(json["error"]["number"], 10061);
}

TEST(CliPing, UsageErrorsExitTwo) {
    EXPECT_EQ(RunVexa({"ping", "not a host!"}).exitCode, 2);
    EXPECT_EQ(RunVexa({"ping"}).exitCode, 2);
    EXPECT_EQ(RunVexa({}).exitCode, 2);
    EXPECT_EQ(RunVexa({"no-such-command"}).exitCode, 2);
    EXPECT_EQ(RunVexa({"--help"}).exitCode, 0);
}

TEST(CliNextName, ScansThePcAndTheInstrument) {
    SimulatedInstrument instrument;
    instrument.tree().createFile("Data/Run007.VXS", "x");
    instrument.tree().createFile("Data/Sub/Run011.vxs", "x");
    instrument.start();
    SimulatorProcess& sim = instrument.sim();
    TempDir pc;
    pc.createFile(sim.address() + "/Data/run009.vxs", "x");

    ProcessResult r = RunVexa({"next-name", "--root", pc.path(), sim.address(), "4", "Run", "vxs", "3"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "Run010.vxs\n") << "the PC's run009 beats the instrument's Run007";

    r = RunVexa({"next-name", "--root", pc.path(), sim.address(), "4", "Sub/Run", "vxs", "3"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "Run012.vxs\n") << "the instrument's sub-folder counts";

    sim.stop();
    r = RunVexa({"next-name", "--root", pc.path(), sim.address(), "4", "Run", "vxs", "3"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "Run010.vxs\n") << "an unreachable instrument contributes nothing";

    EXPECT_EQ(RunVexa({"next-name", sim.address(), "15", "Run", "vxs", "3"}).exitCode, 2);
}
