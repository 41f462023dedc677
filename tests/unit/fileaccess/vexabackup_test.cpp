// SPDX-License-Identifier: Apache-2.0
// The backup's argument and the reading of sensor notifications, without a window.
#include "sensorevent.h"
#include "vexabackup.h"

#include <gtest/gtest.h>

using VexaBackup::Notification;

TEST(VexaBackup, ItemArgumentNamesEachEntryWithTheHostOrABackslash) {
    struct Case {
        const wchar_t* host;
        const wchar_t* folder;
        std::vector<std::wstring> names;
        const wchar_t* argument;
    };
    const Case cases[] = {
        {L"h", L"/data/", {L"a.txt", L"b"}, L"@h:/data/a.txt @h:/data/b"},
        {L"h", L"/data", {L"a.txt"}, L"@h:/data/a.txt"},
        {L"h", L"/", {L"Data"}, L"@h:/Data"},
        {L"10.0.0.5", L"/Data/Sub//\\", {L"run 1.vxs"}, L"\"@10.0.0.5:/Data/Sub/run 1.vxs\""},
        {L"h",
         L"/d",
         {L"say \"hi\"", L"tab\there", L"plain"},
         L"\"@h:/d/say \\\"hi\\\"\" \"@h:/d/tab\there\" @h:/d/plain"},
        {L"", L"/d", {L"run 1.vxs"}, L"\"/d\\run 1.vxs\""},
        {L"", L"/data/", {L"a.txt", L"b"}, L"/data\\a.txt /data\\b"},
        {L"", L"C:\\Work\\", {L"x"}, L"C:\\Work\\x"},
        {L"h", L"/data", {}, L""},
    };
    for (const Case& c : cases)
        EXPECT_EQ(VexaBackup::ItemArgument(c.host, c.folder, c.names), c.argument) << c.argument;
}

TEST(VexaBackup, OnlyABackupNotificationNamingAnArchiveFetchesIt) {
    struct Case {
        uint32_t code;
        const wchar_t* text;
        Notification expected;
    };
    const Case cases[] = {
        {0, L"x_backup.tgz", Notification::Ignore},
        {kSensorEventOffline, L"10054", Notification::StateChange},
        {kSensorEventOnline, L"", Notification::StateChange},
        {kSensorEventBackup, L"aborted", Notification::Refresh},
        {kSensorEventBackup, L"backup.tgz", Notification::Refresh},
        {kSensorEventBackup, L"", Notification::Refresh},
        {kSensorEventBackup, L"x_backup.tgz", Notification::ArchiveReady},
        {kSensorEventBackup, L"/Backup/vexaron-0427_backup.tgz", Notification::ArchiveReady},
        {0x100132, L"x_backup.tgz", Notification::Refresh},
    };
    for (const Case& c : cases)
        EXPECT_EQ(VexaBackup::Classify(c.code, c.text), c.expected)
            << c.code << " " << testing::PrintToString(std::wstring(c.text));
}
