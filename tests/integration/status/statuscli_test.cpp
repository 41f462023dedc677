// SPDX-License-Identifier: Apache-2.0
// `vexa status` against the simulator: the text layout, the JSON shape and the exit codes.
#include "loopback.h"
#include "processrun.h"
#include "simulatedinstrument.h"
#include "tempdir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sstream>
#include <string>
#include <vector>

namespace {

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

class StatusCliTest : public ::testing::Test {
protected:
    StatusCliTest() {
        m_instrument.start({"--profile", m_dir.createFile("profile.json", R"({"drift": false, "model": 5,
            "injectionPort": 0, "cartridge": 1, "concentrator": 3})")});
    }
    TempDir m_dir; // the profile, outside the instrument's tree
    SimulatedInstrument m_instrument;
};

TEST_F(StatusCliTest, TextLayout) {
    const ProcessResult result = RunVexa({"status", m_instrument.address()}, 30000);
    ASSERT_EQ(result.exitCode, 0) << result.err;
    const std::vector<std::string> lines = Lines(result.out);
    ASSERT_EQ(lines.size(), 3u + 5u + 11u + 1u) << result.out;
    EXPECT_EQ(lines[0], "Current Pressures");
    EXPECT_EQ(lines[1].rfind("  IS Supply (kPa): ", 0), 0u);
    EXPECT_EQ(lines[4].rfind("   ", 0), 0u) << "model 5: the reservoir line has no label";
    EXPECT_EQ(lines[6], "Current Temperatures (C)");
    EXPECT_EQ(lines[9].rfind("   ", 0), 0u) << "the third temperature line has no label";
    EXPECT_EQ(lines[18], "Sample Input Device");
    EXPECT_EQ(lines[19], "  Type: Loop Cartridge installed");
    for (const std::string& line : lines) {
        if (line.rfind("  ", 0) == 0) {
            EXPECT_GT(line.size(), 3u) << "every line carries a value";
        }
    }
}

TEST_F(StatusCliTest, JsonShape) {
    for (const std::vector<std::string>& args :
         {std::vector<std::string>{"status", m_instrument.address(), "--json"},
          std::vector<std::string>{"--json", "status", "@" + m_instrument.address()}}) {
        const ProcessResult result = RunVexa(args, 30000);
        ASSERT_EQ(result.exitCode, 0) << result.err;
        const nlohmann::json status = nlohmann::json::parse(result.out, nullptr, false);
        ASSERT_TRUE(status.is_array()) << result.out;
        ASSERT_EQ(status.size(), 3u);
        const std::vector<std::string> titles = {"Current Pressures", "Current Temperatures (C)",
                                                 "Sample Input Device"};
        const std::vector<size_t> counts = {5, 11, 1};
        for (size_t s = 0; s < 3; ++s) {
            EXPECT_EQ(status[s].at("title"), titles[s]);
            ASSERT_EQ(status[s].at("lines").size(), counts[s]);
            for (const auto& line : status[s].at("lines")) {
                EXPECT_TRUE(line.at("label").is_string());
                EXPECT_TRUE(line.at("value").is_string());
            }
        }
        EXPECT_EQ(status[0]["lines"][3]["label"], "");
        EXPECT_EQ(status[1]["lines"][2]["label"], "");
        EXPECT_EQ(status[2]["lines"][0]["value"], "Loop Cartridge installed");
        EXPECT_EQ(status[0]["lines"][4]["value"], "2.50e-03");
    }
}

TEST(StatusCliExitTest, UnreachableAndBadHosts) {
    const ProcessResult unreachable = RunVexa({"status", FreshLoopbackAddress()}, 30000);
    EXPECT_EQ(unreachable.exitCode, 3);
    EXPECT_NE(unreachable.err.find("10061"), std::string::npos) << unreachable.err;
    EXPECT_TRUE(unreachable.out.empty());

    const ProcessResult bad = RunVexa({"status", "no:such:host"}, 30000);
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_EQ(RunVexa({"status"}, 30000).exitCode, 2);
}

} // namespace
