// SPDX-License-Identifier: Apache-2.0
// vexa backup end to end against the simulator: the fetched archive, and the exit codes of a backup
// that succeeds, is aborted or never ends, and one that follows another backup's outcome.
#include "processrun.h"
#include "simulatedinstrument.h"
#include "tempdir.h"
#include "tgzcontents.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <thread>

namespace fs = std::filesystem;

class CliBackup : public ::testing::Test {
protected:
    CliBackup() { m_instrument.tree().createFile("Data/big.vxs", RandomBytes(400000, 11)); }
    std::string root() const { return m_instrument.root(); }

    SimulatedInstrument m_instrument{SimulatedInstrument::Tree::Demo};
    TempDir m_pc;
};

TEST_F(CliBackup, FetchesAnArchiveOfEveryFileOrOfTheItemsNamed) {
    m_instrument.start();
    const std::string all = m_pc.file("all.tgz");
    ProcessResult r = RunVexa({"backup", m_instrument.address(), "-o", all});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("saved to " + all), std::string::npos) << r.out;
    const TgzContents archive = ReadTgz(all);
    ASSERT_TRUE(archive.ok);
    EXPECT_EQ(archive.files, FilesBelow(root(), {"Backup"}));

    r = RunVexa({"--json", "backup", "-o", m_pc.path(), m_instrument.address(), "/Data/big.vxs", "/Tune"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto json = nlohmann::json::parse(r.out);
    EXPECT_EQ(json["archive"], "@" + m_instrument.address() + ":/Backup/vexaron-0427_backup.tgz");
    const TgzContents some = ReadTgz(m_pc.file("vexaron-0427_backup.tgz"));
    ASSERT_TRUE(some.ok);
    std::map<std::string, std::string> expected;
    for (const auto& [name, content] : FilesBelow(root()))
        if (name == "Data/big.vxs" || name.starts_with("Tune/"))
            expected[name] = content;
    EXPECT_EQ(some.files, expected);
}

TEST_F(CliBackup, AbortRefusalAndTimeOutExitOneAndFetchNothing) {
    const std::string target = m_pc.file("b.tgz");
    {
        m_instrument.start({"--fault", "backup-abort"});
        const ProcessResult r = RunVexa({"backup", m_instrument.address(), "-o", target});
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_NE(r.err.find("aborted"), std::string::npos) << r.err;
    }
    {
        m_instrument.start();
        const ProcessResult r = RunVexa({"backup", m_instrument.address(), "-o", target, "/../outside"});
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_NE(r.err.find("refused"), std::string::npos) << r.err;
    }
    {
        m_instrument.start({"--fault", "backup-hang"});
        const ProcessResult r = RunVexa({"backup", "--timeout", "2", m_instrument.address(), "-o", target});
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_NE(r.err.find("10060"), std::string::npos) << r.err;
    }
    EXPECT_TRUE(fs::is_empty(m_pc.path()));
}

// The notifications are one queue for every client: a backup must act on its own outcome only, never
// on one an earlier refused or interrupted backup left queued, nor fetch the archive that was there.
TEST_F(CliBackup, TakesOnlyItsOwnBackupsOutcome) {
    const std::string archive = m_instrument.tree().createFile("Backup/vexaron-0427_backup.tgz", "old");
    fs::last_write_time(archive, fs::file_time_type::clock::now() - std::chrono::hours(24 * 400));
    m_instrument.tree().createFile("Data/run 1.vxs", "a name with a blank");
    m_instrument.start({"--fault", "backup-slow=800"});
    const auto holds = [&](const std::string& file, const std::function<bool(const std::string&)>& wanted) {
        const TgzContents contents = ReadTgz(file);
        EXPECT_TRUE(contents.ok) << file;
        std::map<std::string, std::string> expected;
        for (const auto& [name, content] : FilesBelow(root()))
            if (wanted(name))
                expected[name] = content;
        EXPECT_EQ(contents.files, expected) << file;
    };
    {
        SCOPED_TRACE("after a refused start");
        EXPECT_EQ(RunVexa({"backup", m_instrument.address(), "/Data/none.vxs"}).exitCode, 1);
        const std::string target = m_pc.file("after-refusal.tgz");
        const ProcessResult r =
            RunVexa({"backup", m_instrument.address(), "-o", target, "/Tune", "/Data/run 1.vxs"});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        holds(target,
              [](const std::string& name) { return name.starts_with("Tune/") || name == "Data/run 1.vxs"; });
    }
    {
        SCOPED_TRACE("after an interrupted run whose backup finished unseen");
        const char* cli = std::getenv("VEXA_CLI");
        ASSERT_NE(cli, nullptr);
        const ProcessResult interrupted = RunProcess(
            "/usr/bin/timeout", {"--preserve-status", "-s", "INT", "2", cli, "backup", m_instrument.address(),
                                 "-o", m_pc.file("interrupted.tgz"), "/Data"});
        EXPECT_EQ(interrupted.exitCode, 1) << interrupted.err;
        EXPECT_NE(interrupted.err.find("interrupted"), std::string::npos) << interrupted.err;
        // Its archive is written and its notification waits in the queue.
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!ReadTgz(archive).files.count("Data/big.vxs") && std::chrono::steady_clock::now() < deadline)
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        const std::string target = m_pc.file("after-interrupt.tgz");
        const ProcessResult r = RunVexa({"backup", m_instrument.address(), "-o", target, "/Method"});
        ASSERT_EQ(r.exitCode, 0) << r.err;
        holds(target, [](const std::string& name) { return name.starts_with("Method/"); });
    }
}
