// SPDX-License-Identifier: Apache-2.0
// Listing, reading, writing and describing files through the simulator's link.
#include <algorithm>
#include <filesystem>

#include "simulatorfixture.h"

namespace fs = std::filesystem;

namespace {

bool Contains(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

} // namespace

TEST_F(SimulatorTest, ListsTheDemoRootWithoutParentOrHiddenEntries) {
    Start();
    auto client = Connect();
    const ReceivedFrame frame = Ask(*client, 41, kWireList, "/", {}, kWireListing);
    EXPECT_EQ(frame.marker, 0x0A0B0C0Du);
    EXPECT_EQ(frame.kind, kWireData);
    EXPECT_EQ(frame.flags, 0x0100);
    EXPECT_EQ(frame.version, 1u);
    EXPECT_EQ(frame.argument, 41u);
    EXPECT_EQ(frame.payload.size() % 1104, 0u);

    const std::vector<ListedEntry> entries = DecodeRecords(frame.payload);
    const std::vector<std::string> names = Names(entries);
    for (const char* expected : {"Method", "Tune", "Data", "Log", "Reports", "Lib", "Backup", "hostname",
                                 "hosts", "timezone", "ip.addresses"})
        EXPECT_TRUE(Contains(names, expected)) << expected;
    EXPECT_FALSE(Contains(names, ".."));
    EXPECT_FALSE(Contains(names, ".config.level"));
    for (const ListedEntry& entry : entries) {
        const fs::path onDisk = fs::path(root()) / entry.name;
        EXPECT_EQ(entry.attributes & 1, fs::is_directory(onDisk) ? 1u : 0u) << entry.name;
        if (!fs::is_directory(onDisk)) {
            EXPECT_EQ(entry.size, fs::file_size(onDisk)) << entry.name;
        }
    }

    const ReceivedFrame hidden = Ask(*client, 42, kWireList, "/", {}, kWireListing | kWireListOption);
    const std::vector<std::string> allNames = Names(DecodeRecords(hidden.payload));
    EXPECT_TRUE(Contains(allNames, ".config.level"));
    EXPECT_TRUE(Contains(allNames, ".config.fp"));
}

TEST_F(SimulatorTest, ListingBelowTheRootStartsWithParentEntry) {
    Start();
    auto client = Connect();
    const ReceivedFrame frame = Ask(*client, 7, kWireList, "/Data", {}, kWireListing);
    const std::vector<ListedEntry> entries = DecodeRecords(frame.payload);
    ASSERT_FALSE(entries.empty());
    EXPECT_EQ(entries[0].name, "..");
    EXPECT_EQ(entries[0].attributes & 1, 1u);
    EXPECT_TRUE(Contains(Names(entries), "run1.vxs"));
    EXPECT_TRUE(Contains(Names(entries), "Run007.vxs"));
}

TEST_F(SimulatorTest, ListingSplitsIntoFramesOfWholeRecords) {
    for (int i = 0; i < 130; ++i)
        m_temp.createFile("root/Many/file" + std::to_string(1000 + i) + ".vxs", "x");
    fs::create_directory(m_temp.file("root/Empty"));
    Start();
    auto client = Connect();

    ASSERT_TRUE(client->SendRequest(9, kWireList, "/Many", {}, kWireListing));
    std::vector<ReceivedFrame> frames;
    ASSERT_TRUE(client->ReadTransfer(&frames));
    // 131 records (with "..") at 59 per 65,536-byte frame.
    ASSERT_EQ(frames.size(), 3u);
    EXPECT_EQ(frames[0].flags, 0x8100);
    EXPECT_EQ(frames[1].flags, 0x8100);
    EXPECT_EQ(frames[2].flags, 0x0100);
    EXPECT_EQ(frames[0].payload.size(), 59u * 1104);
    EXPECT_EQ(frames[2].payload.size(), 13u * 1104);

    // An empty folder below the root holds only "..".
    const ReceivedFrame empty = Ask(*client, 10, kWireList, "/Empty", {}, kWireListing);
    EXPECT_EQ(Names(DecodeRecords(empty.payload)), std::vector<std::string>{".."});
}

TEST_F(SimulatorTest, EmptyRootListsAsOneEmptyFrame) {
    fs::remove_all(root());
    fs::create_directory(root());
    Start();
    auto client = Connect();
    const ReceivedFrame frame = Ask(*client, 3, kWireList, "/", {}, kWireListing);
    EXPECT_EQ(frame.kind, kWireData);
    EXPECT_EQ(frame.flags, 0x0100);
    EXPECT_EQ(frame.length, 0u);
}

TEST_F(SimulatorTest, FailuresReplyWithStatusAndTheRequestId) {
    Start();
    auto client = Connect();
    struct Case {
        std::uint32_t command;
        const char* path;
        std::uint16_t flags;
        std::uint32_t status;
    } cases[] = {
        {kWireList, "/NoSuchFolder", kWireListing, 2}, {kWireList, "/hostname", kWireListing, 20},
        {kWireOpenRead, "/Data/missing.vxs", 0, 2},    {kWireOpenRead, "/Data", 0, 21},
        {kWireDescribe, "/Data/none.vxs", 0, 2},
    };
    std::uint32_t id = 70;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.command) + " " + c.path);
        const ReceivedFrame reply = Ask(*client, ++id, c.command, c.path, {}, c.flags);
        EXPECT_EQ(reply.kind, kWireReply);
        EXPECT_EQ(reply.argument, id);
        EXPECT_EQ(reply.status(), c.status);
        EXPECT_FALSE(reply.message().empty());
    }
}

TEST_F(SimulatorTest, ReadsFilesPlainAndCompressed) {
    std::string text;
    for (int i = 0; text.size() < 150000; ++i)
        text += "line " + std::to_string(i) + " of a very repetitive log\n";
    m_temp.createFile("root/Log/long.log", text);
    const Bytes noise = ToBytes(RandomBytes(70000, 5));
    m_temp.createFile("root/Data/noise.vxs", std::string(noise.begin(), noise.end()));

    struct Case {
        std::vector<std::string> options;
        const char* path;
        Bytes expected;
        bool compressed;
    };
    const Case cases[] = {
        {{}, "/Log/long.log", ToBytes(text), true},
        {{"--no-compress"}, "/Log/long.log", ToBytes(text), false},
        // Random bytes do not shrink, so they travel as they are.
        {{}, "/Data/noise.vxs", noise, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        Start(c.options);
        auto client = Connect();
        ASSERT_TRUE(client->SendRequest(5, kWireOpenRead, c.path));
        std::vector<ReceivedFrame> frames;
        ASSERT_TRUE(client->ReadTransfer(&frames));
        const std::size_t expectedFrames = (c.expected.size() + 65535) / 65536;
        ASSERT_EQ(frames.size(), expectedFrames);
        EXPECT_EQ(frames[0].extra, c.expected.size());
        for (std::size_t i = 0; i < frames.size(); ++i) {
            EXPECT_EQ(frames[i].argument, 5u);
            EXPECT_EQ((frames[i].flags & kWireMore) != 0, i + 1 < frames.size());
            EXPECT_EQ((frames[i].flags & kWireCompressed) != 0, c.compressed);
            if (i > 0) {
                EXPECT_EQ(frames[i].extra, 0u);
            }
        }
        EXPECT_EQ(Content(frames), c.expected);
    }
}

// A frame that does not shrink lets the next one go without a try; a file whose content turns
// compressible is compressed again from the frame after that.
TEST_F(SimulatorTest, CompressesAgainOnceTheContentShrinks) {
    const Bytes noise = ToBytes(RandomBytes(2 * 65536, 9));
    std::string content(noise.begin(), noise.end());
    for (int i = 0; content.size() < 5 * 65536; ++i)
        content += "sample " + std::to_string(i % 50) + " ok\n";
    content.resize(5 * 65536);
    m_temp.createFile("root/Data/mixed.vxs", content);
    Start();
    auto client = Connect();
    ASSERT_TRUE(client->SendRequest(6, kWireOpenRead, "/Data/mixed.vxs"));
    std::vector<ReceivedFrame> frames;
    ASSERT_TRUE(client->ReadTransfer(&frames));
    ASSERT_EQ(frames.size(), 5u);
    const bool compressed[] = {false, false, true, true, true};
    for (std::size_t i = 0; i < frames.size(); ++i)
        EXPECT_EQ((frames[i].flags & kWireCompressed) != 0, compressed[i]) << "frame " << i;
    EXPECT_EQ(Content(frames), ToBytes(content));
}

TEST_F(SimulatorTest, ReadsAnEmptyFileAsOneEmptyFrame) {
    m_temp.createFile("root/Data/empty.vxs");
    Start();
    auto client = Connect();
    const ReceivedFrame frame = Ask(*client, 12, kWireOpenRead, "/Data/empty.vxs");
    EXPECT_EQ(frame.kind, kWireData);
    EXPECT_EQ(frame.flags, 0);
    EXPECT_EQ(frame.length, 0u);
    EXPECT_EQ(frame.extra, 0u);
}

TEST_F(SimulatorTest, AbortedUploadLeavesTheOldFileAndNoTemporary) {
    m_temp.createFile("root/Data/keep.vxs", "old content");
    Start();
    {
        auto client = Connect();
        ASSERT_TRUE(client->SendRequest(8, kWireOpenWrite, "/Data/keep.vxs", {}, kWireOpenWriteFlag));
        ASSERT_TRUE(client->SendUploadData(8, true, Bytes(65536, 0x55)));
        ASSERT_TRUE(client->SendUploadData(8, true, Bytes(1000, 0x66)));
    }
    // The simulator notices the close on its own thread; wait for the temporary file to go.
    auto entriesInData = [this] {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry : fs::directory_iterator(m_temp.file("root/Data")))
            ++count;
        return count;
    };
    const std::size_t before = 5; // run1, run2, Run007, Survey001, keep
    for (int i = 0; i < 200 && entriesInData() != before; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_EQ(entriesInData(), before);
    EXPECT_EQ(ReadWholeFile(m_temp.file("root/Data/keep.vxs")), "old content");
}

TEST_F(SimulatorTest, DescribesAFileWithAPreview) {
    const Bytes big = ToBytes(RandomBytes(10000, 3));
    m_temp.createFile("root/Data/big.vxs", std::string(big.begin(), big.end()));
    Start();
    auto client = Connect();

    const ReceivedFrame small = Ask(*client, 15, kWireDescribe, "/hostname");
    EXPECT_EQ(small.kind, kWireData);
    EXPECT_EQ(small.argument, 15u);
    ASSERT_EQ(small.payload.size(), 1104u + 4 + 13);
    const ListedEntry entry = DecodeRecords(small.payload).at(0);
    EXPECT_EQ(entry.name, "hostname");
    EXPECT_EQ(entry.size, 13u);
    EXPECT_EQ(entry.attributes, 0u);
    EXPECT_EQ(ReadU32(small.payload, 1104), 13u);
    EXPECT_EQ(std::string(small.payload.begin() + 1108, small.payload.end()), "vexaron-0427\n");

    const ReceivedFrame large = Ask(*client, 16, kWireDescribe, "/Data/big.vxs");
    ASSERT_EQ(large.payload.size(), 1104u + 4 + 4096);
    EXPECT_EQ(DecodeRecords(large.payload).at(0).size, 10000u);
    EXPECT_EQ(ReadU32(large.payload, 1104), 4096u);
    EXPECT_TRUE(std::equal(large.payload.begin() + 1108, large.payload.end(), big.begin()));

    const ReceivedFrame folder = Ask(*client, 17, kWireDescribe, "/Method");
    EXPECT_EQ(DecodeRecords(folder.payload).at(0).attributes & 1, 1u);
    EXPECT_EQ(ReadU32(folder.payload, 1104), 0u);
}

TEST_F(SimulatorTest, ServesSeveralConnectionsAtOnce) {
    Start();
    std::vector<std::unique_ptr<RawLinkClient>> clients;
    for (int i = 0; i < 4; ++i)
        clients.push_back(Connect());
    // An upload left open on the first connection must not hold up the others.
    ASSERT_TRUE(clients[0]->SendRequest(1, kWireOpenWrite, "/Data/slow.vxs", {}, kWireOpenWriteFlag));
    ASSERT_TRUE(clients[0]->SendUploadData(1, true, Bytes(100, 1)));
    for (std::uint32_t i = 1; i < clients.size(); ++i)
        ASSERT_TRUE(clients[i]->SendRequest(i, kWireOpenRead, "/hostname"));
    for (std::uint32_t i = clients.size() - 1; i >= 1; --i) {
        std::optional<ReceivedFrame> frame = clients[i]->ReadFrame();
        ASSERT_TRUE(frame);
        EXPECT_EQ(frame->argument, i);
        EXPECT_EQ(Content({*frame}), ToBytes("vexaron-0427\n"));
    }
    ASSERT_TRUE(clients[0]->SendUploadData(1, false, Bytes(5, 2)));
    const ReceivedFrame back = Ask(*clients[0], 2, kWireOpenRead, "/Data/slow.vxs");
    EXPECT_EQ(back.extra, 105u);
}
