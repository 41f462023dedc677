// SPDX-License-Identifier: Apache-2.0
#include "moduledir.h"
#include "paths.h"
#include "registry.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>

TEST(Paths, RootDirFromEnvironmentSettingOrDefault) {
    TempDir dir;
    setenv("VEXA_SETTINGS", dir.file("v.ini").c_str(), 1);
    setenv("VEXA_DATA_ROOT", "/srv/vexa/", 1);
    EXPECT_EQ(PXGetRootDir(), L"/srv/vexa");
    unsetenv("VEXA_DATA_ROOT");
    setenv("XDG_DATA_HOME", "/xdg/data", 1);
    EXPECT_EQ(PXGetRootDir(), L"/xdg/data/VexaSuite");
    ASSERT_TRUE(CPXRegistry::Instance().SetString(L"Paths", L"DataRoot", L"/from/setting"));
    EXPECT_EQ(PXGetRootDir(), L"/from/setting");
    unsetenv("XDG_DATA_HOME");
    unsetenv("VEXA_SETTINGS");
}

TEST(Paths, FoldersAndAccess) {
    TempDir dir;
    const std::wstring base(dir.path().begin(), dir.path().end());
    const std::wstring deep = base + L"/a/b/c";
    EXPECT_FALSE(IsDirectory(deep));
    EXPECT_TRUE(FullDirCreate(deep));
    EXPECT_TRUE(FullDirCreate(deep)); // already there
    EXPECT_TRUE(IsDirectory(deep));
    EXPECT_TRUE(PathAccessible(deep, 6));
    EXPECT_TRUE(PathAccessible(deep, 0));
    EXPECT_FALSE(PathAccessible(base + L"/missing", 0));
    EXPECT_FALSE(FullDirCreate(L""));

    const std::string narrowFile = dir.createFile("f.txt", "x");
    const std::wstring file(narrowFile.begin(), narrowFile.end());
    EXPECT_FALSE(IsDirectory(file));
    EXPECT_FALSE(FullDirCreate(file + L"/sub")); // a file is in the way
}

TEST(Paths, FullPathNormalises) {
    EXPECT_EQ(GetFullPath(L"/a/./b/../c/"), L"/a/c");
    EXPECT_EQ(GetFullPath(L"/"), L"/");
    EXPECT_EQ(GetFullPath(L"/.."), L"/");
    const std::wstring cwd = GetFullPath(L".");
    EXPECT_EQ(GetFullPath(L"x/../y"), cwd == L"/" ? L"/y" : cwd + L"/y");
    EXPECT_EQ(cwd, std::filesystem::current_path().wstring());
    const std::wstring exeDir = PXGetExeDir();
    EXPECT_TRUE(IsDirectory(exeDir));
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(exeDir) / "hostcore_settings_test"));
}

TEST(Paths, ModuleDirIsTheModulesOwnFolder) {
    const std::wstring exeDir = PXGetExeDir();
    static const char inProgram = 0;
    EXPECT_EQ(PXGetModuleDir(&inProgram), exeDir);
#ifndef _WIN32
    const std::wstring libcDir = PXGetModuleDir(reinterpret_cast<const void*>(&std::strlen));
    EXPECT_NE(libcDir, exeDir);
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(libcDir) / "libc.so.6"));
#endif
}
