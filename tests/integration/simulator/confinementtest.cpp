// SPDX-License-Identifier: Apache-2.0
// No request reaches anything outside the served folder.
#include <filesystem>

#include "simulatorfixture.h"

namespace fs = std::filesystem;

TEST_F(SimulatorTest, EveryEscapeFromTheRootIsRefused) {
    fs::create_directory_symlink(outside(), m_temp.file("root/Escape"));
    fs::create_symlink(m_temp.file("outside/secret.txt"), m_temp.file("root/Data/secret.vxs"));
    fs::create_symlink("../../outside/secret.txt", m_temp.file("root/Data/relative.vxs"));
    Start();
    auto client = Connect();
    struct Case {
        std::uint32_t command;
        std::string first;
        std::string second;
        std::uint16_t flags;
    };
    std::string dots;
    for (int i = 0; i < 400; ++i)
        dots += "../";
    const Case cases[] = {
        {kWireList, "..", "", kWireListing},
        {kWireList, "/..", "", kWireListing},
        {kWireList, "/../", "", kWireListing},
        {kWireList, "/Data/../../outside", "", kWireListing},
        {kWireList, "/Escape", "", kWireListing},
        {kWireOpenRead, "/../outside/secret.txt", "", 0},
        {kWireOpenRead, "../outside/secret.txt", "", 0},
        {kWireOpenRead, "/Escape/secret.txt", "", 0},
        {kWireOpenRead, "/Data/secret.vxs", "", 0},
        {kWireOpenRead, "/Data/relative.vxs", "", 0},
        {kWireDescribe, "/Escape/secret.txt", "", 0},
        {kWireDescribe, "/../outside", "", 0},
        {kWireDelete, "/Escape/secret.txt", "", 0},
        {kWireDelete, "/Escape", "", kWireRecursive},
        {kWireDelete, "/..", "", kWireRecursive},
        {kWireRename, "/Escape/secret.txt", "/stolen.txt", 0},
        {kWireRename, "/hosts", "/../outside/hosts", 0},
        {kWireMkDir, "/../outside/made", "", 0},
        {kWireMkDir, "/Escape/made", "", 0},
        // Absolute names are taken under the root: there is no /etc there.
        {kWireOpenRead, "/etc/passwd", "", 0},
        {kWireOpenRead, "//etc/passwd", "", 0},
        // NUL bytes, backslashes, bytes that are no UTF-8, paths longer than the field.
        {kWireOpenRead, std::string("/../outside/secret.txt\0/hosts", 29), "", 0},
        {kWireOpenRead, "\\..\\outside\\secret.txt", "", 0},
        {kWireOpenRead, "/Data/..\\..\\outside/secret.txt", "", 0},
        {kWireOpenRead, "/Data/\xff\xfe/../../../outside/secret.txt", "", 0},
        {kWireOpenRead, dots + "outside/secret.txt", "", 0},
        {kWireOpenRead, "/Data/" + dots + "outside/secret.txt", "", 0},
        {kWireDescribe, "/Data/../../outside/secret.txt", "", 0},
        {kWireList, "/Data/relative.vxs/../../../outside", "", kWireListing},
        {kWireList, "/Escape/../../outside", "", kWireListing},
        {kWireDelete, "/Data/../../outside", "", kWireRecursive},
        {kWireDelete, "/Escape/../../outside/secret.txt", "", 0},
        {kWireRename, "/../outside/secret.txt", "/stolen.txt", 0},
        {kWireRename, "/hosts", "/Escape/hosts", 0},
        {kWireRename, "/Data/relative.vxs/../../outside/secret.txt", "/stolen2.txt", 0},
        {kWireMkDir, "/Escape/../../outside/made", "", 0},
        {kWireMkDir, std::string("/\0../outside/made", 17), "", 0},
    };
    std::uint32_t id = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.command) + " " + c.first.substr(0, 80) + " " + c.second);
        const ReceivedFrame reply = Ask(*client, ++id, c.command, c.first, c.second, c.flags);
        EXPECT_EQ(reply.kind, kWireReply);
        EXPECT_NE(reply.status(), 0u);
    }
    // Uploads get no answer; the file simply never appears.
    ASSERT_TRUE(client->Upload(++id, "/../outside/written.txt", ToBytes("x")));
    ASSERT_TRUE(client->Upload(++id, "/Escape/written.txt", ToBytes("x")));
    ASSERT_TRUE(client->Upload(++id, "/Data/relative.vxs", ToBytes("x")));
    ASSERT_TRUE(client->Upload(++id, dots + "outside/written.txt", ToBytes("x")));
    // The command language takes paths too; they name files to the instrument, never open them here.
    for (const std::string command : {"method run \"/../outside/secret.txt\" -speed=2",
                                      "tune manual 1 /../outside/secret.txt", "backup /../outside"})
        Ask(*client, ++id, kWireRun, command, {}, 0, 10);
    EXPECT_EQ(Ask(*client, ++id, kWireDescribe, "/hosts").kind, kWireData); // both uploads were consumed

    EXPECT_EQ(ReadWholeFile(m_temp.file("outside/secret.txt")), "not for the instrument");
    EXPECT_FALSE(fs::exists(m_temp.file("outside/written.txt")));
    EXPECT_FALSE(fs::exists(m_temp.file("outside/made")));
    EXPECT_FALSE(fs::exists(m_temp.file("outside/hosts")));
    EXPECT_TRUE(fs::exists(m_temp.file("root/hosts")));

    // Links that lead out are not listed either.
    const ReceivedFrame rootListing = Ask(*client, ++id, kWireList, "/", {}, kWireListing | kWireListOption);
    for (const ListedEntry& entry : DecodeRecords(rootListing.payload))
        EXPECT_NE(entry.name, "Escape");
}

TEST_F(SimulatorTest, DotsThatStayInsideTheRootAreServed) {
    Start();
    auto client = Connect();
    for (const char* path : {"/Data/../hostname", "Data/./../hostname", "//hostname"}) {
        const ReceivedFrame frame = Ask(*client, 1, kWireOpenRead, path);
        EXPECT_EQ(frame.kind, kWireData) << path;
        EXPECT_EQ(Content({frame}), ToBytes("vexaron-0427\n")) << path;
    }
}
