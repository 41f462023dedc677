// SPDX-License-Identifier: Apache-2.0
// Building and running copy jobs: the data-file rule, the overwrite answers, whole trees, cancel and
// failures. Workstation folders on both sides, and a scripted instrument as the source for the rule
// that only applies to files taken from the instrument.
#include "copyjob.h"
#include "onlinesensor.h"
#include "recordingprogress.h"
#include "tempdir.h"
#include "text.h"
#include "vexafileinfoimplfactory.h"
#include "vexafilelist.h"

#include <gtest/gtest.h>

#include <deque>
#include <set>

namespace {

VexaFileInfoImplFactory g_folderBackEnds;

std::wstring W(const std::string& s) {
    return FromUtf8(s);
}

std::set<std::wstring> ItemNames(const CopyJob::Node& node) {
    std::set<std::wstring> names;
    for (const CopyJob::Item& item : node.items)
        names.insert(item.destinationName);
    return names;
}

} // namespace

TEST(DataFileNames, SubstringRules) {
    struct Case {
        const wchar_t* name;
        bool instrument, workstation;
    } cases[] = {
        {L"run1.vxs", true, true},       {L"RUN1.VXS", true, false}, {L"run.vxz", true, true},
        {L"run.VXZ", true, false},       {L"run.vxsu", true, true},  {L"archive.vxs.bak", true, true},
        {L"vxz-notes.txt", false, true}, {L"myvxsu", false, true},   {L"method.mth", false, false},
        {L"run.vq", false, false},       {L".vxs", true, true},      {L"vxs", false, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IsInstrumentDataFileName(c.name), c.instrument) << ToUtf8(c.name);
        EXPECT_EQ(IsWorkstationDataFileName(c.name), c.workstation) << ToUtf8(c.name);
    }
}

TEST(CopyJobBuild, OverwriteAnswers) {
    TempDir dir;
    for (const char* name : {"a", "b", "c", "d", "e"})
        dir.createFile(std::string("src/") + name, name);
    for (const char* name : {"a", "b", "c", "d"})
        dir.createFile(std::string("dst/") + name, "old");
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));
    using A = OverwriteAnswer;
    struct Case {
        const char* name;
        std::vector<A> answers;
        CopyJob::BuildResult result;
        std::set<std::wstring> items;
        size_t questions;
    } cases[] = {
        {"yes to each",
         {A::kYes, A::kYes, A::kYes, A::kYes},
         CopyJob::BuildResult::kReady,
         {L"a", L"b", L"c", L"d", L"e"},
         4},
        {"mixed", {A::kNo, A::kYes, A::kNo, A::kYes}, CopyJob::BuildResult::kReady, {L"b", L"d", L"e"}, 4},
        {"yes to all", {A::kYesToAll}, CopyJob::BuildResult::kReady, {L"a", L"b", L"c", L"d", L"e"}, 1},
        {"no, then no to all", {A::kNo, A::kNoToAll}, CopyJob::BuildResult::kReady, {L"e"}, 2},
        {"cancel abandons everything", {A::kYes, A::kCancel}, CopyJob::BuildResult::kCancelled, {}, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::deque<A> answers(c.answers.begin(), c.answers.end());
        std::vector<std::wstring> asked;
        OverwriteQuestion ask = [&](const OverwriteCase& overwrite) {
            const std::wstring& name = overwrite.replacement.name;
            asked.push_back(name);
            EXPECT_EQ(overwrite.target, W(dir.file("dst/")) + name);
            // The question carries both entries: one byte copied over the three of "old".
            EXPECT_EQ(overwrite.replacement.size, 1);
            EXPECT_TRUE(overwrite.existing && overwrite.existing->size == 3 &&
                        overwrite.existing->name == name);
            A answer = answers.empty() ? A::kCancel : answers.front();
            if (!answers.empty())
                answers.pop_front();
            return answer;
        };
        CopyJob job(source, destination);
        EXPECT_EQ(job.Build(source.Entries(), true, ask), c.result);
        EXPECT_EQ(ItemNames(job.Top()), c.items);
        EXPECT_EQ(asked.size(), c.questions);
        EXPECT_EQ(ReadWholeFile(dir.file("dst/a")), "old") << "building writes nothing";
    }

    CopyJob unasked(source, destination);
    EXPECT_EQ(unasked.Build(source.Entries(), true, {}), CopyJob::BuildResult::kReady);
    EXPECT_EQ(unasked.FileCount(), 5) << "without a question an entry is kept";
    std::vector<FileInfo> onlyParent(1);
    onlyParent[0].name = L"..";
    onlyParent[0].size = -1;
    EXPECT_EQ(unasked.Build(onlyParent, true, {}), CopyJob::BuildResult::kNothingToCopy);
}

TEST(CopyJobBuild, DataFilesFromTheInstrumentNeedAccessLevelZero) {
    auto listing = [](const std::string& folder) -> std::vector<uint8_t> {
        if (folder == "\"/data\"")
            return Concat({Record("..", 0, 0, 0, 0, 1), Record("run1.vxs", 10, 0, 0, 0, 0),
                           Record("RUN2.VXZ", 10, 0, 0, 0, 0), Record("x.vxsu", 10, 0, 0, 0, 0),
                           Record("method.mth", 10, 0, 0, 0, 0), Record("notes.txt", 10, 0, 0, 0, 0),
                           Record("sub", 0, 0, 0, 0, 1)});
        if (folder == "\"/data/sub\"")
            return Concat({Record("..", 0, 0, 0, 0, 1), Record("inner.vxs", 5, 0, 0, 0, 0),
                           Record("inner.mth", 5, 0, 0, 0, 0)});
        return {};
    };
    ScriptedInstrument instrument([&](const PeerFrame& frame, int socket) {
        if (frame.kind() == 8 && frame.command() == 1)
            Send(socket, DataFrame(frame.argument(), 0x0100, listing(frame.firstArgument())));
    });
    OnlineSensor sensor(instrument);
    ASSERT_TRUE(sensor.online());
    TempDir dir;
    dir.createDir("pc");

    CVexaFileList fromInstrument(sensor.get(), CVexaFileList::FolderArgument(instrument.host(), L"/data"));
    ASSERT_EQ(fromInstrument.Count(), 7);
    CVexaFileList pc(nullptr, W(dir.file("pc/")));
    for (bool access : {false, true}) {
        SCOPED_TRACE(access ? "with access level 0" : "without access level 0");
        CopyJob job(fromInstrument, pc);
        ASSERT_EQ(job.Build(fromInstrument.Entries(), access, {}), CopyJob::BuildResult::kReady);
        const std::set<std::wstring> top =
            access ? std::set<std::wstring>{L"run1.vxs", L"RUN2.VXZ", L"x.vxsu", L"method.mth", L"notes.txt"}
                   : std::set<std::wstring>{L"method.mth", L"notes.txt"};
        EXPECT_EQ(ItemNames(job.Top()), top);
        ASSERT_EQ(job.Top().children.size(), 1u);
        const CopyJob::Node& sub = *job.Top().children[0];
        EXPECT_EQ(sub.subFolder, L"sub");
        const std::set<std::wstring> inner = access ? std::set<std::wstring>{L"inner.vxs", L"inner.mth"}
                                                    : std::set<std::wstring>{L"inner.mth"};
        EXPECT_EQ(ItemNames(sub), inner);
        EXPECT_TRUE(job.Failures().empty());
    }

    // From the workstation the rule does not apply when building: the copy button already refused.
    dir.createFile("pc/run9.vxs", "x");
    ASSERT_TRUE(pc.Refresh());
    CopyJob upload(pc, fromInstrument);
    ASSERT_EQ(upload.Build(pc.Entries(), false, {}), CopyJob::BuildResult::kReady);
    EXPECT_EQ(ItemNames(upload.Top()), std::set<std::wstring>{L"run9.vxs"});
}

TEST(CopyJobRun, CopiesWholeTreesDepthFirst) {
    TempDir dir;
    dir.createFile("src/top.txt", "top");
    dir.createFile("src/sub/inner.txt", std::string(40000, 'i'));
    dir.createFile("src/sub/deeper/x.bin", "x");
    dir.createDir("src/empty");
    dir.createFile("dst/sub/inner.txt", "old");
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));
    CopyJob job(source, destination);
    std::vector<OverwriteCase> asked;
    ASSERT_EQ(job.Build(source.Entries(), true,
                        [&](const OverwriteCase& overwrite) {
                            asked.push_back(overwrite);
                            return OverwriteAnswer::kYes;
                        }),
              CopyJob::BuildResult::kReady);
    // The existing folder is asked about as a folder (copied into), then the file inside it.
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].replacement.name, L"sub");
    EXPECT_TRUE(asked[0].replacement.IsFolder() && asked[0].existing && asked[0].existing->IsFolder());
    EXPECT_EQ(asked[1].replacement.name, L"inner.txt");
    EXPECT_EQ(asked[1].target, W(dir.file("dst/sub/inner.txt")));
    EXPECT_EQ(asked[1].replacement.size, 40000);
    EXPECT_EQ(job.FileCount(), 3);
    EXPECT_EQ(job.TotalBytes(), 40004);

    RecordingProgress progress;
    EXPECT_TRUE(job.Run(&progress));
    EXPECT_EQ(job.CopiedCount(), 3);
    EXPECT_EQ(progress.done, 1);
    EXPECT_EQ(progress.totalBytes, 40004);
    EXPECT_EQ(progress.totalFiles, 3);
    EXPECT_EQ(ReadWholeFile(dir.file("dst/top.txt")), "top");
    EXPECT_EQ(ReadWholeFile(dir.file("dst/sub/inner.txt")), std::string(40000, 'i'));
    EXPECT_EQ(ReadWholeFile(dir.file("dst/sub/deeper/x.bin")), "x");
    EXPECT_TRUE(FileExists(dir.file("dst/empty")));
    // The top folder's files come first, then each sub-folder with everything below it.
    ASSERT_EQ(progress.files.size(), 3u);
    EXPECT_EQ(progress.files[0], W(dir.file("src/top.txt")));
    EXPECT_EQ(progress.files[1], W(dir.file("src/sub/inner.txt")));
    EXPECT_EQ(progress.files[2], W(dir.file("src/sub/deeper/x.bin")));
}

TEST(CopyJobRun, CancelStopsTheWholeJob) {
    TempDir dir;
    dir.createFile("src/a.bin", std::string(20000, 'a'));
    dir.createFile("src/b.bin", std::string(20000, 'b'));
    dir.createFile("src/sub/c.bin", "c");
    dir.createFile("dst/b.bin", "old b");
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));
    CopyJob job(source, destination);
    ASSERT_EQ(job.Build(source.Entries(), true, {}), CopyJob::BuildResult::kReady);
    RecordingProgress progress;
    progress.cancelAfter = 20000 + 1; // during the second file
    EXPECT_FALSE(job.Run(&progress));
    EXPECT_TRUE(job.WasCancelled());
    EXPECT_EQ(job.CopiedCount(), 1);
    EXPECT_EQ(progress.done, 1) << "the progress window is told even after a cancel";
    EXPECT_EQ(ReadWholeFile(dir.file("dst/a.bin")), std::string(20000, 'a'));
    EXPECT_EQ(ReadWholeFile(dir.file("dst/b.bin")), "old b");
    EXPECT_FALSE(FileExists(dir.file("dst/___temp@@b.bin")));
    EXPECT_FALSE(FileExists(dir.file("dst/sub"))) << "nothing runs after the cancel";
}

TEST(CopyJobRun, AFailedFileIsReportedAndTheRestGoesOn) {
    TempDir dir;
    dir.createFile("src/a.txt", "a");
    dir.createFile("src/gone.txt", "g");
    dir.createFile("src/z.txt", "z");
    dir.createDir("dst");
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));
    CopyJob job(source, destination);
    ASSERT_EQ(job.Build(source.Entries(), true, {}), CopyJob::BuildResult::kReady);
    ::unlink(dir.file("src/gone.txt").c_str());
    EXPECT_FALSE(job.Run(nullptr));
    EXPECT_FALSE(job.WasCancelled());
    EXPECT_EQ(job.CopiedCount(), 2);
    ASSERT_EQ(job.Failures().size(), 1u);
    EXPECT_EQ(job.Failures()[0].name, W(dir.file("src/gone.txt")));
    EXPECT_EQ(job.Failures()[0].error, ENOENT);
    EXPECT_EQ(ReadWholeFile(dir.file("dst/z.txt")), "z");
}
