// SPDX-License-Identifier: Apache-2.0
// The folder list: its sort order, lookups, and the copy of one file through a temporary name, on
// workstation folders.
#include "recordingprogress.h"
#include "sensorref.h"
#include "tempdir.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include <sys/stat.h>
#include <utime.h>

namespace {

std::wstring W(const std::string& s) {
    return FromUtf8(s);
}

std::vector<std::wstring> Names(const CVexaFileList& list) {
    std::vector<std::wstring> names;
    for (const FileInfo& e : list.Entries())
        names.push_back(e.name);
    return names;
}

void SetTime(const std::string& path, time_t when) {
    utimbuf times{when, when};
    ASSERT_EQ(::utime(path.c_str(), &times), 0);
}

} // namespace

TEST(FileListSort, GroupsStayOnTopInBothOrders) {
    TempDir dir;
    dir.createDir("top/Beta");
    dir.createDir("top/alpha");
    dir.createFile("top/b.txt", std::string(10, 'b'));
    dir.createFile("top/A.txt", std::string(300, 'a'));
    dir.createFile("top/c.txt", std::string(20, 'c'));
    dir.createFile("top/C.TXT", std::string(5, 'C'));
    SetTime(dir.file("top/b.txt"), 3000);
    SetTime(dir.file("top/A.txt"), 1000);
    SetTime(dir.file("top/c.txt"), 2000);
    SetTime(dir.file("top/C.TXT"), 4000);
    SetTime(dir.file("top/Beta"), 10);
    SetTime(dir.file("top/alpha"), 20);

    CVexaFileList list(nullptr, W(dir.file("top/")));
    ASSERT_EQ(list.Count(), 7) << "six entries and the way up";
    struct Case {
        int column;
        bool descending;
        std::vector<std::wstring> order;
    } cases[] = {
        {CVexaFileList::kSortName, false, {L"..", L"alpha", L"Beta", L"A.txt", L"b.txt", L"c.txt", L"C.TXT"}},
        {CVexaFileList::kSortName, true, {L"..", L"Beta", L"alpha", L"c.txt", L"C.TXT", L"b.txt", L"A.txt"}},
        {CVexaFileList::kSortSize, true, {L"..", L"Beta", L"alpha", L"A.txt", L"c.txt", L"b.txt", L"C.TXT"}},
        {CVexaFileList::kSortSize, false, {L"..", L"Beta", L"alpha", L"C.TXT", L"b.txt", L"c.txt", L"A.txt"}},
        {CVexaFileList::kSortTime, false, {L"..", L"Beta", L"alpha", L"A.txt", L"c.txt", L"b.txt", L"C.TXT"}},
        {CVexaFileList::kSortTime, true, {L"..", L"alpha", L"Beta", L"C.TXT", L"b.txt", L"c.txt", L"A.txt"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.column) + (c.descending ? " descending" : " ascending"));
        list.SetSortColumn(c.column);
        list.SetDescending(c.descending);
        list.Sort();
        std::vector<std::wstring> names = Names(list);
        if (c.column == CVexaFileList::kSortSize) // folders all have size -1: their order is free
            std::sort(names.begin() + 1, names.begin() + 3);
        if (c.column == CVexaFileList::kSortName) {
            // "c.txt" and "C.TXT" are equal to the key: either order, but next to each other.
            auto at = std::find(names.begin(), names.end(), L"c.txt") - names.begin();
            auto other = std::find(names.begin(), names.end(), L"C.TXT") - names.begin();
            EXPECT_EQ(std::abs(at - other), 1);
            if (names[size_t(std::min(at, other))] != c.order[size_t(std::min(at, other))])
                std::swap(names[size_t(at)], names[size_t(other)]);
        }
        EXPECT_EQ(names, c.order);
    }
}

TEST(FileListSort, OrderOfTheTests) {
    auto entry = [](const wchar_t* name, int32_t size, uint32_t attrib, int64_t time = 0) {
        FileInfo e;
        e.name = name;
        e.size = size;
        e.attrib = attrib;
        e.times[2] = time;
        return e;
    };
    struct Case {
        FileInfo a, b;
        int column;
        bool descending;
        bool before;
    } cases[] = {
        {entry(L"x", 1, 0), entry(L"x", 2, 1), 0, false, false},  // equal names: never before
        {entry(L"..", 5, 0), entry(L"a", -1, 1), 0, false, true}, // ".." first
        {entry(L"a", -1, 1), entry(L"..", 5, 0), 0, true, false}, // in either order
        {entry(L"z", -1, 0), entry(L"a", 0, 1), 0, false, true},  // negative size before the folder flag
        {entry(L"z", 0, 1), entry(L"a", 0, 0), 0, false, true},   // folder flag before plain files
        {entry(L"z", 0, 1), entry(L"a", 0, 0), 0, true, true},    // grouping is not reversed
        {entry(L"a", 5, 0), entry(L"B", 1, 0), 0, false, true},   // names ignore case
        {entry(L"a", -5, 0), entry(L"b", -1, 0), 1, false, true}, // sizes are signed
        {entry(L"a", 5, 0), entry(L"b", 1, 0), 1, true, true},    // descending reverses the key
        {entry(L"a", 0, 0, -1), entry(L"b", 0, 0, 1LL << 33), 2, false, true}, // 64-bit signed time
        {entry(L"a", 0, 0, 1LL << 33), entry(L"b", 0, 0, 1), 2, false, false},
    };
    int row = 0;
    for (const Case& c : cases)
        EXPECT_EQ(CVexaFileList::ComesBefore(c.a, c.b, c.column, c.descending), c.before) << "row " << row++;
}

TEST(FileList, LookupsAndNames) {
    TempDir dir;
    dir.createFile("d/one.mth", "1");
    CVexaFileList list(nullptr, W(dir.file("d/one.mth"))); // a file inside the folder names the folder too
    EXPECT_EQ(list.Folder(), W(dir.file("d")));
    EXPECT_FALSE(list.IsRemote());
    ASSERT_EQ(list.Count(), 2);
    EXPECT_EQ(list.Entry(-1), nullptr);
    EXPECT_EQ(list.Entry(2), nullptr);
    ASSERT_NE(list.Entry(1), nullptr);
    EXPECT_EQ(list.Entry(1)->name, L"one.mth");
    EXPECT_NE(list.Find(L"one.mth"), nullptr);
    EXPECT_EQ(list.Find(L"ONE.mth"), nullptr) << "find compares exactly";
    EXPECT_EQ(list.FullName(L"x"), W(dir.file("d/x")));

    CVexaFileList remote(nullptr, L"@127.9.9.6:/data/", false);
    EXPECT_TRUE(remote.IsRemote());
    EXPECT_EQ(remote.Folder(), L"/data");
    EXPECT_EQ(remote.FullName(L"run.vxs"), L"@127.9.9.6:/data/run.vxs");
    EXPECT_EQ(remote.FolderName(), L"@127.9.9.6:/data");
    CVexaFileList root(nullptr, L"@h:/", false);
    EXPECT_EQ(root.FullName(L"a"), L"@h:/a");
    EXPECT_EQ(CVexaFileList::FolderArgument(L"h", L"/data"), L"@h:/data/");
}

TEST(FileList, RefreshFailsForAnOfflineInstrumentAndAnInvalidList) {
    {
        const auto sensor =
            SensorRef<VEXASensorObject>::Adopt(new VEXASensorObject(nullptr, ISensorAddress(L"127.9.9.5")));
        CVexaFileList list(sensor.get(), L"@127.9.9.5:/data/");
        EXPECT_EQ(list.Count(), 0);
        EXPECT_FALSE(list.Refresh());
        EXPECT_EQ(list.Count(), 0);
        EXPECT_EQ(list.LastError(), kWsaNotConn);
    }

    TempDir dir;
    dir.createFile("f", "x");
    CVexaFileList local(nullptr, W(dir.path() + "/"));
    EXPECT_EQ(local.Count(), 2);
    local.SetValid(false);
    EXPECT_FALSE(local.Refresh());
    EXPECT_EQ(local.Count(), 0);
}

TEST(FileList, BusyHookWrapsEachListing) {
    std::vector<bool> calls;
    SetFileListBusyHook([&](bool busy) { calls.push_back(busy); });
    TempDir dir;
    CVexaFileList list(nullptr, W(dir.path() + "/"));
    list.Refresh();
    list.SetValid(false);
    list.Refresh(); // refused before any listing
    SetFileListBusyHook({});
    EXPECT_EQ(calls, (std::vector<bool>{true, false, true, false}));
}

TEST(FileListCopy, ReplacesTheOldFileOnlyOnceTheNewOneIsComplete) {
    TempDir dir;
    const std::string content(50000, 'n');
    dir.createFile("src/data.mth", content);
    dir.createFile("dst/data.mth", "old");
    SetTime(dir.file("src/data.mth"), 978307200); // 2001-01-01
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));
    const FileInfo* entry = source.Find(L"data.mth");
    ASSERT_NE(entry, nullptr);

    RecordingProgress progress;
    int checks = 0;
    progress.onBlock = [&] {
        // While the copy runs the old file is untouched and the new bytes go to the temporary name.
        EXPECT_EQ(ReadWholeFile(dir.file("dst/data.mth")), "old");
        EXPECT_TRUE(FileExists(dir.file("dst/___temp@@data.mth")));
        ++checks;
    };
    ASSERT_TRUE(destination.CopyIn(*entry, source, &progress));
    EXPECT_EQ(checks, 4);
    EXPECT_EQ(progress.blocks, (std::vector<int64_t>{16384, 16384, 16384, 848}));
    EXPECT_EQ(progress.files, std::vector<std::wstring>{W(dir.file("src/data.mth"))});
    EXPECT_EQ(progress.sizes, std::vector<int64_t>{50000});
    EXPECT_EQ(ReadWholeFile(dir.file("dst/data.mth")), content);
    EXPECT_FALSE(FileExists(dir.file("dst/___temp@@data.mth")));
    struct stat info {};
    ASSERT_EQ(::stat(dir.file("dst/data.mth").c_str(), &info), 0);
    EXPECT_EQ(info.st_mtime, 978307200) << "the source's times are copied";
    EXPECT_EQ(destination.LastTransport(), L"local");
}

TEST(FileListCopy, CancelLeavesTheOldFileAndNoTemporaryFile) {
    TempDir dir;
    dir.createFile("src/big.bin", std::string(100000, 'x'));
    dir.createFile("dst/big.bin", "old");
    dir.createFile("dst/other.bin", "keep");
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));
    for (int64_t cancelAt : {1, 16384, 50000, 99999}) {
        SCOPED_TRACE(cancelAt);
        RecordingProgress progress;
        progress.cancelAfter = cancelAt;
        EXPECT_FALSE(destination.CopyIn(*source.Find(L"big.bin"), source, &progress));
        EXPECT_EQ(destination.LastError(), ECANCELED);
        EXPECT_EQ(ReadWholeFile(dir.file("dst/big.bin")), "old");
        EXPECT_FALSE(FileExists(dir.file("dst/___temp@@big.bin")));
        EXPECT_EQ(ReadWholeFile(dir.file("dst/other.bin")), "keep");
    }
}

TEST(FileListCopy, EdgeCases) {
    TempDir dir;
    dir.createFile("src/empty.txt", "");
    dir.createFile("src/a.txt", "abc");
    dir.createDir("src/sub");
    dir.createDir("dst");
    CVexaFileList source(nullptr, W(dir.file("src/")));
    CVexaFileList destination(nullptr, W(dir.file("dst/")));

    // An empty file, under another name, without a progress object.
    ASSERT_TRUE(destination.CopyIn(*source.Find(L"empty.txt"), source, nullptr, L"renamed.txt"));
    EXPECT_TRUE(FileExists(dir.file("dst/renamed.txt")));
    EXPECT_EQ(ReadWholeFile(dir.file("dst/renamed.txt")), "");
    // A folder is only made.
    ASSERT_TRUE(destination.CopyIn(*source.Find(L"sub"), source, nullptr));
    struct stat info {};
    EXPECT_EQ(::stat(dir.file("dst/sub").c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
    // A source that vanished fails with its error and leaves nothing behind.
    FileInfo gone = *source.Find(L"a.txt");
    ::unlink(dir.file("src/a.txt").c_str());
    EXPECT_FALSE(destination.CopyIn(gone, source, nullptr));
    EXPECT_EQ(destination.LastError(), ENOENT);
    EXPECT_FALSE(FileExists(dir.file("dst/___temp@@a.txt")));
    // A nameless entry or an invalid list is refused.
    FileInfo nameless;
    EXPECT_FALSE(destination.CopyIn(nameless, source, nullptr));
    source.SetValid(false);
    EXPECT_FALSE(destination.CopyIn(*source.Find(L"empty.txt"), source, nullptr));
}

TEST(FileListFolders, MakeRenameRemoveDelete) {
    TempDir dir;
    dir.createFile("d/f.txt", "x");
    CVexaFileList list(nullptr, W(dir.file("d/")));
    EXPECT_TRUE(list.MakeFolder(L"new"));
    EXPECT_FALSE(list.MakeFolder(L"new"));
    EXPECT_EQ(list.LastError(), EEXIST);
    dir.createFile("d/new/inner.txt", "y");
    EXPECT_TRUE(list.Rename(L"new", L"renamed"));
    EXPECT_FALSE(list.RemoveFolder(L"renamed", false)) << "not empty";
    EXPECT_TRUE(list.RemoveFolder(L"renamed", true));
    EXPECT_TRUE(list.DeleteFile(L"f.txt"));
    EXPECT_FALSE(list.DeleteFile(L"f.txt"));
    EXPECT_TRUE(list.Refresh());
    EXPECT_EQ(Names(list), std::vector<std::wstring>{L".."});
}
