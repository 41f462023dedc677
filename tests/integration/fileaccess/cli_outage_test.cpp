// SPDX-License-Identifier: Apache-2.0
// Copies that outlive dropped links: the simulator closes every connection and refuses new ones for a
// while, twice, in the middle of a slow `vexa get`.
#include "processrun.h"
#include "simulatedinstrument.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

// 8 MiB at 1 MiB/s: every attempt lasts about 8 s. The first outage cuts the first attempt; the
// second starts after the latest moment the second attempt can begin (the drop is noticed within the
// link's 3 s receive limit, the back-off's first step is at most 1.2 s) and before its earliest end.
constexpr size_t kFileBytes = 8 << 20;
const std::vector<std::string> kTwoOutages = {"--fault",          "rate=1024", "--fault",
                                              "outage=1500:1000", "--fault",   "outage=7500:1000"};

std::string ReadAll(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << in.rdbuf();
    return bytes.str();
}

// Names in `folder` other than `keep`: a temporary file left behind shows up here.
std::vector<std::string> Leftovers(const std::string& folder, const std::string& keep) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename() != keep)
            names.push_back(entry.path().filename().string());
    return names;
}

class CliOutage : public ::testing::Test {
protected:
    void SetUp() override {
        m_content = RandomBytes(kFileBytes, 11);
        m_instrument.tree().createFile("Data/run.vxs", m_content);
        m_target = m_pc.createFile("run.vxs", "the old file");
    }

    SimulatedInstrument m_instrument;
    TempDir m_pc;
    std::string m_content;
    std::string m_target;
};

} // namespace

TEST_F(CliOutage, GetRidesThroughTwoOutagesWithTheRightBytes) {
    m_instrument.start(kTwoOutages);
    const ProcessResult r = RunVexa(
        {"--retry", "3", "get", "--overwrite", "yes", m_instrument.remote("/Data/run.vxs"), m_target}, 90000);
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.err.find("link lost, waiting for the instrument (attempt 1 of 3)"), std::string::npos)
        << r.err;
    EXPECT_NE(r.err.find("(attempt 2 of 3)"), std::string::npos) << r.err;
    EXPECT_TRUE(ReadAll(m_target) == m_content) << "the retried file mixes in bytes of a failed attempt";
    EXPECT_TRUE(Leftovers(m_pc.path(), "run.vxs").empty());
}

TEST_F(CliOutage, MoreOutagesThanRetriesKeepTheOldFileAndLeaveNoTemporary) {
    m_instrument.start(kTwoOutages);
    const ProcessResult r = RunVexa(
        {"--retry", "1", "get", "--overwrite", "yes", m_instrument.remote("/Data/run.vxs"), m_target}, 90000);
    EXPECT_NE(r.exitCode, 0);
    EXPECT_NE(r.err.find("(attempt 1 of 1)"), std::string::npos) << r.err;
    EXPECT_EQ(ReadAll(m_target), "the old file");
    EXPECT_TRUE(Leftovers(m_pc.path(), "run.vxs").empty());
}

TEST_F(CliOutage, RetryZeroFailsAtTheFirstDrop) {
    m_instrument.start(kTwoOutages);
    const ProcessResult r = RunVexa(
        {"--retry", "0", "get", "--overwrite", "yes", m_instrument.remote("/Data/run.vxs"), m_target}, 90000);
    EXPECT_NE(r.exitCode, 0);
    EXPECT_EQ(r.err.find("waiting for the instrument"), std::string::npos) << r.err;
    EXPECT_EQ(ReadAll(m_target), "the old file");
    EXPECT_TRUE(Leftovers(m_pc.path(), "run.vxs").empty());
}
