// SPDX-License-Identifier: Apache-2.0
// A lying instrument against `vexa cp -r`, `vexa get` and the file manager's copy job: names that are
// paths never lead out of the destination, streams that disagree with their announced length never
// replace the PC's file, an endless stream and an endless listing stop at a bound with an error.
#include "copyjob.h"
#include "lyinginstrument.h"
#include "processrun.h"
#include "tempdir.h"
#include "text.h"
#include "vexafileinfoimplfactory.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"
#include "vexastdiofileimplfactory.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <set>

#include <sys/resource.h>
#include <sys/socket.h>

namespace fs = std::filesystem;

namespace {

VexaFileInfoImplFactory g_folderBackEnds;
VexaStdioFileImplFactory g_fileBackEnds;

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

// Every file and folder under `box`, relative to it.
std::set<std::string> Tree(const std::string& box) {
    std::set<std::string> paths;
    for (const auto& entry : fs::recursive_directory_iterator(box))
        paths.insert(fs::relative(entry.path(), box).generic_string());
    return paths;
}

// /Data lists names that are paths next to plain ones; so does its sub-folder.
void PlantHostileTree(LyingInstrument& instrument) {
    instrument.SetFolder("/Data", {
                                      {"ok.vxs"},
                                      {"OK.VXS"},                         // differs only in case
                                      {std::string("nul\0/../../x", 12)}, // the record ends at the NUL
                                      {"../escape1.vxs"},
                                      {"../../escape2.vxs"},
                                      {"/abs.vxs"},
                                      {"a/b.vxs"},
                                      {"a\\b.vxs"},
                                      {"..", true},
                                      {".", true},
                                      {"sub", true},
                                      {"../upfolder", true},
                                      {"/absfolder", true},
                                  });
    instrument.SetFolder("/Data/sub", {{"inner.vxs"}, {"../../sub-escape.vxs"}, {"..", true}});
}

// What a copy of /Data into box/dest leaves in the box: the plain names, nothing else anywhere.
std::set<std::string> ExpectedBox() {
    return {"box",          "box/dest",     "box/dest/ok.vxs",       "box/dest/OK.VXS",
            "box/dest/nul", "box/dest/sub", "box/dest/sub/inner.vxs"};
}

class ScopedSensor {
public:
    explicit ScopedSensor(const std::wstring& host)
        : m_sensor(new VEXASensorObject(nullptr, ISensorAddress(host))) {
        m_sensor->GoOnline();
    }
    ~ScopedSensor() { m_sensor->DecRef(); }
    ScopedSensor(const ScopedSensor&) = delete;
    ScopedSensor& operator=(const ScopedSensor&) = delete;
    VEXASensorObject* get() const { return m_sensor; }

private:
    VEXASensorObject* m_sensor;
};

} // namespace

TEST(HostileNames, CopyOfATreeNeverLeavesTheDestination) {
    LyingInstrument instrument;
    PlantHostileTree(instrument);
    TempDir pc;

    // The command line.
    const std::string cliBox = pc.createDir("cli/box");
    ProcessResult r =
        RunVexa({"cp", "-r", "--overwrite", "yes", instrument.Remote("/Data"), cliBox + "/dest"});
    EXPECT_EQ(r.exitCode, 1) << r.err;
    EXPECT_NE(r.err.find("not a plain file name"), std::string::npos) << r.err;
    EXPECT_EQ(Tree(pc.file("cli")), ExpectedBox());
    EXPECT_EQ(ReadWholeFile(cliBox + "/dest/sub/inner.vxs"), "/Data/sub/inner.vxs");

    // The file manager's copy job, in this process.
    const std::string jobBox = pc.createDir("job/box");
    fs::create_directory(jobBox + "/dest");
    ScopedSensor sensor(instrument.host());
    ASSERT_TRUE(sensor.get()->IsLinkOpen());
    CVexaFileList source(sensor.get(), CVexaFileList::FolderArgument(instrument.host(), L"/Data"));
    CVexaFileList destination(nullptr, FromUtf8(jobBox + "/dest/"));
    CopyJob job(source, destination);
    ASSERT_EQ(job.Build(source.Entries(), true, {}), CopyJob::BuildResult::kReady);
    EXPECT_FALSE(job.Run(nullptr));
    std::set<std::wstring> refused;
    for (const CopyJob::Failure& failure : job.Failures()) {
        EXPECT_EQ(failure.error, kErrInvalid) << ToUtf8(failure.name);
        refused.insert(failure.name.substr(failure.name.find(L"/Data")));
    }
    EXPECT_EQ(refused.size(), 8u); // six files and two folders with path names
    EXPECT_EQ(Tree(pc.file("job")), ExpectedBox());
}

namespace {

struct Lie {
    const char* name;
    LyingInstrument::FileStream stream;
    bool succeeds;
    const char* message; // part of the error the user sees
};

void Frames(int socket, const std::vector<std::vector<uint8_t>>& frames) {
    for (const auto& frame : frames)
        if (!LyingInstrument::Write(socket, frame))
            return;
}

// Full frames of "more follows" until the workstation stops reading.
void Endless(int socket, uint32_t id, const std::string&) {
    const std::vector<uint8_t> block(65536, 'e');
    if (!LyingInstrument::Write(socket, DataFrame(id, 0x8000, block, 1000)))
        return;
    while (LyingInstrument::Write(socket, DataFrame(id, 0x8000, block))) {
    }
}

const std::string kContent(5000, 'n');

} // namespace

TEST(HostileStreams, GetNeverReplacesTheOldFileWithALie) {
    const Lie lies[] = {
        {"fewer bytes than announced",
         [](int s, uint32_t id, const std::string&) { LyingInstrument::SendContent(s, id, kContent, 9000); },
         false, "announced"},
        {"more bytes than announced",
         [](int s, uint32_t id, const std::string&) { LyingInstrument::SendContent(s, id, kContent, 100); },
         false, "more than the 100 bytes"},
        {"an endless stream", Endless, false, "more than the 1000 bytes"},
        {"an error reply for another transfer first",
         [](int s, uint32_t id, const std::string&) {
             Frames(s, {ReplyFrame(id + 1000, 5, "not yours")});
             LyingInstrument::SendContent(s, id, kContent, uint32_t(kContent.size()));
         },
         true, ""},
        {"an error reply",
         [](int s, uint32_t id, const std::string&) { Frames(s, {ReplyFrame(id, 2, "gone")}); }, false,
         "gone"},
        {"a payload over 64 KiB",
         [](int s, uint32_t id, const std::string&) {
             Frames(s, {WireFrame(9, 0, id, std::vector<uint8_t>(100, 'o'), 100, 0, 70000)});
         },
         false, "34"},
        {"a frame cut short",
         [](int s, uint32_t id, const std::string&) {
             Frames(s, {WireFrame(9, 0, id, std::vector<uint8_t>(10, 'c'), 1000, 0, 1000)});
             ::shutdown(s, SHUT_RDWR);
         },
         false, ""},
    };
    for (const Lie& lie : lies) {
        SCOPED_TRACE(lie.name);
        LyingInstrument instrument;
        instrument.SetFolder("/Data", {{"x.vxs", false, uint32_t(kContent.size())}});
        instrument.SetStream("/Data/x.vxs", lie.stream);
        TempDir pc;
        const std::string target = pc.createFile("x.vxs", "old content");
        const auto start = Clock::now();
        const ProcessResult r = RunVexa(
            {"--retry", "0", "get", "--overwrite", "yes", instrument.Remote("/Data/x.vxs"), target}, 30000);
        EXPECT_LT(SecondsSince(start), 20.0);
        EXPECT_EQ(r.exitCode == 0, lie.succeeds) << r.err;
        EXPECT_EQ(ReadWholeFile(target), lie.succeeds ? kContent : "old content");
        EXPECT_NE(r.err.find(lie.message), std::string::npos) << r.err;
        EXPECT_EQ(Tree(pc.path()), std::set<std::string>{"x.vxs"}); // no temporary file stays
    }
}

#if defined(__SANITIZE_ADDRESS__)
// AddressSanitizer keeps up to 256 MiB of freed memory aside to catch late uses; a small quarantine
// keeps this binary's resident size a measure of what the code itself holds.
extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=16";
}
#endif

TEST(HostileListing, AMillionEntriesOrNoEndKeepMemoryBounded) {
    for (const uint32_t count : {1000000u, 0u}) {
        SCOPED_TRACE(count);
        LyingInstrument instrument;
        instrument.SetHugeFolder("/Big", count);
        ScopedSensor sensor(instrument.host());
        ASSERT_TRUE(sensor.get()->IsLinkOpen());
        rusage before{};
        getrusage(RUSAGE_SELF, &before);
        const auto start = Clock::now();
        std::vector<FileInfo> entries;
        EXPECT_FALSE(FileInfo::ReadSensorDir(instrument.host(), L"/Big", entries, L"", 0));
        EXPECT_EQ(FileInfo::LastError(), kErrTooLarge);
        // The rest of such an answer cannot be told from the next one: the link is given up.
        EXPECT_FALSE(sensor.get()->IsLinkOpen());
        EXPECT_LT(SecondsSince(start), 60.0);
        rusage after{};
        getrusage(RUSAGE_SELF, &after);
        EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 256 * 1024L); // KiB
    }
}
