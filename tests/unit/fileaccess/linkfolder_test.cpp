// SPDX-License-Identifier: Apache-2.0
// The link folder back end against a scripted instrument: listings and the ".." rule, status
// commands, running a command, describing a file, ids and time conversion.
#include "onlinesensor.h"
#include "vxsfileinfoimpl.h"
#include "vxsstdiofileimpl.h"
#include "winsockerror.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace {

constexpr auto Answer = ScriptedInstrument::Answering;

std::vector<std::wstring> Names(const std::vector<FileInfo>& entries) {
    std::vector<std::wstring> names;
    for (const FileInfo& e : entries)
        names.push_back(e.name);
    return names;
}

struct Linked {
    explicit Linked(ScriptedInstrument::Responder responder)
        : instrument(std::move(responder)), sensor(instrument),
          impl(std::make_unique<VXSFileInfoImpl>(instrument.host())) {}
    ScriptedInstrument instrument;
    OnlineSensor sensor;
    std::unique_ptr<VXSFileInfoImpl> impl;
};

const std::vector<uint8_t> kTwoRecords =
    Concat({Record("a.mth", 100, 1, 2, 3, 0), Record("sub", 0, 4, 5, 6, 1), std::vector<uint8_t>(92, 0x55)});

} // namespace

TEST(LinkListing, RecordsParentRuleAndPatterns) {
    using Frames = std::function<std::vector<uint8_t>(uint32_t id)>;
    const Frames twoRecords = [](uint32_t id) { return DataFrame(id, 0x0100, kTwoRecords); };
    struct Case {
        const char* name;
        std::wstring folder;
        std::vector<std::wstring> names;
        Frames frames;
        std::wstring pattern;
    } cases[] = {
        {"2,300 bytes are two records; /data gains ..", L"/data", {L"a.mth", L"sub", L".."}, twoRecords},
        {"the root gains no ..", L"/", {L"a.mth", L"sub"}, twoRecords},
        {"a host prefix is dropped, root included", L"@inst:/", {L"a.mth", L"sub"}, twoRecords},
        {"a pattern keeps matching names, case-insensitively",
         L"/data",
         {L"a.mth", L".."},
         twoRecords,
         L"*.MTH"},
        {"an instrument .. is not doubled",
         L"/data",
         {L"..", L"a.mth", L"sub"},
         [](uint32_t id) {
             return DataFrame(id, 0x0100, Concat({Record("..", 0, 0, 0, 0, 1), kTwoRecords}));
         }},
        {"frames of another request add nothing",
         L"/data",
         {L".."},
         [](uint32_t id) { return DataFrame(id + 1, 0x0100, kTwoRecords); }},
        {"frames without the listing flag add nothing",
         L"/",
         {},
         [](uint32_t id) { return DataFrame(id, 0, kTwoRecords); }},
        {"several frames, one compressed, and the last one ends it",
         L"/x",
         {L"a", L"c", L"d", L".."},
         [](uint32_t id) {
             std::vector<uint8_t> records = Concat({Record("c", 1, 0, 0, 0, 0), Record("d", 1, 0, 0, 0, 0)});
             uLongf size = compressBound(uLong(records.size()));
             std::vector<uint8_t> packed(size);
             compress2(packed.data(), &size, records.data(), uLong(records.size()), 9);
             packed.resize(size);
             return Concat({DataFrame(id, 0x8100, Record("a", 1, 0, 0, 0, 0)), ReplyFrame(id, 0),
                            DataFrame(id, 0x8500, packed), DataFrame(id, 0x0100, {}),
                            DataFrame(id, 0x0100, Record("late", 1, 0, 0, 0, 0))});
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto frames = c.frames;
        Linked linked(Answer([frames](const PeerFrame& r) { return frames(r.argument()); }));
        ASSERT_TRUE(linked.sensor.online());
        std::vector<FileInfo> entries(3);
        EXPECT_TRUE(linked.impl->ReadSensorDir(c.folder, entries, c.pattern, 0));
        EXPECT_EQ(Names(entries), c.names);
        EXPECT_EQ(linked.impl->GetError(), 0);
    }
}

TEST(LinkListing, RequestBytesAndEntryFields) {
    Linked linked(Answer([](const PeerFrame& r) { return DataFrame(r.argument(), 0x0100, kTwoRecords); }));
    ASSERT_TRUE(linked.sensor.online());
    const uint32_t id = VXSFileInfoImpl::PeekNextRequestId();
    const uint32_t transfer = VXSStdioFileImpl::PeekNextTransferId();
    std::vector<FileInfo> entries;
    ASSERT_TRUE(linked.impl->ReadSensorDir(L"/data", entries, L"", 0));
    ASSERT_TRUE(linked.impl->ReadSensorDir(L"/data", entries, L"", 1))
        << "the object serves more than one listing";
    EXPECT_EQ(VXSFileInfoImpl::PeekNextRequestId(), id + 2);
    EXPECT_EQ(VXSStdioFileImpl::PeekNextTransferId(), transfer) << "request ids have their own counter";

    auto frames = linked.instrument.frames();
    ASSERT_EQ(frames.size(), 2u);
    EXPECT_EQ(frames[0].bytes(), ExpectedRequest(1, 0x0100, id, "\"/data\""));
    EXPECT_EQ(frames[1].bytes(), ExpectedRequest(1, 0x0101, id + 1, "\"/data\""));

    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].size, 100);
    EXPECT_EQ(entries[0].times[0], 1000000);
    EXPECT_EQ(entries[0].times[1], 2000000);
    EXPECT_EQ(entries[0].times[2], 3000000);
    EXPECT_FALSE(entries[0].IsFolder());
    EXPECT_TRUE(entries[1].IsFolder());
    EXPECT_EQ(entries[2].size, -1);
}

TEST(LinkListing, Failures) {
    {
        SCOPED_TRACE("an error reply fails the listing, entries so far included");
        Linked linked(Answer([](const PeerFrame& r) {
            return Concat({DataFrame(r.argument(), 0x8100, Record("a", 1, 0, 0, 0, 0)),
                           ReplyFrame(r.argument(), 20, "not a folder: /f")});
        }));
        std::vector<FileInfo> entries;
        EXPECT_FALSE(linked.impl->ReadSensorDir(L"/f", entries, L"", 0));
        EXPECT_EQ(Names(entries), std::vector<std::wstring>{L"a"});
        EXPECT_EQ(linked.impl->GetError(), 20);
        EXPECT_EQ(linked.impl->GetErrorText(), L"not a folder: /f");
    }
    {
        SCOPED_TRACE("bad paths send nothing");
        Linked linked(Answer([](const PeerFrame& r) { return DataFrame(r.argument(), 0x0100, {}); }));
        std::vector<FileInfo> entries;
        for (std::wstring bad :
             {std::wstring(L"@inst"), std::wstring(L"@inst:"), L"/" + std::wstring(1023, L'x')}) {
            EXPECT_FALSE(linked.impl->ReadSensorDir(bad, entries, L"", 0));
            EXPECT_EQ(linked.impl->GetError(), kErrInvalid);
        }
        EXPECT_TRUE(linked.impl->ReadSensorDir(L"/" + std::wstring(1022, L'x'), entries, L"", 0));
        EXPECT_EQ(linked.instrument.frameCount(), 1u);
    }
    {
        SCOPED_TRACE("an oversized frame fails with 34");
        Linked linked(
            Answer([](const PeerFrame& r) { return WireFrame(9, 0x0100, r.argument(), {}, 0, 0, 65537); }));
        std::vector<FileInfo> entries;
        EXPECT_FALSE(linked.impl->ReadSensorDir(L"/", entries, L"", 0));
        EXPECT_EQ(linked.impl->GetError(), kErrTooLarge);
    }
    {
        SCOPED_TRACE("a link that fails mid-listing keeps the entries so far");
        Linked linked([](const PeerFrame& frame, int socket) {
            Send(socket, DataFrame(frame.argument(), 0x8100, Record("a", 1, 0, 0, 0, 0)));
            LoopbackPeer::ShutdownBoth(socket);
        });
        std::vector<FileInfo> entries;
        EXPECT_TRUE(linked.impl->ReadSensorDir(L"/data", entries, L"", 0));
        EXPECT_EQ(Names(entries), (std::vector<std::wstring>{L"a", L".."}));
        EXPECT_EQ(linked.impl->GetError(), 0) << "the link's failure stays in the sensor";
    }
    {
        SCOPED_TRACE("without a sensor nothing works");
        VXSFileInfoImpl nobody(L"127.9.9.8");
        EXPECT_FALSE(nobody.HasLink());
        std::vector<FileInfo> entries;
        EXPECT_FALSE(nobody.ReadSensorDir(L"/", entries, L"", 0));
        EXPECT_EQ(nobody.GetError(), kWsaNotConn);
        EXPECT_FALSE(nobody.MkDir(L"/x"));
        EXPECT_EQ(nobody.GetError(), kWsaNotConn);
    }
}

TEST(LinkFolderCommands, RequestsAndStatusReplies) {
    std::atomic<uint32_t> status{0};
    std::string text;
    Linked linked(Answer([&](const PeerFrame& r) {
        // A long message text after the status word must be read off completely.
        return ReplyFrame(r.argument(), status, std::string(3000, 'm'));
    }));
    ASSERT_TRUE(linked.sensor.online());
    VXSFileInfoImpl& impl = *linked.impl;
    struct Case {
        const char* name;
        std::function<bool()> call;
        uint32_t command;
        uint16_t flags;
        std::string first, second;
    } cases[] = {
        {"make folder", [&] { return impl.MkDir(L"@inst:/data/new"); }, 7, 0, "\"/data/new\"", ""},
        {"rename", [&] { return impl.Rename(L"/a b", L"@inst:/c\u00e9"); }, 5, 0, "\"/a b\"",
         "\"/c\xC3\xA9\""},
        {"remove folder", [&] { return impl.RmDir(L"/old", false); }, 4, 0, "\"/old\"", ""},
        {"remove tree", [&] { return impl.RmDir(L"/old", true); }, 4, 0x0004, "\"/old\"", ""},
        {"delete file", [&] { return impl.Delete(L"/f.mth"); }, 4, 0, "\"/f.mth\"", ""},
    };
    size_t sent = 0;
    for (uint32_t answer : {0u, 17u}) {
        status = answer;
        for (const Case& c : cases) {
            SCOPED_TRACE(std::string(c.name) + " answered " + std::to_string(answer));
            const uint32_t id = VXSFileInfoImpl::PeekNextRequestId();
            EXPECT_EQ(c.call(), answer == 0);
            EXPECT_EQ(impl.GetError(), 0) << "a refusal leaves the error as it was";
            EXPECT_EQ(impl.LastReplyStatus(), answer);
            if (answer != 0) {
                EXPECT_EQ(impl.GetErrorText(), L"instrument status 17: " + std::wstring(3000, L'm'));
            }
            ASSERT_TRUE(linked.instrument.waitForFrames(++sent));
            EXPECT_EQ(linked.instrument.frames().back().bytes(),
                      ExpectedRequest(c.command, c.flags, id, c.first, c.second));
        }
    }
    // Empty paths send nothing.
    EXPECT_FALSE(impl.MkDir(L""));
    EXPECT_FALSE(impl.Rename(L"/a", L""));
    EXPECT_FALSE(impl.Rename(L"", L"/a"));
    EXPECT_FALSE(impl.RmDir(L"", true));
    EXPECT_FALSE(impl.Delete(L""));
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(linked.instrument.frameCount(), sent);
}

TEST(LinkFolderCommands, RunCommandSendsSecondsAndReturnsTheFirstFrame) {
    Linked linked(Answer([](const PeerFrame& r) {
        if (r.firstArgument() == "\"fail\"")
            return ReplyFrame(r.argument(), 38, "unknown command");
        return DataFrame(r.argument(), 0, ToBytes("model=V2\n\xC3\xA9"));
    }));
    ASSERT_TRUE(linked.sensor.online());
    const uint32_t id = VXSFileInfoImpl::PeekNextRequestId();
    std::wstring output = L"old";
    EXPECT_TRUE(linked.impl->RunCommand(L"status", output, 30000000));
    EXPECT_EQ(output, L"model=V2\n\u00e9");
    ASSERT_TRUE(linked.instrument.waitForFrames(1));
    EXPECT_EQ(linked.instrument.frames()[0].bytes(), ExpectedRequest(8, 0, id, "\"status\"", "", 30));

    EXPECT_TRUE(linked.impl->RunCommand(L"status", output, 999999));
    ASSERT_TRUE(linked.instrument.waitForFrames(2));
    EXPECT_EQ(linked.instrument.frames()[1].extra(), 0u);

    EXPECT_FALSE(linked.impl->RunCommand(L"fail", output, 0));
    EXPECT_EQ(output, L"");
    EXPECT_EQ(linked.impl->GetError(), 38);
    EXPECT_EQ(linked.impl->GetErrorText(), L"unknown command");
    EXPECT_FALSE(linked.impl->RunCommand(L"", output, 0));
}

TEST(LinkFolderCommands, GetFileInfoFillsTheEntryAndThePreview) {
    std::vector<uint8_t> preview(40);
    for (size_t i = 0; i < preview.size(); ++i)
        preview[i] = uint8_t('A' + i % 26);
    Linked linked(Answer([&](const PeerFrame& r) {
        std::vector<uint8_t> payload = Record("run1.vxs", 123456, -1, 0, 1700000000, 0);
        AppendU32(payload, 40);
        payload.insert(payload.end(), preview.begin(), preview.end());
        return DataFrame(r.argument(), 0, payload);
    }));
    ASSERT_TRUE(linked.sensor.online());
    struct Case {
        int size;
        int copied;
    } cases[] = {{100, 40}, {40, 40}, {10, 10}, {0, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.size);
        FileInfo entry;
        std::vector<uint8_t> buffer(128, 0);
        int size = c.size;
        const uint32_t id = VXSFileInfoImpl::PeekNextRequestId();
        ASSERT_TRUE(linked.impl->GetFileInfo(L"@inst:/data/run1.vxs", &entry, buffer.data(), &size));
        EXPECT_EQ(size, c.copied);
        EXPECT_EQ(std::vector<uint8_t>(buffer.begin(), buffer.begin() + c.copied),
                  std::vector<uint8_t>(preview.begin(), preview.begin() + c.copied));
        EXPECT_EQ(buffer[size_t(c.copied)], 0);
        EXPECT_EQ(entry.name, L"run1.vxs");
        EXPECT_EQ(entry.size, 123456);
        EXPECT_EQ(entry.times[0], -1000000);
        EXPECT_EQ(entry.times[2], 1700000000000000LL);
        EXPECT_EQ(linked.instrument.frames().back().bytes(), ExpectedRequest(9, 0, id, "\"/data/run1.vxs\""));
    }
    FileInfo entry;
    EXPECT_TRUE(linked.impl->GetFileInfo(L"/x", &entry, nullptr, nullptr));
    EXPECT_FALSE(linked.impl->GetFileInfo(L"", &entry, nullptr, nullptr));
    EXPECT_FALSE(linked.impl->GetFileInfo(L"/x", nullptr, nullptr, nullptr));
}

TEST(LinkFolderCommands, AnAnswerCutByTheLinkFailsWithTheLinksError) {
    // Half a reply header, then the instrument closes: the answer never completes.
    const ScriptedInstrument::Responder cut = [](const PeerFrame& frame, int socket) {
        std::vector<uint8_t> half = ReplyFrame(frame.argument(), 0);
        half.resize(20);
        Send(socket, half);
        LoopbackPeer::ShutdownBoth(socket);
    };
    const std::function<bool(VXSFileInfoImpl&)> operations[] = {
        [](VXSFileInfoImpl& impl) {
            FileInfo entry;
            return impl.GetFileInfo(L"/Data/big.vxs", &entry, nullptr, nullptr);
        },
        [](VXSFileInfoImpl& impl) { return impl.MkDir(L"/new"); },
        [](VXSFileInfoImpl& impl) { return impl.Rename(L"/a", L"/b"); },
        [](VXSFileInfoImpl& impl) { return impl.RmDir(L"/old", true); },
        [](VXSFileInfoImpl& impl) { return impl.Delete(L"/f.mth"); },
        [](VXSFileInfoImpl& impl) {
            std::wstring output;
            return impl.RunCommand(L"status", output, 0);
        },
    };
    // Each waits out the link's receive limit: all at once, each on its own instrument.
    std::vector<std::future<int>> errors;
    for (const auto& operation : operations) {
        errors.push_back(std::async(std::launch::async, [&cut, operation] {
            Linked linked(cut);
            if (!linked.sensor.online())
                return -1;
            return operation(*linked.impl) ? 0 : linked.impl->GetError();
        }));
    }
    for (size_t i = 0; i < errors.size(); ++i) {
        SCOPED_TRACE("operation " + std::to_string(i));
        const int error = errors[i].get();
        EXPECT_TRUE(error == kWsaTimedOut || error == kWsaConnReset || error == kWsaNotConn) << error;
    }
}

TEST(LinkFolderRecords, SecondsBecomeMicroseconds) {
    struct Case {
        int32_t seconds;
        int64_t micro;
    } cases[] = {
        {0, 0},
        {1, 1000000},
        {-1, -1000000},
        {1700000000, 1700000000000000LL},
        {2147483647, 2147483647000000LL},
        {-2147483647 - 1, -2147483648000000LL},
    };
    for (const Case& c : cases)
        EXPECT_EQ(VXSFileInfoImpl::SecondsToMicroseconds(c.seconds), c.micro) << c.seconds;

    // A name that fills the whole field has no NUL; the attribute keeps only the folder bit.
    std::vector<uint8_t> record = Record("", 0xFFFFFFFF, 0, 0, 0, 0x11);
    std::fill(record.begin(), record.begin() + 1024, 'n');
    FileInfo entry = VXSFileInfoImpl::DecodeRecord(record.data());
    EXPECT_EQ(entry.name, std::wstring(1024, L'n'));
    EXPECT_EQ(entry.size, -1);
    EXPECT_EQ(entry.attrib, 1u);
}
