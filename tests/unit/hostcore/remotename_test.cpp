// SPDX-License-Identifier: Apache-2.0
#include "filetype.h"
#include "registry.h"
#include "remotename.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(RemoteName, ParseFilenameSplits) {
    struct Row {
        std::wstring name;
        bool remote;
        std::wstring folder, file, host;
    } rows[] = {
        {L"@10.0.0.5:/Data/run1.vxs", true, L"/Data", L"run1.vxs", L"10.0.0.5"},
        {L"@h:/x", true, L"/", L"x", L"h"},
        {L"@h:/", true, L"/", L"", L"h"},
        {L"@h:", true, L"", L"", L"h"},
        {L"@h:run.vxs", true, L"", L"run.vxs", L"h"},
        {L"@h:/Data/", true, L"/Data", L"", L"h"},
        {L"@h:/a/b/c d.mth", true, L"/a/b", L"c d.mth", L"h"},
        {L"@:/x", true, L"/", L"x", L""},
        {L"/home/u/a.mth", false, L"/home/u", L"a.mth", L""},
        {L"/a.mth", false, L"/", L"a.mth", L""},
        {L"a.mth", false, L"", L"a.mth", L""},
        {L"", false, L"", L"", L""},
    };
    for (const auto& row : rows) {
        std::wstring folder = L"?", file = L"?", host = L"?";
        EXPECT_EQ(ParseFilename(row.name, &folder, &file, &host), row.remote)
            << testing::PrintToString(row.name);
        EXPECT_EQ(folder, row.folder) << testing::PrintToString(row.name);
        EXPECT_EQ(file, row.file) << testing::PrintToString(row.name);
        EXPECT_EQ(host, row.host) << testing::PrintToString(row.name);
        EXPECT_EQ(LastPathPart(row.name), row.file) << testing::PrintToString(row.name);
        EXPECT_EQ(FolderOfPath(row.name), row.folder) << testing::PrintToString(row.name);
        // Joining the parts gives the name back.
        EXPECT_EQ(MakeFilename(folder, file, host),
                  row.remote && row.host.empty() ? row.name.substr(2) : row.name)
            << testing::PrintToString(row.name);
    }
    // Outputs may be null.
    EXPECT_TRUE(ParseFilename(L"@h:/x", nullptr, nullptr, nullptr));
}

TEST(RemoteName, SplitAndIsRemote) {
    std::wstring host, path;
    EXPECT_TRUE(SplitRemoteName(L"@box:/Method/a.mth", &host, &path));
    EXPECT_EQ(host, L"box");
    EXPECT_EQ(path, L"/Method/a.mth");
    EXPECT_FALSE(SplitRemoteName(L"@nocolon", &host, &path));
    EXPECT_FALSE(SplitRemoteName(L"/local:file", &host, &path));
    EXPECT_TRUE(IsRemoteFilename(L"@x"));
    EXPECT_FALSE(IsRemoteFilename(L"x@y:/z"));
    EXPECT_FALSE(IsRemoteFilename(L""));
}

TEST(RemoteName, MakeFilenameAndJoinPath) {
    EXPECT_EQ(MakeFilename(L"/Data", L"run.vxs", L"h"), L"@h:/Data/run.vxs");
    EXPECT_EQ(MakeFilename(L"/Data/", L"run.vxs", L"h"), L"@h:/Data/run.vxs");
    EXPECT_EQ(MakeFilename(L"/", L"run.vxs", L"h"), L"@h:/run.vxs");
    EXPECT_EQ(MakeFilename(L"", L"run.vxs", L"h"), L"@h:run.vxs");
    EXPECT_EQ(MakeFilename(L"/Data", L"/run.vxs", L""), L"/Data/run.vxs");
    EXPECT_EQ(JoinPath(L"a", L"b", L'/'), L"a/b");
    EXPECT_EQ(JoinPath(L"a/", L"/b", L'/'), L"a/b");
    EXPECT_EQ(JoinPath(L"", L"b", L'/'), L"b");
    EXPECT_EQ(JoinPath(L"a", L"", L'/'), L"a");
    EXPECT_EQ(JoinPath(L"C:\\x", L"y", L'\\'), L"C:\\x\\y");
}

TEST(RemoteName, OnlyPlainNamesJoinOntoAFolder) {
    for (const wchar_t* plain : {L"run.vxs", L"RUN.VXS", L"...", L"..x", L"a b", L".hidden", L"@h:x"})
        EXPECT_TRUE(IsPlainEntryName(plain)) << plain;
    for (const std::wstring& path : std::initializer_list<std::wstring>{
             L"", L".", L"..", L"../x", L"a/b", L"/abs", L"a\\b", L"dir/", std::wstring(L"a\0b", 3)})
        EXPECT_FALSE(IsPlainEntryName(path)) << path.size();
}

TEST(RemoteName, TrailingSlashesAndFileTypes) {
    EXPECT_EQ(WithoutTrailingSlash(L"/Data//"), L"/Data");
    EXPECT_EQ(WithoutTrailingSlash(L"/"), L"/");
    EXPECT_EQ(WithoutTrailingSlash(L"//"), L"/");
    EXPECT_EQ(WithoutTrailingSlash(L"a"), L"a");
    EXPECT_EQ(WithoutTrailingSlash(L""), L"");
    // Only the last part's dot counts.
    EXPECT_EQ(GetFileType(L"@h:/Data/Run1.VXS"), L"VXS");
    EXPECT_EQ(GetFileType(L"/a.b/run"), L"");
    EXPECT_EQ(GetFileType(L"archive.tar.gz"), L"gz");
    EXPECT_EQ(GetFileType(L"/Data/ends."), L"");
}

TEST(RemoteName, ActualHostFromSettings) {
    TempDir dir;
    const std::string settings = dir.file("vexa.ini");
    setenv("VEXA_SETTINGS", settings.c_str(), 1);
    EXPECT_EQ(get_actual_host(L"box"), L"box");
    ASSERT_TRUE(CPXRegistry::Instance().SetString(L"FTP/HostMap", L"box", L"127.0.0.9"));
    EXPECT_EQ(get_actual_host(L"box"), L"127.0.0.9");
    EXPECT_EQ(get_actual_host(L"other"), L"other");
    EXPECT_EQ(get_actual_host(L""), L"");
    unsetenv("VEXA_SETTINGS");
}
