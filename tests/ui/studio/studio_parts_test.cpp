// SPDX-License-Identifier: Apache-2.0
// The studio's small parts on their own: its command line, the tools' key bindings, the saved list,
// notifications in words and the log.
#include "eventwords.h"
#include "instrumentstore.h"
#include "logpane.h"
#include "registry.h"
#include "studiooptions.h"
#include "tempdir.h"
#include "toolshortcut.h"

#include <gtest/gtest.h>

#include <QTreeWidget>

TEST(StudioOptionsTest, ReadsPluginsAndRepeatedInstruments) {
    struct Case {
        QStringList arguments;
        StudioOptions::Outcome outcome;
        QString pluginDir;
        QStringList instruments;
        const char* problem;
    };
    using Outcome = StudioOptions::Outcome;
    const Case cases[] = {
        {{"vexa-studio"}, Outcome::Run, "", {}, ""},
        {{"vexa-studio", "--plugins", "/opt/p"}, Outcome::Run, "/opt/p", {}, ""},
        {{"vexa-studio", "--instrument", "127.0.0.1", "--instrument=vexa-2"},
         Outcome::Run,
         "",
         {"127.0.0.1", "vexa-2"},
         ""},
        {{"vexa-studio", "--help"}, Outcome::Help, "", {}, ""},
        {{"vexa-studio", "--instrument"}, Outcome::Error, "", {}, "Missing value after '--instrument'"},
        {{"vexa-studio", "--instrument", " "}, Outcome::Error, "", {}, "--instrument needs an address"},
        {{"vexa-studio", "--bogus"}, Outcome::Error, "", {}, "Unknown option 'bogus'"},
        {{"vexa-studio", "127.0.0.1"}, Outcome::Error, "", {}, "Unexpected argument: 127.0.0.1"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        StudioOptions options;
        QString problem;
        EXPECT_EQ(options.Parse(c.arguments, &problem), c.outcome);
        EXPECT_TRUE(problem.contains(c.problem)) << problem.toStdString();
        if (c.outcome == Outcome::Run) {
            EXPECT_EQ(options.pluginDir, c.pluginDir);
            EXPECT_EQ(options.instruments, c.instruments);
        }
    }
}

TEST(StudioOptionsTest, DefaultPluginDirPrefersTheBuildFoldersPlugins) {
    TempDir temp;
    const QString bin = QString::fromStdString(temp.createDir("bin"));
    const QString root = QString::fromStdString(temp.path());
    EXPECT_EQ(DefaultPluginDir(bin), root + "/lib/vexa-studio/plugins");
    temp.createDir("bin/plugins");
    EXPECT_EQ(DefaultPluginDir(bin), bin + "/plugins");
}

TEST(ToolKeySequenceTest, MapsVirtualKeysAndModifiers) {
    struct Case {
        int key, modifier;
        const char* expected;
    };
    const Case cases[] = {
        {0x77, -1, "F8"},        {0x77, 0x10, "Shift+F8"}, {0x70, 0x11, "Ctrl+F1"},
        {0x87, 0x12, "Alt+F24"}, {'A', 0x11, "Ctrl+A"},    {'7', -1, "7"},
        {0x2E, -1, "Del"},       {-1, 0x10, ""},           {0x88, -1, ""}, // beyond F24
        {0x05, -1, ""},                                                    // a mouse button's code
    };
    for (const Case& c : cases)
        EXPECT_EQ(ToolKeySequence(c.key, c.modifier).toString(), c.expected) << std::hex << c.key;
}

TEST(InstrumentStoreTest, SkipsEntriesWithoutAddressAndShrinks) {
    TempDir temp;
    CPXRegistry registry(temp.file("vexa.ini"));
    InstrumentStore store(registry);
    ASSERT_TRUE(
        store.Save({{"A", "127.0.0.1", "VEXA"}, {"B, with comma", "10.0.0.2", "VEXA"}, {"C", "c", "X"}}));
    // Hand edits: an entry loses its address, another its name and type.
    registry.SetString(L"Instruments/0", L"Address", L"  ");
    registry.Remove(L"Instruments/2", L"Name");
    registry.Remove(L"Instruments/2", L"Type");
    const QList<InstrumentConfig> loaded = store.Load();
    ASSERT_EQ(loaded.size(), 2);
    EXPECT_EQ(loaded[0], (InstrumentConfig{"B, with comma", "10.0.0.2", "VEXA"}));
    EXPECT_EQ(loaded[1], (InstrumentConfig{"c", "c", "VEXA"}));

    ASSERT_TRUE(store.Save({{"Only", "127.0.0.5", "VEXA"}}));
    EXPECT_EQ(store.Load(), (QList<InstrumentConfig>{{"Only", "127.0.0.5", "VEXA"}}));
    EXPECT_FALSE(registry.GetString(L"Instruments/1", L"Address").has_value());
    EXPECT_FALSE(registry.GetString(L"Instruments/2", L"Name").has_value());
}

TEST(EventWordsTest, NamesNotificationsAndKeepsTheNumberAsDetail) {
    struct Case {
        quint32 code;
        const char* text;
        const char* words;
        const char* detail;
    };
    const Case cases[] = {
        {1048882, "method finished /Data/Run008.vxs", "method finished: /Data/Run008.vxs",
         "event 1048882 (0x100132)"},
        {1048882, "method stopped /Data/Run009.vxs", "method stopped: /Data/Run009.vxs",
         "event 1048882 (0x100132)"},
        {1048882, "method finished", "method finished", "event 1048882 (0x100132)"},
        {1048882, "", "method finished", "event 1048882 (0x100132)"},
        {1048881, "/Backup/x_backup.tgz", "backup ready: /Backup/x_backup.tgz", "event 1048881 (0x100131)"},
        {1048881, "aborted", "backup aborted", "event 1048881 (0x100131)"},
        {6, "", "link on line", "event 6"},
        {2, "10060", "link off line (10060)", "event 2"},
        {1048900, "door open", "notification: door open", "event 1048900 (0x100144)"},
    };
    for (const Case& c : cases) {
        const EventWords words = DescribeSensorEvent(c.code, c.text);
        EXPECT_EQ(words.text, c.words) << c.text;
        EXPECT_EQ(words.detail, c.detail) << c.code;
    }
}

TEST(LogPaneTest, KeepsDetailsApartSavesAndClears) {
    TempDir temp;
    LogPane log;
    log.Append("VEXA-1 is on line.");
    log.AppendWithDetail("VEXA-1: method finished: /Data/Run008.vxs", "event 1048882 (0x100132)");
    ASSERT_EQ(log.LineCount(), 2);
    EXPECT_EQ(log.Detail(0), "");
    EXPECT_EQ(log.Detail(1), "event 1048882 (0x100132)");
    EXPECT_TRUE(log.Lines()->topLevelItem(1)->toolTip(1).contains("1048882"));
    const QString path = QString::fromStdString(temp.file("studio.log"));
    QString error;
    ASSERT_TRUE(log.SaveTo(path, &error)) << error.toStdString();
    const QString saved = QString::fromStdString(ReadWholeFile(path.toStdString()));
    EXPECT_TRUE(saved.contains("  VEXA-1: method finished: /Data/Run008.vxs  [event 1048882 (0x100132)]\n"));
    EXPECT_EQ(saved.count('\n'), 2);
    EXPECT_FALSE(log.SaveTo(QString::fromStdString(temp.file("no/such/folder/x.log")), &error));
    EXPECT_TRUE(error.startsWith("error 2")) << error.toStdString();
    log.Clear();
    EXPECT_EQ(log.LineCount(), 0);
}
