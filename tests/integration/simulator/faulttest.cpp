// SPDX-License-Identifier: Apache-2.0
// Each fault switch, seen from the workstation's side of the wire.
#include <chrono>

#include "simulatorfixture.h"

TEST_F(SimulatorTest, StallAfterKeepsTheConnectionOpenButSilent) {
    Start({"--fault", "stall-after=40"});
    auto client = Connect(500);
    ASSERT_TRUE(client->SendRequest(1, kWireOpenRead, "/hostname")); // 32 + 13 bytes
    EXPECT_EQ(client->ReadUpTo(45).size(), 40u);
    EXPECT_FALSE(client->sawClose());
    ASSERT_TRUE(client->SendRequest(2, kWireDescribe, "/hosts"));
    EXPECT_TRUE(client->ReadUpTo(1).empty());
    EXPECT_FALSE(client->sawClose());
}

TEST_F(SimulatorTest, TrickleSendsByteByByte) {
    Start({"--fault", "trickle=15"});
    auto client = Connect();
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(client->SendRequest(1, kWireOpenRead, "/hostname"));
    std::optional<ReceivedFrame> frame = client->ReadFrame();
    const auto elapsed = std::chrono::steady_clock::now() - start;
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->text(), "vexaron-0427\n");
    // 45 bytes with a pause of at least 15 ms after each.
    EXPECT_GE(elapsed, std::chrono::milliseconds(44 * 15));
}

TEST_F(SimulatorTest, CloseMidFrameCutsTheDataFrame) {
    Start({"--fault", "close-mid-frame=10"});
    auto client = Connect();
    // Replies are not data frames and pass whole.
    const ReceivedFrame reply = Ask(*client, 1, kWireMkDir, "/Made");
    EXPECT_EQ(reply.status(), 0u);
    ASSERT_TRUE(client->SendRequest(2, kWireOpenRead, "/hostname"));
    EXPECT_EQ(client->ReadUpTo(100).size(), 10u);
    EXPECT_TRUE(client->sawClose());
}

TEST_F(SimulatorTest, ReplyStatusAnswersEveryFileRequest) {
    Start({"--fault", "reply-status=77"});
    auto client = Connect();
    for (std::uint32_t command : {1u, 3u, 4u, 5u, 7u, 9u}) {
        const ReceivedFrame reply = Ask(*client, command, command, "/hostname", "/other");
        EXPECT_EQ(reply.kind, kWireReply) << command;
        EXPECT_EQ(reply.argument, command);
        EXPECT_EQ(reply.status(), 77u) << command;
    }
    EXPECT_TRUE(FileExists(root() + "/hostname"));
    // The command language is not part of the file service and keeps answering.
    const ReceivedFrame echo = Ask(*client, 8, kWireRun, "echo still here");
    EXPECT_EQ(echo.kind, kWireData);
    EXPECT_EQ(echo.text(), "still here\n");
}

TEST_F(SimulatorTest, DropAfterFramesClosesAfterTheLimit) {
    Start({"--fault", "drop-after-frames=2"});
    auto client = Connect();
    EXPECT_EQ(Ask(*client, 1, kWireMkDir, "/A").status(), 0u);
    EXPECT_EQ(Ask(*client, 2, kWireMkDir, "/B").status(), 0u);
    ASSERT_TRUE(client->SendRequest(3, kWireMkDir, "/C"));
    EXPECT_FALSE(client->ReadFrame());
    EXPECT_TRUE(client->sawClose());
}
