// SPDX-License-Identifier: Apache-2.0
// The dialog's helpers without a window: file kinds, instrument paths, the editor's line ends, the
// replay command and the file description.
#include "vexafiledescription.h"
#include "vexafilekinds.h"
#include "vexaicons.h"
#include "vexatextfile.h"

#include <gtest/gtest.h>

#include <QImage>

#include <ctime>

TEST(FileManagerHelpers, TextAndConfigurationFilesByName) {
    struct Case {
        const wchar_t* name;
        bool text;
        bool replay;
    };
    const Case cases[] = {
        {L"hosts", true, false},          {L"HOSTS", true, false},        {L".config.level", true, false},
        {L".config.fp", true, false},     {L"ip.addresses", true, false}, {L"timezone", true, false},
        {L"hostname", true, false},       {L"notes.TXT", true, false},    {L"Site.xmth", true, false},
        {L"list.mru", true, false},       {L"table.csv", true, false},    {L"table.tab", true, false},
        {L"hosts.bak", false, false},     {L"my.hosts", false, false},    {L"Default.mth", false, false},
        {L"run1.vxs", false, true},       {L"RUN1.VXS", false, true},     {L"run1.vxsu", false, false},
        {L"Survey001.vxz", false, false}, {L"vxs", false, false},         {L"", false, false},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(IsVexaTextOrConfigFile(c.name), c.text) << testing::PrintToString(std::wstring(c.name));
        EXPECT_EQ(IsVexaReplayFile(c.name), c.replay) << testing::PrintToString(std::wstring(c.name));
    }
}

TEST(FileManagerHelpers, InstrumentPathsResolveDotsWithoutLeavingTheRoot) {
    struct Case {
        const wchar_t* folder;
        const wchar_t* name;
        const wchar_t* joined;
    };
    const Case cases[] = {
        {L"/", L"", L"/"},          {L"/", L"..", L"/"},          {L"/Data", L"..", L"/"},
        {L"/Data/..", L"", L"/"},   {L"/a/b", L"..", L"/a"},      {L"/a/./b/", L"c", L"/a/b/c"},
        {L"/a", L"../../..", L"/"}, {L"", L"Method", L"/Method"}, {L"//Data//", L"x", L"/Data/x"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(JoinInstrumentPath(c.folder, c.name), c.joined)
            << testing::PrintToString(std::wstring(c.folder)) << " + "
            << testing::PrintToString(std::wstring(c.name));
}

TEST(FileManagerHelpers, EditorLineEndsBothWays) {
    EXPECT_EQ(ToEditorText("a\nb\n"), L"a\r\nb\r\n");
    EXPECT_EQ(ToEditorText(""), L"");
    EXPECT_EQ(ToEditorText("\xc3\xa9t\xc3\xa9\n"), L"\u00e9t\u00e9\r\n");
    EXPECT_EQ(FromEditorText(L"a\r\nb\r\n"), "a\nb\n");
    EXPECT_EQ(FromEditorText(L"lone\rcr"), "lonecr");
    EXPECT_EQ(FromEditorText(ToEditorText("x\ny\n")), "x\ny\n");
}

TEST(FileManagerHelpers, ReplayCommandQuotesThePathAndStaysWithinTheLimit) {
    EXPECT_EQ(BuildReplayCommand(L"/Data/run1.vxs", 10), L"\"/Data/run1.vxs\" -speed=10");
    EXPECT_EQ(BuildReplayCommand(L"/Data/a b.vxs", 1), L"\"/Data/a b.vxs\" -speed=1");
    EXPECT_EQ(BuildReplayCommand(std::wstring(2000, L'x'), 20).size(), 1024u);
}

TEST(FileManagerHelpers, DescriptionNamesTheFileItsKindAndTime) {
    std::tm parts{};
    parts.tm_year = 2026 - 1900;
    parts.tm_mon = 10;
    parts.tm_mday = 21;
    parts.tm_hour = 13;
    parts.tm_min = 5;
    parts.tm_isdst = -1;
    const int64_t time = static_cast<int64_t>(std::mktime(&parts)) * 1000000;
    EXPECT_EQ(VexaBuildFileDescription(L"run1.vxs", time),
              L"run1.vxs \x2014 VEXARON Data File \x2014 2026-11-21 13:05");
    EXPECT_EQ(VexaBuildFileDescription(L"Survey001.vxz", 0),
              L"Survey001.vxz \x2014 VEXARON Compressed Data File");
    EXPECT_EQ(VexaFileKindText(L"Default.mth"), L"VEXARON Method");
    EXPECT_EQ(VexaFileKindText(L"hosts"), L"Text or configuration file");
    EXPECT_EQ(VexaFileKindText(L"picture.png"), L"File");
}

// The file manager's two button icons and the ten tools' icons, each drawn at both sizes it is shown in.
TEST(FileManagerHelpers, EveryIconIsDrawnAtSixteenAndThirtyTwoPixels) {
    for (int id : {1705, 1706, 1707, 1708, 1709, 1711, 1714, 1715, 1716, 1721, 1722, 1723}) {
        const QIcon icon = VexaIcon(id);
        ASSERT_FALSE(icon.isNull()) << id;
        const QList<QSize> sizes = icon.availableSizes();
        EXPECT_TRUE(sizes.contains(QSize(16, 16))) << id;
        EXPECT_TRUE(sizes.contains(QSize(32, 32))) << id;
        // Not an empty frame: some pixels are opaque.
        const QImage image = icon.pixmap(QSize(32, 32)).toImage();
        int opaque = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                opaque += qAlpha(image.pixel(x, y)) > 200;
        EXPECT_GT(opaque, 100) << id;
    }
    EXPECT_TRUE(VexaIcon(1710).isNull());
}
