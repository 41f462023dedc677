// SPDX-License-Identifier: Apache-2.0
// The instrument's backup: a real .tgz packed off the request thread, progress, the completion event.
#include <chrono>
#include <filesystem>
#include <thread>

#include "simulatorfixture.h"
#include "tgzcontents.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kArchive = "/Backup/vexaron-0427_backup.tgz";

} // namespace

class BackupTest : public SimulatorTest {
protected:
    void StartWith(const std::vector<std::string>& args = {}) {
        Start(args);
        m_client = Connect();
    }
    ReceivedFrame Run(const std::string& command) {
        return Ask(*m_client, ++m_id, kWireRun, command, {}, 0, 30);
    }
    std::string Output(const std::string& command) {
        const ReceivedFrame frame = Run(command);
        EXPECT_EQ(frame.kind, kWireData) << command << ": " << frame.message();
        return frame.text();
    }
    int Progress() {
        const std::string status = Output("status");
        const std::size_t at = status.find("backupProgress=");
        return at == std::string::npos ? -1 : std::stoi(status.substr(at + 15));
    }
    // The text of the next backup event ("" when none came within 20 s).
    std::string AwaitBackupEvent() {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (std::chrono::steady_clock::now() < deadline) {
            const std::string events = Output("events");
            const std::size_t at = events.find("1048881 ");
            if (at != std::string::npos)
                return events.substr(at + 8, events.find('\n', at) - at - 8);
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return {};
    }
    // Names in /Backup other than the finished archive (temporary files left behind).
    std::vector<std::string> Leftovers() {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(root() + "/Backup"))
            if (entry.path().filename() != fs::path(kArchive).filename() &&
                entry.path().filename() != ".gitkeep")
                names.push_back(entry.path().filename().string());
        return names;
    }

    std::unique_ptr<RawLinkClient> m_client;
    std::uint32_t m_id = 0;
};

TEST_F(BackupTest, BackupAllPacksEveryFileButTheBackupFolder) {
    m_temp.createFile("root/Data/big.vxs", RandomBytes(300000, 7));
    m_temp.createFile("root/Backup/old_backup.tgz", "an older archive");
    StartWith();
    EXPECT_EQ(Output("backup"), "ok");
    EXPECT_EQ(AwaitBackupEvent(), kArchive);
    EXPECT_EQ(Progress(), 100);

    const TgzContents archive = ReadTgz(root() + kArchive);
    ASSERT_TRUE(archive.ok);
    EXPECT_EQ(archive.files, FilesBelow(root(), {"Backup"}));
    EXPECT_TRUE(archive.folders.count("Data"));
    EXPECT_TRUE(archive.folders.count("Reports"));
    EXPECT_FALSE(archive.folders.count("Backup"));
    EXPECT_EQ(Leftovers(), std::vector<std::string>{"old_backup.tgz"});
}

TEST_F(BackupTest, SelectedItemsHoldOnlyThoseEntries) {
    StartWith();
    const std::string host = "@" + m_simulator->address() + ":";
    // The workstation names items with its host prefix, or with backslashes when it has none.
    m_temp.createFile("root/Data/run 1.vxs", "blank");
    m_temp.createFile("root/Data/say \"hi\".txt", "quoted");
    EXPECT_EQ(Output("backup " + host + "/Data/run1.vxs " + host + "/Method \\Tune\\Default.tun \"" + host +
                     "/Data/run 1.vxs\" \"/Data/say \\\"hi\\\".txt\""),
              "ok");
    EXPECT_EQ(AwaitBackupEvent(), kArchive);

    const TgzContents archive = ReadTgz(root() + kArchive);
    ASSERT_TRUE(archive.ok);
    std::map<std::string, std::string> expected;
    for (const auto& [name, content] : FilesBelow(root()))
        if (name == "Data/run1.vxs" || name.starts_with("Method/") || name == "Tune/Default.tun" ||
            name == "Data/run 1.vxs" || name == "Data/say \"hi\".txt")
            expected[name] = content;
    EXPECT_EQ(archive.files, expected);
    EXPECT_EQ(archive.folders, std::set<std::string>{"Method"});
}

TEST_F(BackupTest, ASecondRequestIsRefusedWhileTheFirstGoesOnAndTransfersKeepWorking) {
    StartWith({"--fault", "backup-slow=100"});
    EXPECT_EQ(Output("backup"), "ok");
    const ReceivedFrame second = Run("backup /Data");
    EXPECT_EQ(second.kind, kWireReply);
    EXPECT_EQ(second.status(), 16u) << second.message();

    // Meanwhile the file service answers and progress is part way.
    auto other = Connect();
    std::vector<ReceivedFrame> frames;
    ASSERT_TRUE(other->SendRequest(1, kWireOpenRead, "/hostname"));
    ASSERT_TRUE(other->ReadTransfer(&frames));
    EXPECT_EQ(Content(frames), Bytes({'v', 'e', 'x', 'a', 'r', 'o', 'n', '-', '0', '4', '2', '7', '\n'}));
    const int during = Progress();
    EXPECT_GE(during, 0);
    EXPECT_LT(during, 100);

    EXPECT_EQ(AwaitBackupEvent(), kArchive);
    EXPECT_TRUE(ReadTgz(root() + kArchive).ok);
    EXPECT_EQ(Output("backup /Data"), "ok"); // free again once finished
    EXPECT_EQ(AwaitBackupEvent(), kArchive);
}

TEST_F(BackupTest, AnAbortedBackupLeavesNoArchiveAndTheNextOneWorks) {
    m_temp.createFile("root/Data/big.vxs", RandomBytes(200000, 3));
    StartWith({"--fault", "backup-abort"});
    EXPECT_EQ(Output("backup"), "ok");
    EXPECT_EQ(AwaitBackupEvent(), "aborted");
    EXPECT_FALSE(FileExists(root() + kArchive));
    EXPECT_TRUE(Leftovers().empty());

    EXPECT_EQ(Output("backup"), "ok");
    EXPECT_EQ(AwaitBackupEvent(), kArchive);
}

TEST_F(BackupTest, ItemsOutsideTheFileSystemOrMissingAreRefusedWithoutAnEvent) {
    fs::create_symlink(outside(), root() + "/Data/escape");
    StartWith();
    for (const char* item : {"/../outside", "/Data/escape/secret.txt", "/Data/none.vxs"}) {
        SCOPED_TRACE(item);
        const ReceivedFrame reply = Run(std::string("backup /Method ") + item);
        EXPECT_EQ(reply.kind, kWireReply);
        EXPECT_NE(reply.status(), 0u);
        EXPECT_EQ(Output("events"), "") << "a refused start is no backup that ended";
    }
    EXPECT_FALSE(FileExists(root() + kArchive));
    // A link inside the tree is not followed when everything is packed.
    EXPECT_EQ(Output("backup"), "ok");
    EXPECT_EQ(AwaitBackupEvent(), kArchive);
    const TgzContents archive = ReadTgz(root() + kArchive);
    for (const auto& [name, content] : archive.files)
        EXPECT_EQ(name.find("secret"), std::string::npos) << name;
}

TEST_F(BackupTest, AHungBackupNeverNotifiesAndBlocksTheNext) {
    StartWith({"--fault", "backup-hang"});
    EXPECT_EQ(Output("backup"), "ok");
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(Output("events"), "");
    EXPECT_EQ(Run("backup").status(), 16u);
    EXPECT_EQ(Output("events"), "");
    m_simulator->stop(); // ends although the backup never does
    EXPECT_FALSE(m_simulator->running());
}
