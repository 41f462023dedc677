// SPDX-License-Identifier: Apache-2.0
#include "fileinfo.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
std::wstring W(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

std::map<std::wstring, FileInfo> ByName(const std::vector<FileInfo>& entries) {
    std::map<std::wstring, FileInfo> map;
    for (const auto& e : entries)
        map[e.name] = e;
    return map;
}

// A remote folder back end that records its calls.
class FakeFolderImpl : public FileInfoImpl {
public:
    explicit FakeFolderImpl(std::vector<std::wstring>* log) : m_log(log) {}
    bool ReadSensorDir(const std::wstring& folder, std::vector<FileInfo>& entries,
                       const std::wstring& pattern, uint32_t option) override {
        m_log->push_back(L"list " + folder + L" " + pattern + L" " + std::to_wstring(option));
        FileInfo entry;
        entry.name = L"remote.mth";
        entries.push_back(entry);
        return true;
    }
    // "taken": refused the way the link refuses, with a status that leaves GetError() as it was.
    bool MkDir(const std::wstring& path) override {
        m_refusal = path.ends_with(L"/taken") ? 17 : 0;
        return Log(L"mkdir " + path, m_refusal == 0);
    }
    bool Rename(const std::wstring& a, const std::wstring& b) override {
        return Log(L"rename " + a + L" " + b, true);
    }
    bool RmDir(const std::wstring& path, bool recursive) override {
        return Log(L"rmdir " + path + (recursive ? L" -r" : L""), true);
    }
    bool Delete(const std::wstring& path) override {
        m_error = 1234;
        return Log(L"delete " + path, false);
    }
    bool RunCommand(const std::wstring& command, std::wstring& output, int64_t timeoutUs) override {
        output = L"ran";
        return Log(L"run " + command + L" " + std::to_wstring(timeoutUs), true);
    }
    bool GetFileInfo(const std::wstring& path, FileInfo*, void*, int*) override {
        return Log(L"stat " + path, true);
    }
    int GetError() const override { return m_error; }
    std::wstring GetErrorText() const override { return m_error ? L"instrument says no" : L""; }
    uint32_t LastReplyStatus() const override { return m_refusal; }
    std::wstring LastReplyText() const override { return m_refusal ? L"already exists" : L""; }

private:
    bool Log(const std::wstring& line, bool result) {
        m_log->push_back(line);
        return result;
    }
    std::vector<std::wstring>* m_log;
    int m_error = 0;
    uint32_t m_refusal = 0;
};

class FakeFolderFactory : public FileInfoImplFactory {
public:
    FileInfoImpl* Create(const std::wstring& host) override {
        hosts.push_back(host);
        return host == L"box" ? new FakeFolderImpl(&log) : nullptr;
    }
    std::vector<std::wstring> hosts;
    std::vector<std::wstring> log;
};
} // namespace

TEST(FileInfo, ListsLocalFolder) {
    TempDir dir;
    dir.createFile("a.mth", "12345");
    dir.createFile("b.tun", "");
    dir.createFile(".hidden", "h");
    dir.createDir("sub");
    // A known modification time, to check the microsecond fields.
    const timespec times[2] = {{1000, 250000}, {1700000000, 123456789}};
    ASSERT_EQ(utimensat(AT_FDCWD, dir.file("a.mth").c_str(), times, 0), 0);

    std::vector<FileInfo> entries(3); // replaced, not appended to
    ASSERT_TRUE(FileInfo::ReadSensorDir(L"", W(dir.path()), entries, L"", 0));
    EXPECT_EQ(FileInfo::LastError(), 0);
    auto map = ByName(entries);
    ASSERT_EQ(map.size(), 5u) << "a.mth b.tun .hidden sub ..";
    EXPECT_EQ(map[L"a.mth"].size, 5);
    EXPECT_FALSE(map[L"a.mth"].IsFolder());
    EXPECT_EQ(map[L"a.mth"].times[1], 1000000250);
    EXPECT_EQ(map[L"a.mth"].GetTime(), 1700000000123456);
    EXPECT_GT(map[L"a.mth"].times[0], 0);
    EXPECT_EQ(map[L"b.tun"].size, 0);
    EXPECT_EQ(map[L"sub"].size, -1);
    EXPECT_TRUE(map[L"sub"].IsFolder());
    EXPECT_TRUE(map[L".."].IsFolder());

    // The pattern filters names but always keeps the way up.
    ASSERT_TRUE(FileInfo::ReadSensorDir(L"", W(dir.path()), entries, L"*.MTH;*.xmth", 0));
    map = ByName(entries);
    EXPECT_EQ(map.size(), 2u);
    EXPECT_TRUE(map.count(L"a.mth") && map.count(L".."));

    // The root has no way up.
    ASSERT_TRUE(FileInfo::ReadSensorDir(L"", L"/", entries, L"", 0));
    EXPECT_EQ(ByName(entries).count(L".."), 0u);

    EXPECT_FALSE(FileInfo::ReadSensorDir(L"", W(dir.file("missing")), entries, L"", 0));
    EXPECT_EQ(FileInfo::LastError(), ENOENT);
    EXPECT_TRUE(entries.empty());
}

TEST(FileInfo, LocalFolderOperations) {
    TempDir dir;
    const std::wstring base = W(dir.path());
    EXPECT_TRUE(FileInfo::MkDir(base + L"/x"));
    EXPECT_FALSE(FileInfo::MkDir(base + L"/x"));
    EXPECT_EQ(FileInfo::LastError(), EEXIST);
    EXPECT_FALSE(FileInfo::MkDir(base + L"/no/parent"));
    EXPECT_EQ(FileInfo::LastError(), ENOENT);

    dir.createFile("x/f.txt", "data");
    EXPECT_TRUE(FileInfo::Rename(base + L"/x/f.txt", base + L"/x/g.txt"));
    EXPECT_TRUE(FileExists(dir.file("x/g.txt")));
    EXPECT_FALSE(FileInfo::Rename(base + L"/x/missing", base + L"/x/h"));
    EXPECT_EQ(FileInfo::LastError(), ENOENT);
    EXPECT_FALSE(FileInfo::Rename(base + L"/x/g.txt", L"@box:/g.txt")); // never across machines
    EXPECT_EQ(FileInfo::LastError(), 22);

    EXPECT_FALSE(FileInfo::RmDir(base + L"/x", false)); // not empty
    EXPECT_EQ(FileInfo::LastError(), ENOTEMPTY);
    EXPECT_FALSE(FileInfo::Delete(base + L"/x")); // a folder is not deleted as a file
    EXPECT_TRUE(FileInfo::Delete(base + L"/x/g.txt"));
    EXPECT_EQ(FileInfo::LastError(), 0);
    EXPECT_FALSE(FileInfo::Delete(base + L"/x/g.txt"));
    EXPECT_EQ(FileInfo::LastError(), ENOENT);
    EXPECT_TRUE(FileInfo::RmDir(base + L"/x", false));
    EXPECT_FALSE(FileExists(dir.file("x")));
    EXPECT_FALSE(FileInfo::MkDir(L""));
}

TEST(FileInfo, RecursiveRemovalNeverFollowsLinks) {
    TempDir dir;
    dir.createFile("outside/keep.txt", "precious");
    dir.createFile("tree/a/b/c.txt", "x");
    dir.createFile("tree/top.txt", "y");
    ASSERT_EQ(symlink(dir.file("outside").c_str(), dir.file("tree/a/link").c_str()), 0);
    ASSERT_EQ(symlink(dir.file("outside").c_str(), dir.file("dirlink").c_str()), 0);

    // A link to a folder is not a folder to remove.
    EXPECT_FALSE(FileInfo::RmDir(W(dir.file("dirlink")), true));
    EXPECT_EQ(FileInfo::LastError(), ENOTDIR);
    EXPECT_TRUE(FileExists(dir.file("outside/keep.txt")));

    EXPECT_TRUE(FileInfo::RmDir(W(dir.file("tree")), true));
    EXPECT_FALSE(FileExists(dir.file("tree")));
    EXPECT_EQ(ReadWholeFile(dir.file("outside/keep.txt")), "precious");
    EXPECT_FALSE(FileInfo::RmDir(W(dir.file("tree")), true));
    EXPECT_EQ(FileInfo::LastError(), ENOENT);
}

TEST(FileInfo, LocalFileInfoWithPreview) {
    TempDir dir;
    const std::wstring name = W(dir.createFile("m.mth", "0123456789"));
    FileInfo entry;
    char preview[32] = {};
    struct Row {
        int asked;
        int got;
    } rows[] = {{4, 4}, {32, 10}, {0, 0}};
    for (const auto& row : rows) {
        int size = row.asked;
        ASSERT_TRUE(FileInfo::GetFileInfo(name, &entry, preview, &size));
        EXPECT_EQ(size, row.got);
        EXPECT_EQ(std::string(preview, size), std::string("0123456789").substr(0, row.got));
    }
    EXPECT_EQ(entry.name, L"m.mth");
    EXPECT_EQ(entry.size, 10);
    EXPECT_TRUE(FileInfo::GetFileInfo(name, nullptr, nullptr, nullptr));

    int size = 8;
    ASSERT_TRUE(FileInfo::GetFileInfo(W(dir.path()), &entry, preview, &size));
    EXPECT_TRUE(entry.IsFolder());
    EXPECT_EQ(size, 0); // folders have no preview
    EXPECT_FALSE(FileInfo::GetFileInfo(W(dir.file("missing")), &entry, preview, &size));
    EXPECT_EQ(FileInfo::LastError(), ENOENT);
}

TEST(FileInfo, RemoteNamesGoToFactories) {
    std::vector<FileInfo> entries;
    std::wstring output;
    EXPECT_FALSE(FileInfo::MkDir(L"@box:/Data/new"));
    EXPECT_EQ(FileInfo::LastError(), 10057); // nobody serves remote names

    FakeFolderFactory factory;
    ASSERT_TRUE(FileInfo::ReadSensorDir(L"", L"@box:/Data", entries, L"*.mth", 1));
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(entries[0].name, L"remote.mth");
    ASSERT_TRUE(FileInfo::ReadSensorDir(L"box", L"/Method", entries, L"", 0));
    EXPECT_TRUE(FileInfo::MkDir(L"@box:/Data/new"));
    EXPECT_TRUE(FileInfo::Rename(L"@box:/a", L"@box:/b"));
    EXPECT_TRUE(FileInfo::RmDir(L"@box:/Data/old", true));
    EXPECT_TRUE(FileInfo::GetFileInfo(L"@box:/a.mth", nullptr, nullptr, nullptr));
    EXPECT_TRUE(FileInfo::RunCommand(L"@box:", L"status", output, 30000000));
    EXPECT_EQ(output, L"ran");
    EXPECT_TRUE(FileInfo::RunCommand(L"box", L"events", output, 0));
    EXPECT_EQ(FileInfo::LastError(), 0);

    // The back end's error and message become the thread's last error.
    EXPECT_FALSE(FileInfo::Delete(L"@box:/locked.mth"));
    EXPECT_EQ(FileInfo::LastError(), 1234);
    EXPECT_EQ(FileInfo::LastErrorText(), L"instrument says no");

    EXPECT_EQ(factory.log, (std::vector<std::wstring>{
                               L"list @box:/Data *.mth 1",
                               L"list /Method  0",
                               L"mkdir @box:/Data/new",
                               L"rename @box:/a @box:/b",
                               L"rmdir @box:/Data/old -r",
                               L"stat @box:/a.mth",
                               L"run status 30000000",
                               L"run events 0",
                               L"delete @box:/locked.mth",
                           }));
    EXPECT_EQ(std::count(factory.hosts.begin(), factory.hosts.end(), L"box"), 9);

    // An unserved host, a rename between hosts and a command without a host.
    EXPECT_FALSE(FileInfo::ReadSensorDir(L"", L"@elsewhere:/", entries, L"", 0));
    EXPECT_EQ(FileInfo::LastError(), 10057);
    EXPECT_FALSE(FileInfo::Rename(L"@box:/a", L"@other:/a"));
    EXPECT_EQ(FileInfo::LastError(), 22);
    EXPECT_FALSE(FileInfo::RunCommand(L"", L"status", output, 0));
    EXPECT_EQ(FileInfo::LastError(), 22);

    // A refusal the back end's own error does not carry: the other side's status and message.
    EXPECT_FALSE(FileInfo::MkDir(L"@box:/Data/taken"));
    EXPECT_EQ(FileInfo::LastError(), 17);
    EXPECT_EQ(FileInfo::LastErrorText(), L"already exists");

    // The last error belongs to the calling thread.
    int otherThreadError = -1;
    std::thread([&] { otherThreadError = FileInfo::LastError(); }).join();
    EXPECT_EQ(otherThreadError, 0);
}

TEST(FileInfo, CompareModifiedInWholeSeconds) {
    struct Case {
        const char* what;
        int64_t first, second;
        int expected;
    } cases[] = {
        {"first newer", 2'000'000'000, 1'000'000'000, -1},
        {"second newer", 1'000'000'000, 1'000'001'000'000, 1},
        {"same second, different microseconds", 1'700'000'000'900'000, 1'700'000'000'100'000, 0},
        {"first unknown", 0, 1'000'000'000, 0},
        {"second unknown", 1'000'000'000, 0, 0},
    };
    for (const Case& c : cases) {
        FileInfo first, second;
        first.times[2] = c.first;
        second.times[2] = c.second;
        EXPECT_EQ(CompareModified(first, second), c.expected) << c.what;
    }
}
