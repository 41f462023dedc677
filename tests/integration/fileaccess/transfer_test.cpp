// SPDX-License-Identifier: Apache-2.0
// Files to and from the simulator through the folder lists and the link back ends: round trips at the
// frame boundaries, Unicode names, cancel in both directions, and the simulator's faults.
#include "copyjob.h"
#include "recordingobserver.h"
#include "recordingprogress.h"
#include "simulatedinstrument.h"
#include "stdiofile.h"
#include "tempdir.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>

#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

// The file link alone: the simulator's faults then count only the file traffic.
constexpr auto kLinkOnly = SimulatedInstrument::Commands::None;

std::wstring W(const std::string& s) {
    return FromUtf8(s);
}

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Uploads `content` as Data/<name> and fetches it back into a fresh folder; returns what came back.
std::string RoundTrip(SimulatedInstrument& instrument, const std::string& name, const std::string& content) {
    TempDir pc;
    pc.createFile("up/" + name, content);
    CVexaFileList local(nullptr, W(pc.file("up/")));
    CVexaFileList remote(instrument.sensor(), instrument.remote(L"/Data/"));
    const FileInfo* upload = local.Find(W(name));
    EXPECT_NE(upload, nullptr);
    if (!upload)
        return {};
    EXPECT_TRUE(remote.CopyIn(*upload, local, nullptr)) << remote.LastError();
    EXPECT_EQ(remote.LastTransport(), L"link");
    EXPECT_EQ(ReadWholeFile(instrument.root() + "/Data/" + name), content) << "on the instrument";

    EXPECT_TRUE(remote.Refresh());
    const FileInfo* download = remote.Find(W(name));
    EXPECT_NE(download, nullptr);
    if (!download)
        return {};
    EXPECT_EQ(download->size, int32_t(content.size()));
    pc.createDir("down");
    CVexaFileList back(nullptr, W(pc.file("down/")));
    RecordingProgress progress;
    EXPECT_TRUE(back.CopyIn(*download, remote, &progress)) << back.LastError();
    EXPECT_EQ(progress.total, int64_t(content.size()));
    EXPECT_EQ(progress.sizes, std::vector<int64_t>{int64_t(content.size())});
    EXPECT_TRUE(LeftoverTemporaries(instrument.root()).empty());
    EXPECT_TRUE(LeftoverTemporaries(pc.path()).empty());
    return ReadWholeFile(pc.file("down/" + name));
}

} // namespace

TEST(SimTransfer, RoundTripsAtFrameBoundaries) {
    SimulatedInstrument instrument;
    instrument.start();
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    struct Case {
        size_t size;
        bool compressible;
    } cases[] = {{0, false},
                 {1, false},
                 {65535, false},
                 {65536, false},
                 {65537, false},
                 {65537, true},
                 {3 * 1024 * 1024 + 7, false},
                 {3 * 1024 * 1024, true}};
    unsigned seed = 1;
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.size) + (c.compressible ? " compressible" : " random"));
        const std::string content = c.compressible ? CompressibleBytes(c.size) : RandomBytes(c.size, seed++);
        const std::string name = "rt" + std::to_string(c.size) + (c.compressible ? "c" : "r") + ".bin";
        EXPECT_TRUE(RoundTrip(instrument, name, content) == content);
    }
    EXPECT_TRUE(instrument.online());
}

TEST(SimTransfer, UnicodeNamesTravelAsUtf8) {
    SimulatedInstrument instrument;
    instrument.start();
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    const std::string name = "Pr\xC3\xBC"
                             "fung \xE6\xB8\xAC\xE5\xAE\x9A \xF0\x9F\xA7\xAA.mth";
    const std::string content = CompressibleBytes(70000);
    EXPECT_TRUE(RoundTrip(instrument, name, content) == content);
    std::vector<FileInfo> entries;
    ASSERT_TRUE(FileInfo::ReadSensorDir(instrument.host(), L"/Data", entries, L"*.mth", 0));
    ASSERT_EQ(entries.size(), 2u) << "the file and the way up";
    EXPECT_EQ(entries[0].name, W(name));
}

TEST(SimTransfer, StdioFileReadsWhatTheInstrumentHas) {
    SimulatedInstrument instrument;
    instrument.start();
    instrument.tree().createFile("Data/lines.txt", "first\r\nsecond\nthird");
    instrument.tree().createFile("Data/big.bin", RandomBytes(200000, 9));
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));

    StdioFile text;
    ASSERT_TRUE(text.Open(instrument.remote(L"/Data/lines.txt"), L"rt"));
    EXPECT_STREQ(text.TransportName(), L"link");
    EXPECT_EQ(text.GetLength(), 19);
    std::wstring line;
    std::vector<std::wstring> lines;
    while (text.ReadString(line))
        lines.push_back(line);
    EXPECT_EQ(lines, (std::vector<std::wstring>{L"first", L"second", L"third"}));
    text.Close();

    StdioFile missing;
    EXPECT_FALSE(missing.Open(instrument.remote(L"/Data/none.txt"), L"r"));
    EXPECT_EQ(missing.GetError(), 2);
    EXPECT_FALSE(missing.GetErrorText().empty()) << "the instrument's message is kept";

    // A file closed half-read leaves the link ready for the next request.
    StdioFile partial;
    ASSERT_TRUE(partial.Open(instrument.remote(L"/Data/big.bin"), L"rb"));
    char buffer[100];
    EXPECT_EQ(partial.Read(buffer, sizeof buffer), 100);
    partial.Close();
    std::vector<FileInfo> entries;
    EXPECT_TRUE(FileInfo::ReadSensorDir(instrument.host(), L"/Data", entries, L"", 0));
    EXPECT_EQ(entries.size(), 3u);
}

TEST(SimTransfer, CancelMidwayKeepsTheOldFileInBothDirections) {
    SimulatedInstrument instrument;
    instrument.start();
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    const std::string big = RandomBytes(2 * 1024 * 1024, 5);
    instrument.tree().createFile("Data/down.bin", big);
    instrument.tree().createFile("Data/up.bin", "old on the instrument");
    TempDir pc;
    pc.createFile("up.bin", big);
    pc.createFile("down.bin", "old on the pc");
    CVexaFileList local(nullptr, W(pc.path() + "/"));
    CVexaFileList remote(instrument.sensor(), instrument.remote(L"/Data/"));

    RecordingProgress upload;
    upload.cancelAfter = 1024 * 1024;
    EXPECT_FALSE(remote.CopyIn(*local.Find(L"up.bin"), local, &upload));
    EXPECT_EQ(remote.LastError(), ECANCELED);
    EXPECT_EQ(ReadWholeFile(instrument.root() + "/Data/up.bin"), "old on the instrument");

    RecordingProgress download;
    download.cancelAfter = 1024 * 1024;
    EXPECT_FALSE(local.CopyIn(*remote.Find(L"down.bin"), remote, &download));
    EXPECT_EQ(ReadWholeFile(pc.file("down.bin")), "old on the pc");

    EXPECT_TRUE(LeftoverTemporaries(instrument.root()).empty());
    EXPECT_TRUE(LeftoverTemporaries(pc.path()).empty());
    // The link is still in step: the folder lists and a whole copy work afterwards.
    EXPECT_TRUE(instrument.online());
    ASSERT_TRUE(remote.Refresh());
    EXPECT_EQ(remote.Count(), 3);
    EXPECT_TRUE(local.CopyIn(*remote.Find(L"down.bin"), remote, nullptr));
    EXPECT_TRUE(ReadWholeFile(pc.file("down.bin")) == big);
}

// A read closed early with much of the file still to come cuts the stream with a fresh connection:
// reading the rest would run into the instrument's stall, time out and take the sensor off line.
TEST(SimTransfer, ClosingEarlyInALargeReadReopensTheLinkQuietly) {
    constexpr int64_t kSize = 64 << 20;
    SimulatedInstrument instrument;
    instrument.start({"--no-compress", "--fault", "stall-after=8388608"});
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    ASSERT_EQ(::truncate(instrument.tree().createFile("Data/huge.bin").c_str(), kSize), 0);
    const std::string small = RandomBytes(300000, 3);
    instrument.tree().createFile("Data/small.bin", small);
    RecordingObserver observer;
    observer.SetSensor(instrument.sensor());

    StdioFile huge;
    ASSERT_TRUE(huge.Open(instrument.remote(L"/Data/huge.bin"), L"rb"));
    std::vector<char> block(16384);
    for (int64_t done = 0; done < kSize / 10; done += int64_t(block.size()))
        ASSERT_EQ(huge.Read(block.data(), int(block.size())), int(block.size()));
    huge.Close();

    EXPECT_TRUE(instrument.online());
    EXPECT_TRUE(observer.codes().empty()) << "observers saw the link change";
    StdioFile next;
    ASSERT_TRUE(next.Open(instrument.remote(L"/Data/small.bin"), L"rb"));
    std::string back(small.size() + 1, '\0');
    EXPECT_EQ(next.Read(back.data(), int(back.size())), int(small.size()));
    back.resize(small.size());
    EXPECT_TRUE(back == small);
    observer.SetSensor(nullptr);
}

TEST(SimTransfer, CopyJobCopiesATreeBothWays) {
    SimulatedInstrument instrument;
    instrument.start();
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    TempDir pc;
    pc.createFile("tree/a.mth", "a");
    pc.createFile("tree/sub/b.tun", RandomBytes(100000, 3));
    pc.createFile("tree/sub/deep/c.txt", "c");
    CVexaFileList local(nullptr, W(pc.path() + "/"));
    CVexaFileList remote(instrument.sensor(), instrument.remote(L"/Data/"));
    std::vector<FileInfo> selection{*local.Find(L"tree")};
    CopyJob up(local, remote);
    ASSERT_EQ(up.Build(selection, true, {}), CopyJob::BuildResult::kReady);
    RecordingProgress progress;
    EXPECT_TRUE(up.Run(&progress));
    EXPECT_EQ(progress.done, 1);
    EXPECT_EQ(ReadWholeFile(instrument.root() + "/Data/tree/sub/deep/c.txt"), "c");
    EXPECT_TRUE(ReadWholeFile(instrument.root() + "/Data/tree/sub/b.tun") ==
                ReadWholeFile(pc.file("tree/sub/b.tun")));

    // Back into another folder: the instrument's folders come with the folder flag.
    pc.createDir("back");
    CVexaFileList into(nullptr, W(pc.file("back/")));
    ASSERT_TRUE(remote.Refresh());
    CopyJob down(remote, into);
    ASSERT_EQ(down.Build({*remote.Find(L"tree")}, true, {}), CopyJob::BuildResult::kReady);
    EXPECT_TRUE(down.Run(nullptr));
    EXPECT_EQ(ReadWholeFile(pc.file("back/tree/a.mth")), "a");
    EXPECT_EQ(ReadWholeFile(pc.file("back/tree/sub/deep/c.txt")), "c");
}

TEST(SimFaults, OperationsFailCleanlyWithinTheLinkLimits) {
    struct Case {
        const char* fault;
        int readError; // the error the failed download reports
        double limitSeconds;
    } cases[] = {
        {"stall-after=1000", kWsaTimedOut, 6.0},
        {"close-mid-frame=500", kWsaTimedOut, 6.0},
        {"oversize", kErrTooLarge, 3.0},
        {"reply-status=5", 5, 3.0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        SimulatedInstrument instrument;
        instrument.start({"--fault", c.fault});
        instrument.tree().createFile("Data/file.bin", RandomBytes(300000, 11));
        ASSERT_TRUE(instrument.goOnline(kLinkOnly));
        TempDir pc;
        pc.createFile("file.bin", "old");
        CVexaFileList local(nullptr, W(pc.path() + "/"));
        CVexaFileList remote(instrument.sensor(), instrument.remote(L"/Data/"), false);
        FileInfo entry;
        entry.name = L"file.bin";
        entry.size = 300000;

        auto start = Clock::now();
        EXPECT_FALSE(local.CopyIn(entry, remote, nullptr));
        EXPECT_LT(SecondsSince(start), c.limitSeconds);
        EXPECT_EQ(local.LastError(), c.readError);
        EXPECT_EQ(ReadWholeFile(pc.file("file.bin")), "old");
        EXPECT_TRUE(LeftoverTemporaries(pc.path()).empty());

        // Listing fails or ends early, never hangs.
        start = Clock::now();
        std::vector<FileInfo> entries;
        FileInfo::ReadSensorDir(instrument.host(), L"/Data", entries, L"", 0);
        EXPECT_LT(SecondsSince(start), 6.0);
    }
}

TEST(SimFaults, AnUploadTheInstrumentRefusesLeavesNothingBehind) {
    SimulatedInstrument instrument;
    instrument.start({"--fault", "reply-status=13"});
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    TempDir pc;
    pc.createFile("new.mth", "content");
    CVexaFileList local(nullptr, W(pc.path() + "/"));
    CVexaFileList remote(instrument.sensor(), instrument.remote(L"/Data/"), false);
    EXPECT_FALSE(remote.CopyIn(*local.Find(L"new.mth"), local, nullptr));
    EXPECT_NE(remote.LastError(), 0);
    EXPECT_FALSE(FileExists(instrument.root() + "/Data/new.mth"));
    EXPECT_TRUE(LeftoverTemporaries(instrument.root()).empty());
}
