// SPDX-License-Identifier: Apache-2.0
// Making, renaming and deleting through the simulator, and frames it must refuse.
#include <filesystem>

#include "simulatorfixture.h"

namespace fs = std::filesystem;

TEST_F(SimulatorTest, FolderOperationsAnswerWithErrnoLikeStatuses) {
    m_temp.createFile("root/Full/inner.txt", "x");
    Start();
    auto client = Connect();
    struct Step {
        std::uint32_t command;
        const char* first;
        const char* second;
        std::uint16_t flags;
        std::uint32_t status;
    };
    const Step steps[] = {
        {kWireMkDir, "/New", "", 0, 0},
        {kWireMkDir, "/New", "", 0, 17},        // exists
        {kWireMkDir, "/Nowhere/New", "", 0, 2}, // parent missing
        {kWireRename, "/hostname", "/New/name", 0, 0},
        {kWireRename, "/hostname", "/other", 0, 2},  // gone already
        {kWireRename, "/hosts", "/timezone", 0, 17}, // never replaces
        {kWireDelete, "/Full", "", 0, 39},           // not empty without the recursive flag
        {kWireDelete, "/Full", "", kWireRecursive, 0},
        {kWireDelete, "/New/name", "", 0, 0},
        {kWireDelete, "/New", "", 0, 0}, // empty now
        {kWireDelete, "/New", "", 0, 2},
        {kWireDelete, "/", "", kWireRecursive, 13}, // never the root
        {6, "/hosts", "", 0, 38},                   // no command 6
    };
    std::uint32_t id = 0;
    for (const Step& step : steps) {
        SCOPED_TRACE(std::to_string(step.command) + " " + step.first + " " + step.second);
        const ReceivedFrame reply = Ask(*client, ++id, step.command, step.first, step.second, step.flags);
        EXPECT_EQ(reply.kind, kWireReply);
        EXPECT_EQ(reply.argument, id);
        EXPECT_EQ(reply.status(), step.status);
        if (step.status != 0) {
            EXPECT_FALSE(reply.message().empty());
        }
    }
    EXPECT_FALSE(fs::exists(m_temp.file("root/Full")));
    EXPECT_FALSE(fs::exists(m_temp.file("root/New")));
    EXPECT_FALSE(fs::exists(m_temp.file("root/hostname")));
    EXPECT_EQ(ReadWholeFile(m_temp.file("root/timezone")), "UTC\n");
}

TEST_F(SimulatorTest, MalformedFramesCloseTheConnection) {
    Start();
    struct Case {
        const char* what;
        bool hello;
        Bytes frame;
    };
    Bytes badMarker = WireFrame(8, 0, 0, {});
    badMarker[3] = 0x0B;
    const Bytes tooLong = WireFrame(8, 0, 0, {}, 0, 0, 65537);
    const Bytes requestFirst = ExpectedRequest(1, 0, 0, "");
    for (const Case& c : {Case{"bad marker", true, badMarker}, Case{"payload above 65536", true, tooLong},
                          Case{"no hello", false, requestFirst}}) {
        SCOPED_TRACE(c.what);
        RawLinkClient client(m_simulator->address());
        if (c.hello) {
            ASSERT_TRUE(client.SendHello());
        }
        ASSERT_TRUE(client.SendRaw(c.frame));
        EXPECT_TRUE(client.PeerClosed());
    }
    // The simulator itself carries on.
    auto client = Connect();
    EXPECT_EQ(Ask(*client, 1, kWireDescribe, "/hosts").kind, kWireData);
}

TEST_F(SimulatorTest, RequestOfTheWrongSizeIsRefused) {
    Start();
    auto client = Connect();
    ASSERT_TRUE(client->SendRaw(WireFrame(8, 0, 9, {1, 0, 0, 0}))); // a command word without arguments
    std::optional<ReceivedFrame> reply = client->ReadFrame();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->kind, kWireReply);
    EXPECT_EQ(reply->argument, 9u);
    EXPECT_EQ(reply->status(), 22u);
}
