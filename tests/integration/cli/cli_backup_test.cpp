// vexa backup end to end against the simulator: the fetched archive, and the exit codes of a backup
// that succeeds, is aborted or never ends.
#include "processrun.h"
#include "simulatedinstrument.h"
#include "tempdir.h"
#include "tgzcontents.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

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
