// SPDX-License-Identifier: Apache-2.0
#include "registry.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>
#include <vector>

TEST(Registry, RoundTripThroughFile) {
    TempDir dir;
    const std::string path = dir.path() + "/sub/vexa.ini"; // parent made on first save
    {
        CPXRegistry reg(path);
        EXPECT_FALSE(reg.GetString(L"NIOSH", L"Path").has_value());
        EXPECT_EQ(reg.GetInt(L"Tune", L"RemoveReportDays", 30), 30);
        ASSERT_TRUE(reg.SetString(L"NIOSH", L"Path", L"/opt/niosh/db \u00e4"));
        ASSERT_TRUE(reg.SetInt(L"Tune", L"RemoveReportDays", -7));
        ASSERT_TRUE(reg.SetString(L"FTP/HostMap", L"box", L"127.0.0.9"));
        ASSERT_TRUE(reg.SetString(L"Access", L"Levels", L"0,1"));
        ASSERT_TRUE(reg.SetString(L"Odd", L"Value", L"  \"quoted\" \\ ; # = \n two lines "));
        ASSERT_TRUE(reg.SetString(L"Odd", L"Empty", L""));
    }
    CPXRegistry reg(path);
    EXPECT_EQ(reg.GetString(L"NIOSH", L"Path", L""), L"/opt/niosh/db \u00e4");
    EXPECT_EQ(reg.GetInt(L"Tune", L"RemoveReportDays", 30), -7);
    EXPECT_EQ(reg.GetString(L"FTP/HostMap", L"box", L""), L"127.0.0.9");
    EXPECT_EQ(reg.GetString(L"FTP", L"HostMap/box", L""), L"127.0.0.9"); // the same value
    EXPECT_EQ(reg.GetString(L"Access", L"Levels", L""), L"0,1");
    EXPECT_EQ(reg.GetString(L"Odd", L"Value", L""), L"  \"quoted\" \\ ; # = \n two lines ");
    EXPECT_EQ(reg.GetString(L"Odd", L"Empty", L"x"), L"");
    EXPECT_EQ(reg.GetInt(L"NIOSH", L"Path", 5), 5); // not a number

    EXPECT_TRUE(reg.Remove(L"Odd", L"Value"));
    EXPECT_TRUE(reg.Remove(L"Odd", L"Missing"));
    CPXRegistry again(path);
    EXPECT_FALSE(again.GetString(L"Odd", L"Value").has_value());

    // Saving leaves no temporary files behind.
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(dir.path() + "/sub"))
        files += entry.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 1);
}

TEST(Registry, ReadsHandWrittenAndQSettingsStyle) {
    TempDir dir;
    const std::string path = dir.createFile("v.ini", "\xEF\xBB\xBF; comment\n"
                                                     "[General]\n"
                                                     "top = 1\n"
                                                     "[FTP]\n"
                                                     "HostMap\\box=10.1.1.1\r\n"
                                                     "[Tune]\n"
                                                     "MarginUnit=\"mm, inches\"\n"
                                                     "broken line\n"
                                                     "=novalue\n");
    CPXRegistry reg(path);
    EXPECT_EQ(reg.GetString(L"", L"top", L""), L"1");
    EXPECT_EQ(reg.GetString(L"FTP/HostMap", L"box", L""), L"10.1.1.1");
    EXPECT_EQ(reg.GetString(L"Tune", L"MarginUnit", L""), L"mm, inches");
}

TEST(Registry, WritesKeepOtherWritersValuesAndAreThreadSafe) {
    TempDir dir;
    const std::string path = dir.file("v.ini");
    CPXRegistry a(path);
    CPXRegistry b(path);
    ASSERT_TRUE(a.SetString(L"S", L"fromA", L"1"));
    ASSERT_TRUE(b.SetString(L"S", L"fromB", L"2")); // b reads a's value before saving
    a.Reload();
    EXPECT_EQ(a.GetString(L"S", L"fromA", L""), L"1");
    EXPECT_EQ(a.GetString(L"S", L"fromB", L""), L"2");

    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&a, t] {
            for (int i = 0; i < 20; ++i)
                a.SetInt(L"T" + std::to_wstring(t), L"k" + std::to_wstring(i), i);
        });
    }
    for (auto& thread : threads)
        thread.join();
    CPXRegistry check(path);
    for (int t = 0; t < 4; ++t)
        for (int i = 0; i < 20; ++i)
            EXPECT_EQ(check.GetInt(L"T" + std::to_wstring(t), L"k" + std::to_wstring(i), -1), i);
}

TEST(Registry, RefusesKeysThatCannotBeStored) {
    TempDir dir;
    CPXRegistry reg(dir.file("v.ini"));
    EXPECT_FALSE(reg.SetString(L"S", L"", L"x"));
    EXPECT_FALSE(reg.SetString(L"S", L"a=b", L"x"));
    EXPECT_FALSE(reg.SetString(L"S]", L"a", L"x"));
    EXPECT_FALSE(reg.SetString(L"S", L"line\nbreak", L"x"));
}

TEST(Registry, InstanceFollowsEnvironment) {
    TempDir dir;
    const std::string one = dir.file("one.ini");
    const std::string two = dir.file("two.ini");
    setenv("VEXA_SETTINGS", one.c_str(), 1);
    EXPECT_EQ(CPXRegistry::Instance().Path(), one);
    setenv("VEXA_SETTINGS", two.c_str(), 1);
    EXPECT_EQ(CPXRegistry::Instance().Path(), two);
    unsetenv("VEXA_SETTINGS");
    setenv("XDG_CONFIG_HOME", dir.path().c_str(), 1);
    EXPECT_EQ(CPXRegistry::Instance().Path(), dir.path() + "/VexaSuite/vexa.ini");
    unsetenv("XDG_CONFIG_HOME");
}
