// SPDX-License-Identifier: Apache-2.0
// `vexa get` and `put` when the instrument's link does not answer: the files go over FTP (a real
// pyftpdlib server on the instrument's address), and an upload still lands under its final name only
// once complete.
#include "ftpserverprocess.h"
#include "processrun.h"
#include "tempdir.h"

#include <gtest/gtest.h>

class CliOverFtp : public ::testing::Test {
protected:
    void SetUp() override {
        std::string whyNot;
        bool skippable = false;
        m_home.createDir("Data");
        if (!m_server.Start(m_home.path(), "qord", &whyNot, &skippable)) {
            if (skippable)
                GTEST_SKIP() << "no FTP server for this test: " << whyNot;
            FAIL() << whyNot;
        }
    }
    // Nothing listens on the link's port at the FTP server's address.
    std::string Remote(const std::string& path) const { return "@" + m_server.address() + ":" + path; }
    std::vector<std::string> Env() const { return {"ftp_proxy=", "FTP_PROXY=", "all_proxy=", "ALL_PROXY="}; }

    TempDir m_home;
    TempDir m_pc;
    FtpServerProcess m_server;
};

TEST_F(CliOverFtp, PutAndGetFallBackToFtp) {
    const std::string content = RandomBytes(300000, 21);
    m_pc.createFile("up.bin", content);
    ProcessResult r = RunVexa({"-v", "put", m_pc.file("up.bin"), Remote("/Data/up.bin")}, 60000, Env());
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.err.find("over FTP"), std::string::npos) << r.err;
    EXPECT_TRUE(ReadWholeFile(m_home.file("Data/up.bin")) == content);
    EXPECT_TRUE(LeftoverTemporaries(m_home.path()).empty());

    // Replacing keeps the old file until the new one is complete, then swaps them.
    m_pc.createFile("up.bin", "second version");
    r = RunVexa({"put", "--overwrite", "yes", m_pc.file("up.bin"), Remote("/Data/up.bin")}, 60000, Env());
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadWholeFile(m_home.file("Data/up.bin")), "second version");
    r = RunVexa({"put", m_pc.file("up.bin"), Remote("/Data/up.bin")}, 60000, Env());
    EXPECT_EQ(r.exitCode, 1) << "no terminal and no --overwrite: " << r.err;

    r = RunVexa({"-v", "get", Remote("/Data/up.bin"), m_pc.file("down.bin")}, 60000, Env());
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.err.find("over FTP"), std::string::npos) << r.err;
    EXPECT_EQ(ReadWholeFile(m_pc.file("down.bin")), "second version");
    EXPECT_TRUE(LeftoverTemporaries(m_pc.path()).empty());

    // Folder commands need the link: the instrument counts as unreachable.
    EXPECT_EQ(RunVexa({"ls", Remote("/Data")}, 60000, Env()).exitCode, 3);
}

TEST_F(CliOverFtp, AFailedUploadLeavesNoTemporaryFile) {
    m_pc.createFile("x.bin", "data");
    ProcessResult r = RunVexa({"put", m_pc.file("x.bin"), Remote("/NoSuchFolder/x.bin")}, 60000, Env());
    EXPECT_EQ(r.exitCode, 1) << r.err;
    EXPECT_TRUE(LeftoverTemporaries(m_home.path()).empty());
}
