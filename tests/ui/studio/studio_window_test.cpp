// SPDX-License-Identifier: Apache-2.0
// The studio window with the built module: the sensor type's tools, a simulator on line with its
// status sections, an instrument that cannot be reached, and a plug-in folder without modules.
#include "studiofixture.h"

#include "demotree.h"
#include "hostresource.h"
#include "instrumentlistmodel.h"
#include "instrumentstore.h"
#include "loopback.h"
#include "loopbackpeer.h"
#include "managedinstrument.h"
#include "scriptedprompt.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "simulator.h"
#include "statuspanel.h"
#include "toollist.h"
#include "winsockerror.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTableView>
#include <QTimer>
#include <QTreeWidget>

namespace {
QString StateCell(StudioWindow& window, int row) {
    return window.InstrumentTable()->model()->index(row, InstrumentListModel::kColumnState).data().toString();
}
} // namespace

TEST_F(StudioTest, ListsTheModulesTenToolsWithKeys) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    EXPECT_TRUE(window.Banner()->isHidden()) << window.Banner()->text().toStdString();
    EXPECT_TRUE(LogText().contains("Loaded VexaSens.sdll: sensor type VEXA")) << LogText().toStdString();

    struct Row {
        const char* name;
        const char* key;
    };
    const Row expected[] = {
        {"Data Review", ""},   {"Run Method", ""},   {"NIST", "F8"},        {"Safety DB", ""},
        {"AMDIS", "Shift+F8"}, {"Manage Files", ""}, {"Method Editor", ""}, {"Service Module", ""},
        {"Status", ""},        {"Tune", ""},
    };
    ToolListWidget* tools = window.Tools();
    ASSERT_EQ(tools->ToolCount(), static_cast<int>(std::size(expected)));
    for (int i = 0; i < tools->ToolCount(); ++i) {
        EXPECT_EQ(tools->ToolName(i), expected[i].name);
        EXPECT_EQ(tools->ToolKeys(i), expected[i].key) << expected[i].name;
        EXPECT_FALSE(tools->ToolDescription(i).isEmpty()) << "description of " << expected[i].name;
        EXPECT_FALSE(tools->ToolIcon(i).isNull()) << "icon of " << expected[i].name;
    }
    EXPECT_EQ(tools->ToolDescription(2), "Starts the NIST program (F8)");

    QStringList bound;
    for (const QShortcut* shortcut : window.Tools()->Shortcuts())
        bound << shortcut->key().toString();
    EXPECT_EQ(bound, QStringList({"F8", "Shift+F8"}));
}

TEST_F(StudioTest, SimulatorGoesOnLineAndShowsItsStatusSections) {
    SimulatorProcess simulator(CopyDemoTree(m_temp.file("demo")));
    const QString address = QString::fromStdString(simulator.address());
    StudioWindow& window = StartStudio(BuiltPluginDir(), {address});

    ASSERT_EQ(window.Sensors().Count(), 1);
    ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    EXPECT_EQ(StateCell(window, 0), "On line");
    EXPECT_EQ(window.OnlineButton()->text(), "Go off line");
    EXPECT_TRUE(LogText().contains(address + " is on line.")) << LogText().toStdString();
    EXPECT_TRUE(
        window.Sensors().Validate({"Other", address, "VEXA"}).text.contains("already has the address"));
    // Notifications are told in words, their numbers kept as the detail.
    EXPECT_TRUE(WaitFor([&] { return LogText().contains(": link on line  [event 6]"); }))
        << LogText().toStdString();

    // The status is polled by the timer; wait until a reading has come in.
    QTreeWidget* tree = window.Status()->Tree();
    ASSERT_TRUE(WaitFor([&] {
        return tree->topLevelItemCount() == 3 && tree->topLevelItem(0)->childCount() == 5 &&
               !tree->topLevelItem(0)->child(0)->text(1).isEmpty();
    })) << window.Status()->PlaceholderText().toStdString();
    EXPECT_TRUE(window.Status()->PlaceholderText().isEmpty());
    EXPECT_EQ(tree->topLevelItem(0)->text(0), "Current Pressures");
    EXPECT_EQ(tree->topLevelItem(1)->text(0), "Current Temperatures (C)");
    EXPECT_EQ(tree->topLevelItem(2)->text(0), "Sample Input Device");
    EXPECT_EQ(tree->topLevelItem(0)->child(0)->text(0), "IS Supply (kPa):");
    EXPECT_EQ(tree->topLevelItem(1)->childCount(), 11);
    EXPECT_GE(tree->topLevelItem(2)->childCount(), 1);
    EXPECT_EQ(tree->topLevelItem(2)->child(0)->text(0), "Type:");

    // A new name keeps the connection; a new address makes a new sensor, taken on line again.
    ISensorObject* sensor = Instrument(0).Sensor();
    ASSERT_TRUE(window.Sensors().Replace(0, {"Bench", address, "VEXA"}));
    EXPECT_EQ(Instrument(0).Sensor(), sensor);
    EXPECT_EQ(sensor->GetName(), L"Bench");
    EXPECT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online);

    // The run's instrument is not saved.
    EXPECT_TRUE(window.Sensors().SavedConfigs().isEmpty());
    EXPECT_TRUE(InstrumentStore(m_registry).Load().isEmpty());

    // Off line by the operator: no error, the panel says so.
    window.OnlineButton()->click();
    EXPECT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Offline);
    EXPECT_EQ(StateCell(window, 0), "Off line");
    EXPECT_TRUE(window.Status()->PlaceholderText().contains("off line"));
    EXPECT_TRUE(WaitFor([&] { return LogText().contains(": link off line  [event 2]"); }));
    EXPECT_FALSE(LogText().contains("stopped answering")) << LogText().toStdString();

    // The instrument goes away while on line: the drop is noticed, reported with its error and retried.
    window.OnlineButton()->click();
    ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    simulator.stop();
    EXPECT_TRUE(WaitFor([&] { return Instrument(0).GetState() == ManagedInstrument::State::Reconnecting; }))
        << LogText().toStdString();
    EXPECT_TRUE(WaitFor([&] { return LogText().contains("stopped answering at"); }))
        << LogText().toStdString();
}

TEST_F(StudioTest, UnreachableInstrumentShowsOffLineWithTheErrorNumber) {
    const QString address = QString::fromStdString(FreshLoopbackAddress());
    StudioWindow& window = StartStudio(BuiltPluginDir(), {address});

    ASSERT_EQ(window.Sensors().Count(), 1);
    EXPECT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Offline);
    const int error = Instrument(0).LastError();
    ASSERT_NE(error, 0);
    const QString described = QString::fromStdWString(DescribeError(error));
    EXPECT_TRUE(described.contains('(')) << "the error has a meaning: " << described.toStdString();
    EXPECT_EQ(StateCell(window, 0), "Off line: error " + described);
    EXPECT_TRUE(LogText().contains(address + " could not be taken on line: error " + described))
        << LogText().toStdString();
    EXPECT_EQ(window.OnlineButton()->text(), "Go on line");
    EXPECT_TRUE(window.OnlineButton()->isEnabled());
}

TEST_F(StudioTest, PluginFolderWithoutUsableModulesSaysSo) {
    struct Case {
        const char* name;
        const char* moduleFile; // null: no folder at all; empty: an empty folder
        const char* says;
    };
    for (const Case& c : {Case{"empty", "", "No sensor modules (*.sdll) were found in"},
                          Case{"missing", nullptr, "does not exist"},
                          Case{"broken", "Broken.sdll", "could be loaded: Broken.sdll: "}}) {
        SCOPED_TRACE(c.name);
        std::string folder = m_temp.file(c.name);
        if (c.moduleFile)
            folder = m_temp.createDir(c.name);
        if (c.moduleFile && *c.moduleFile)
            m_temp.createFile(std::string(c.name) + "/" + c.moduleFile, "not a loadable module");
        StudioWindow& window = StartStudio(QString::fromStdString(folder));
        EXPECT_FALSE(window.Banner()->isHidden());
        EXPECT_TRUE(window.Banner()->text().contains(c.says)) << window.Banner()->text().toStdString();
        EXPECT_TRUE(window.Banner()->text().contains(QString::fromStdString(folder)));
        EXPECT_TRUE(LogText().contains(c.says)) << LogText().toStdString();
        EXPECT_EQ(window.Tools()->ToolCount(), 0);
        m_window.reset();
    }
}

TEST_F(StudioTest, SavedInstrumentsComeBackAndRunInstrumentsJoinThem) {
    const QString unreachable = QString::fromStdString(FreshLoopbackAddress());
    InstrumentStore(m_registry)
        .Save({{"Lab unit", unreachable, "VEXA"},
               {"Field unit", "vexa-field-2", "VEXA"},
               {"Old unit", "10.9.9.9", "NOPE"}});
    StudioWindow& window = StartStudio(BuiltPluginDir(), {unreachable});

    // The run's address is a saved instrument: it is taken on line, not added twice.
    ASSERT_EQ(window.Sensors().Count(), 3);
    EXPECT_EQ(Instrument(0).Config().name, "Lab unit");
    EXPECT_FALSE(Instrument(0).IsTransient());
    EXPECT_NE(Instrument(0).LastError(), 0);
    EXPECT_EQ(window.SelectedRow(), 0);
    EXPECT_EQ(Instrument(1).GetState(), ManagedInstrument::State::Offline);
    EXPECT_EQ(Instrument(1).LastError(), 0);
    // A sensor type that is not loaded is kept and explained, not dropped.
    EXPECT_EQ(Instrument(2).GetState(), ManagedInstrument::State::Unavailable);
    EXPECT_TRUE(StateCell(window, 2).contains("sensor type NOPE is not loaded"))
        << StateCell(window, 2).toStdString();
    EXPECT_EQ(window.Sensors().SavedConfigs().size(), 3);

    // Removing asks first; "No" keeps it, "Yes" removes it from the list and from the settings.
    ScriptedPrompt prompt;
    window.SelectRow(1);
    prompt.QueueYesNo(IDNO);
    window.RemoveInstrument();
    EXPECT_EQ(window.Sensors().Count(), 3);
    prompt.QueueYesNo(IDYES);
    window.RemoveInstrument();
    ASSERT_EQ(window.Sensors().Count(), 2);
    ASSERT_EQ(prompt.Asked(ScriptedPrompt::Kind::YesNo).size(), 2u);
    EXPECT_TRUE(QString::fromStdWString(prompt.Asked()[0].text).contains("Field unit"));
    const QList<InstrumentConfig> saved = InstrumentStore(m_registry).Load();
    ASSERT_EQ(saved.size(), 2);
    EXPECT_EQ(saved[0].name, "Lab unit");
    EXPECT_EQ(saved[1].name, "Old unit");
    EXPECT_EQ(saved[1].sensorType, "NOPE");
}

TEST_F(StudioTest, SilentInstrumentKeepsTheWindowLiveAndIsDropped) {
    // Accepts the link and the command channel, reads everything, answers nothing.
    LoopbackPeer peer([&](int socket) { LoopbackPeer::ReadUntilClosed(socket, 20000); });
    StartStudio(BuiltPluginDir(), {QString::fromStdString(peer.address())});
    ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();

    // The status poll waits for an answer that never comes; the window's events keep flowing meanwhile.
    QElapsedTimer clock;
    clock.start();
    qint64 last = 0, longestGap = 0;
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        longestGap = qMax(longestGap, clock.elapsed() - last);
        last = clock.elapsed();
    });
    heartbeat.start(50);
    EXPECT_TRUE(WaitFor([&] { return Instrument(0).GetState() != ManagedInstrument::State::Online; }, 30000))
        << LogText().toStdString();
    heartbeat.stop();
    EXPECT_GT(clock.elapsed(), 1000) << "the instrument was given time to answer";
    EXPECT_LT(longestGap, 1000) << "the window stalled while the instrument was silent";
    EXPECT_TRUE(WaitFor([&] { return LogText().contains("stopped answering at"); }))
        << LogText().toStdString();
}
