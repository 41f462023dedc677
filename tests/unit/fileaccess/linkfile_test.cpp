// SPDX-License-Identifier: Apache-2.0
// The link file back end against a scripted instrument: exact request and data frames, the mode and
// path rules, and how reads treat replies, foreign frames, compression and oversized frames.
#include "onlinesensor.h"
#include "tempdir.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexastdiofileimplfactory.h"
#include "vxsfileinfoimpl.h"
#include "vxsstdiofileimpl.h"
#include "winsockerror.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <chrono>
#include <memory>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

std::vector<uint8_t> Compressed(const std::vector<uint8_t>& plain) {
    uLongf size = compressBound(uLong(plain.size()));
    std::vector<uint8_t> out(size);
    compress2(out.data(), &size, plain.data(), uLong(plain.size()), Z_BEST_COMPRESSION);
    out.resize(size);
    return out;
}

std::vector<uint8_t> Pattern(size_t size) {
    std::vector<uint8_t> out(size);
    for (size_t i = 0; i < size; ++i)
        out[i] = uint8_t(i * 7 + i / 251);
    return out;
}

// The 32 header bytes of a data frame the workstation sends while writing (sub-argument 2).
std::vector<uint8_t> UploadHeader(uint16_t flags, uint32_t length, uint32_t id) {
    return WireFrame(9, flags, id, {}, 0, 2, length);
}

std::string ReadAll(VXSStdioFileImpl& file, int* result = nullptr) {
    std::string out;
    char buffer[1000];
    for (int i = 0; i < 100000; ++i) {
        int n = file.Read(buffer, sizeof buffer);
        if (result)
            *result = n;
        if (n <= 0)
            break;
        out.append(buffer, size_t(n));
    }
    return out;
}

// An instrument that answers every open-for-reading with the frames `script` makes for its id.
ScriptedInstrument::Responder AnswerReads(std::function<std::vector<uint8_t>(uint32_t id)> script) {
    return [script](const PeerFrame& frame, int socket) {
        if (frame.kind() == 8 && frame.command() == 3)
            Send(socket, script(frame.argument()));
    };
}

} // namespace

TEST(LinkFileRead, SendsTheRequestAndStreamsEveryFrame) {
    ScriptedInstrument instrument(AnswerReads([](uint32_t id) {
        return Concat(
            {DataFrame(id, 0x8000, ToBytes("hello "), 11), DataFrame(id, 0, ToBytes("world"), 999)});
    }));
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());

    const uint32_t id = VXSStdioFileImpl::PeekNextTransferId();
    auto file = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/data/x.mth", L"r");
    EXPECT_EQ(file->TransferId(), id);
    EXPECT_EQ(VXSStdioFileImpl::PeekNextTransferId(), id + 1);
    ASSERT_EQ(file->GetError(), 0);
    EXPECT_EQ(file->GetLength(), 11) << "the length comes from the first frame only";
    EXPECT_EQ(ReadAll(*file), "hello world");
    char byte;
    EXPECT_EQ(file->Read(&byte, 1), 0) << "after the last frame Read returns 0";
    EXPECT_EQ(file->Tell(), -1);
    EXPECT_STREQ(file->TransportName(), L"link");

    auto frames = instrument.frames();
    ASSERT_EQ(frames.size(), 1u);
    EXPECT_EQ(frames[0].bytes(), ExpectedRequest(3, 0, id, "\"/data/x.mth\""));
}

TEST(LinkFileRead, PathLimitsAndHostPrefix) {
    ScriptedInstrument instrument(AnswerReads([](uint32_t id) { return DataFrame(id, 0, {}); }));
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());

    // 1 + 511 two-byte characters = 1,023 UTF-8 bytes: sent, cut to the field with its NUL (no closing
    // quote).
    const std::wstring longest = L"/" + std::wstring(511, L'\u00e9');
    std::string longestUtf8 = "/";
    for (int i = 0; i < 511; ++i)
        longestUtf8 += "\xC3\xA9";
    struct Case {
        std::wstring path;
        int error;
        std::string field; // the first argument as it must travel; unused when refused
    } cases[] = {
        {longest, 0, ("\"" + longestUtf8).substr(0, 1023)},
        {longest + L"a", kErrInvalid, ""}, // 1,024 bytes
        {L"@inst:/data/x.mth", 0, "\"/data/x.mth\""},
        {L"@inst", kErrInvalid, ""},
        {L"@inst:", kErrInvalid, ""}, // nothing left after the prefix
        {L"", kErrInvalid, ""},
        {L"rel/y.tun", 0, "\"rel/y.tun\""},
    };
    size_t sent = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.field.begin(), c.field.begin() + std::min<size_t>(c.field.size(), 20)));
        auto file = std::make_unique<VXSStdioFileImpl>(instrument.host(), c.path, L"r");
        EXPECT_EQ(file->GetError(), c.error);
        file.reset();
        if (c.error == 0) {
            ASSERT_TRUE(instrument.waitForFrames(++sent));
            EXPECT_EQ(instrument.frames().back().firstArgument(), c.field);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_EQ(instrument.frameCount(), sent) << "a refused path sends nothing";
    }
}

TEST(LinkFileOpen, ModeTable) {
    ScriptedInstrument instrument(AnswerReads([](uint32_t id) { return DataFrame(id, 0, {}); }));
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    struct Case {
        const wchar_t* mode;
        int error;
        bool writing, text, compressed;
    } cases[] = {
        {L"r", 0, false, false, false},   {L"rb", 0, false, false, false}, {L"rt", 0, false, true, false},
        {L"rtb", 0, false, false, false}, {L"rbz", 0, false, false, true}, {L"r+", 0, false, false, false},
        {L"w", 0, true, false, false},    {L"w+", 0, true, false, false},  {L"wbt", 0, true, true, false},
        {L"rx", kErrInvalid, 0, 0, 0},    {L"a", kErrInvalid, 0, 0, 0},    {L"", kErrInvalid, 0, 0, 0},
        {L"R", kErrInvalid, 0, 0, 0},     {L"wr", kErrInvalid, 0, 0, 0},   {L"r b", kErrInvalid, 0, 0, 0},
    };
    size_t sent = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::wstring(L"mode ") + c.mode);
        auto file = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/m", c.mode);
        EXPECT_EQ(file->GetError(), c.error);
        if (c.error == 0) {
            EXPECT_EQ(file->IsTextMode(), c.text);
            EXPECT_EQ(file->IsCompressedMode(), c.compressed);
            ASSERT_TRUE(instrument.waitForFrames(++sent));
            const PeerFrame request = instrument.frames().back();
            EXPECT_EQ(request.command(), c.writing ? 2u : 3u);
            EXPECT_EQ(request.flags(), c.writing ? 0x0010 : 0);
            if (c.writing)
                ++sent; // the empty last data frame at close
        }
        file.reset();
        ASSERT_TRUE(instrument.waitForFrames(sent));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        EXPECT_EQ(instrument.frameCount(), sent);
    }
}

TEST(LinkFileOpen, WithoutALinkTheErrorIsNotConnectedAndTheIdIsStillTaken) {
    const uint32_t id = VXSStdioFileImpl::PeekNextTransferId();
    VXSStdioFileImpl nobody(L"127.9.9.9", L"/x", L"r");
    EXPECT_EQ(nobody.GetError(), kWsaNotConn);
    EXPECT_EQ(nobody.TransferId(), id);
    VXSStdioFileImpl noHost(L"", L"/x", L"zz"); // the link test comes before the mode test
    EXPECT_EQ(noHost.GetError(), kWsaNotConn);
    EXPECT_EQ(VXSStdioFileImpl::PeekNextTransferId(), id + 2);
    char byte;
    EXPECT_EQ(nobody.Read(&byte, 1), 0) << "an unopened file reads as empty";
}

TEST(LinkFileWrite, FrameBoundaries) {
    ScriptedInstrument instrument;
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    const std::vector<uint8_t> data = Pattern(3 * 65536 + 5);

    struct Case {
        const char* name;
        std::vector<int> writes;                      // sizes of the successive Write calls
        std::vector<std::pair<uint16_t, int>> frames; // flags and length of each data frame, in order
        std::vector<size_t> framesBeforeClose;        // data frames on the wire after each write
    } cases[] = {
        {"empty file", {}, {{0, 0}}, {}},
        {"one byte", {1}, {{0, 1}}, {0}},
        {"exactly 65,536", {65536}, {{0, 65536}}, {0}},
        {"65,536 then one more", {65536, 1}, {{0x8000, 65536}, {0, 1}}, {0, 1}},
        {"65,537 at once", {65537}, {{0x8000, 65536}, {0, 1}}, {1}},
        {"131,072 in odd pieces", {1000, 70000, 60072}, {{0x8000, 65536}, {0, 65536}}, {0, 1, 1}},
    };
    size_t seen = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        auto file = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/d/out.bin", L"wb");
        ASSERT_EQ(file->GetError(), 0);
        const uint32_t id = file->TransferId();
        ASSERT_TRUE(instrument.waitForFrames(++seen));
        EXPECT_EQ(instrument.frames().back().bytes(), ExpectedRequest(2, 0x0010, id, "\"/d/out.bin\""));
        size_t offset = 0;
        for (size_t i = 0; i < c.writes.size(); ++i) {
            EXPECT_EQ(file->Write(data.data() + offset, c.writes[i]), c.writes[i]);
            offset += size_t(c.writes[i]);
            ASSERT_TRUE(instrument.waitForFrames(seen + c.framesBeforeClose[i]));
            std::this_thread::sleep_for(std::chrono::milliseconds(30));
            EXPECT_EQ(instrument.frameCount(), seen + c.framesBeforeClose[i]) << "after write " << i;
        }
        file.reset();
        ASSERT_TRUE(instrument.waitForFrames(seen + c.frames.size()));
        auto frames = instrument.frames();
        size_t start = 0;
        for (size_t i = 0; i < c.frames.size(); ++i) {
            const PeerFrame& f = frames[seen + i];
            EXPECT_EQ(f.header, UploadHeader(c.frames[i].first, uint32_t(c.frames[i].second), id))
                << "frame " << i;
            EXPECT_EQ(f.payload,
                      std::vector<uint8_t>(data.begin() + start, data.begin() + start + f.payload.size()));
            start += f.payload.size();
        }
        seen += c.frames.size();
        EXPECT_EQ(start, offset);
    }
}

TEST(LinkFileWrite, RefusesBadArgumentsAndTheWrongDirection) {
    ScriptedInstrument instrument(AnswerReads([](uint32_t id) { return DataFrame(id, 0, ToBytes("x")); }));
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    auto writer = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/w", L"w");
    char byte = 'a';
    EXPECT_EQ(writer->Write(nullptr, 1), -1);
    EXPECT_EQ(writer->GetError(), kErrInvalid);
    EXPECT_EQ(writer->Write(&byte, 0), -1);
    EXPECT_EQ(writer->WriteString(L""), -1) << "an empty string fails like an empty write";
    EXPECT_EQ(writer->GetError(), kErrInvalid);
    EXPECT_EQ(writer->WriteString(L"\u00e9\n"), 3);
    EXPECT_EQ(writer->Read(&byte, 1), -1);
    EXPECT_EQ(writer->GetError(), kErrBadFile);
    writer.reset();

    auto reader = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/r", L"r");
    EXPECT_EQ(reader->Write(&byte, 1), -1);
    EXPECT_EQ(reader->GetError(), kErrBadFile);
    EXPECT_EQ(reader->Read(&byte, -1), -1);
    EXPECT_EQ(reader->GetError(), kErrInvalid);
    reader.reset();
    ASSERT_TRUE(instrument.waitForFrames(3));
    EXPECT_EQ(instrument.frames()[1].payload, ToBytes("\xC3\xA9\n"));
}

TEST(LinkFileRead, HowFramesAreTaken) {
    struct Case {
        const char* name;
        std::function<std::vector<uint8_t>(uint32_t id)> frames;
        int openError;
        std::string content; // what reading yields before the end or the failure
        bool readFails;
        int errorAfter;
        std::wstring text;
        int length;
    };
    const std::vector<uint8_t> big = Pattern(1500);
    const std::vector<uint8_t> tooBig(70000, 'Z');
    std::vector<Case> cases = {
        {"a reply with status 0 in the middle is skipped",
         [](uint32_t id) {
             return Concat({DataFrame(id, 0x8000, ToBytes("ab"), 4), ReplyFrame(id, 0, "fine"),
                            DataFrame(id, 0, ToBytes("cd"))});
         },
         0, "abcd", false, 0, L"", 4},
        {"an error reply for another transfer is skipped",
         [](uint32_t id) {
             return Concat({DataFrame(id, 0x8000, ToBytes("ab")), ReplyFrame(id + 50, 5, "not yours"),
                            DataFrame(id, 0, ToBytes("cd"))});
         },
         0, "abcd", false, 0, L"", 0},
        {"data frames are taken whatever their id",
         [](uint32_t id) { return DataFrame(id + 7, 0, ToBytes("xyz"), 3); }, 0, "xyz", false, 0, L"", 3},
        {"frames of other kinds are skipped",
         [](uint32_t id) {
             return Concat({WireFrame(4, 0x80, 0, std::vector<uint8_t>(10, 0)),
                            WireFrame(8, 0, id, ToBytes("junk")), DataFrame(id, 0, ToBytes("ok"))});
         },
         0, "ok", false, 0, L"", 0},
        {"an error reply at the open fails it with its status",
         [](uint32_t id) { return ReplyFrame(id, 2, "no such file: /x"); }, 2, "", true, 2,
         L"no such file: /x", 0},
        {"an error reply mid-read fails the read and loses its partial count",
         [](uint32_t id) {
             return Concat(
                 {DataFrame(id, 0x8000, ToBytes("ab")), ReplyFrame(id, 5, std::string("disk\0", 5))});
         },
         0, "", true, 5, L"disk", 0},
        {"compressed frames are expanded; the length stays the first frame's",
         [big](uint32_t id) {
             return Concat({DataFrame(id, 0x8400, Compressed({big.begin(), big.begin() + 1000}), 1500),
                            DataFrame(id, 0x0400, Compressed({big.begin() + 1000, big.end()}), 77)});
         },
         0, std::string(big.begin(), big.end()), false, 0, L"", 1500},
        {"an oversized frame fails with 34", [](uint32_t id) { return WireFrame(9, 0, id, {}, 0, 0, 70000); },
         kErrTooLarge, "", true, kErrTooLarge, L"", 0},
        {"an oversized frame mid-read fails the read with 34",
         [](uint32_t id) {
             return Concat({DataFrame(id, 0x8000, ToBytes("ab")), WireFrame(9, 0, id, {}, 0, 0, 65537)});
         },
         0, "", true, kErrTooLarge, L"", 0},
        {"a frame that expands past 65,536 bytes fails the read, error unchanged",
         [tooBig](uint32_t id) {
             return Concat({DataFrame(id, 0x8000, ToBytes("ab")), DataFrame(id, 0x0400, Compressed(tooBig))});
         },
         0, "", true, 0, L"", 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedInstrument instrument(AnswerReads(c.frames));
        OnlineSensor sensor(instrument);
        ASSERT_TRUE(sensor.online());
        VXSStdioFileImpl file(instrument.host(), L"/f", L"r");
        EXPECT_EQ(file.GetError(), c.openError);
        if (c.openError == 0) {
            EXPECT_EQ(file.GetLength(), c.length);
        }
        int last = 0;
        std::vector<char> buffer(4096);
        std::string got;
        for (int i = 0; i < 10; ++i) {
            last = file.Read(buffer.data(), int(buffer.size()));
            if (last <= 0)
                break;
            got.append(buffer.data(), size_t(last));
        }
        EXPECT_EQ(got, c.content);
        EXPECT_EQ(last, c.readFails ? -1 : 0);
        EXPECT_EQ(file.GetError(), c.errorAfter);
        EXPECT_EQ(file.GetErrorText(), c.text);
        EXPECT_EQ(file.Read(buffer.data(), 1), c.readFails ? -1 : 0) << "a failed stream stays failed";
    }
}

TEST(LinkFileRead, ReadStringSplitsLines) {
    struct Case {
        std::string content;
        std::vector<std::pair<std::wstring, bool>> calls;
    } cases[] = {
        {"a\r\nb", {{L"a", true}, {L"b", true}, {L"", false}}},
        {"\n\nx\n", {{L"", true}, {L"", true}, {L"x", true}, {L"", false}}},
        {"\xC3\xA9t\xC3\xA9\r", {{L"\u00e9t\u00e9", true}, {L"", false}}},
        {std::string("ab\0cd\n", 6), {{L"keep", false}, {L"cd", true}}}, // NUL: false, line untouched
        {"", {{L"", false}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.content);
        const std::string content = c.content;
        ScriptedInstrument instrument(
            AnswerReads([content](uint32_t id) { return DataFrame(id, 0, ToBytes(content)); }));
        OnlineSensor sensor(instrument);
        ASSERT_TRUE(sensor.online());
        VXSStdioFileImpl file(instrument.host(), L"/t.txt", L"rt");
        for (const auto& [line, result] : c.calls) {
            std::wstring got = L"keep";
            EXPECT_EQ(file.ReadString(got), result);
            EXPECT_EQ(got, line);
        }
    }
}

TEST(LinkFileClose, WaitsHalfASecondAfterAFile) {
    ScriptedInstrument instrument(AnswerReads([](uint32_t id) { return DataFrame(id, 0, ToBytes("x")); }));
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    for (const wchar_t* mode : {L"r", L"w"}) {
        auto file = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/f", mode);
        ASSERT_EQ(file->GetError(), 0);
        const int refs = sensor->RefCount();
        auto start = Clock::now();
        file.reset();
        auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
        EXPECT_GE(ms, 480);
        EXPECT_LT(ms, 2000);
        EXPECT_EQ(sensor->RefCount(), refs - 1) << "the file's reference on the sensor is released";
    }
}

TEST(LinkFileRead, ALinkThatFailsMidFileFailsTheRead) {
    ScriptedInstrument instrument([](const PeerFrame& frame, int socket) {
        if (frame.command() == 3) {
            Send(socket, DataFrame(frame.argument(), 0x8000, ToBytes("part")));
            LoopbackPeer::ShutdownBoth(socket);
        }
    });
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    VXSStdioFileImpl file(instrument.host(), L"/f", L"r");
    ASSERT_EQ(file.GetError(), 0);
    char buffer[16];
    EXPECT_EQ(file.Read(buffer, 4), 4);
    auto start = Clock::now();
    EXPECT_EQ(file.Read(buffer, 4), -1);
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count(), 4500);
    // The file reports the link's own failure, not a later call's.
    EXPECT_NE(sensor->GetLastLinkError(), 0);
    EXPECT_EQ(file.GetError(), sensor->GetLastLinkError());
}

TEST(LinkFileClose, AFileClosedBeforeItsEndLeavesTheLinkInStep) {
    ScriptedInstrument instrument([](const PeerFrame& frame, int socket) {
        if (frame.command() == 3)
            Send(socket, Concat({DataFrame(frame.argument(), 0x8000, ToBytes("aaaa"), 12),
                                 DataFrame(frame.argument(), 0x8000, ToBytes("bbbb")),
                                 DataFrame(frame.argument(), 0, ToBytes("cccc"))}));
        if (frame.command() == 7)
            Send(socket, ReplyFrame(frame.argument(), 17, "already exists"));
    });
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    auto file = std::make_unique<VXSStdioFileImpl>(instrument.host(), L"/f", L"r");
    char buffer[2];
    ASSERT_EQ(file->Read(buffer, 2), 2);
    file.reset();
    // The next request's answer is its own, not the rest of the file.
    VXSFileInfoImpl folders(instrument.host());
    EXPECT_FALSE(folders.MkDir(L"/x"));
    EXPECT_EQ(folders.LastReplyStatus(), 17u);
    EXPECT_EQ(folders.GetErrorText(), L"instrument status 17: already exists");
}

// A copy from the instrument must not replace the PC's file with less than the instrument announced:
// a stream that ends early (here the last frame comes after 10 of 100 bytes) fails the copy.
TEST(LinkFileCopy, ShortStreamNeverReplacesTheOldFile) {
    VexaStdioFileImplFactory factory;
    ScriptedInstrument instrument(AnswerReads([](uint32_t id) {
        return DataFrame(id, 0, ToBytes("0123456789"), 100); // announces 100 bytes, sends 10
    }));
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    TempDir pc;
    pc.createFile("run1.vxs", "the old, complete file");

    CVexaFileList source(sensor.get(), CVexaFileList::FolderArgument(instrument.host(), L"/Data"), false);
    CVexaFileList destination(nullptr, CVexaFileList::FolderArgument(L"", FromUtf8(pc.path())));
    FileInfo entry;
    entry.name = L"run1.vxs";
    entry.size = 100;
    EXPECT_FALSE(destination.CopyIn(entry, source, nullptr));
    EXPECT_EQ(destination.LastError(), EIO);
    EXPECT_EQ(ReadWholeFile(pc.file("run1.vxs")), "the old, complete file");
    EXPECT_FALSE(FileExists(pc.file("___temp@@run1.vxs")));

    // The same stream with the length it announces copies.
    ScriptedInstrument honest(
        AnswerReads([](uint32_t id) { return DataFrame(id, 0, ToBytes("0123456789"), 10); }));
    OnlineSensor honestSensor(honest);
    CVexaFileList honestSource(honestSensor.get(), CVexaFileList::FolderArgument(honest.host(), L"/Data"),
                               false);
    EXPECT_TRUE(destination.CopyIn(entry, honestSource, nullptr)) << destination.LastError();
    EXPECT_EQ(ReadWholeFile(pc.file("run1.vxs")), "0123456789");
}
