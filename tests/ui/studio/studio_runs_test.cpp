// SPDX-License-Identifier: Apache-2.0
// Runs and tunes from the studio: the questions first, then the run panel through a run, a stop and a
// sequence; the fleet columns of the instrument list.
#include "studiofixture.h"

#include "datareviewwindow.h"
#include "demotree.h"
#include "dialog.h"
#include "hostresource.h"
#include "instrumentlistmodel.h"
#include "logpane.h"
#include "loopback.h"
#include "managedinstrument.h"
#include "runpanel.h"
#include "runswindow.h"
#include "scriptedprompt.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "simulator.h"
#include "tempdir.h"
#include "vexadevice.h"

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTableView>

namespace {

// The demo instrument, its clock sped up: Default.mth runs 720 s / timeScale, Survey.mth 300 s / timeScale.
class RunsTest : public StudioTest {
protected:
    void StartInstrument(int timeScale) {
        m_tree = CopyDemoTree(m_temp.file("demo"));
        m_simulator = std::make_unique<SimulatorProcess>(
            m_tree, std::vector<std::string>{"--time-scale", std::to_string(timeScale)});
        m_address = QString::fromStdString(m_simulator->address());
        StartStudio(BuiltPluginDir(), {m_address});
        ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    }

    QString Remote(const QString& path) const { return "@" + m_address + ":" + path; }

    // Waits until `count` more statuses of the instrument have been read.
    bool WaitForStatuses(int count) {
        for (int i = 0; i < count; ++i) {
            const qint64 seen = Instrument(0).LastStatusTime();
            if (!WaitFor([&] { return Instrument(0).LastStatusTime() != seen; }, 5000))
                return false;
        }
        return true;
    }

    static QString Text(RunPanel* panel, const char* name) { return panel->findChild<QLabel*>(name)->text(); }

    std::string m_tree;
    std::unique_ptr<SimulatorProcess> m_simulator;
    QString m_address;
};

} // namespace

TEST_F(RunsTest, RunAsksFirstThenFollowsTheRunToItsEnd) {
    StartInstrument(240);
    RunsWindow& runs = *Window().Runs();
    const QString method = Remote("/Method/Default.mth");
    {
        ScriptedPrompt prompt; // answers No
        EXPECT_FALSE(runs.Run(Instrument(0), method));
        const auto asked = prompt.Asked(ScriptedPrompt::Kind::YesNo);
        ASSERT_EQ(asked.size(), 1u);
        const QString question = QString::fromStdWString(asked[0].text);
        EXPECT_TRUE(question.startsWith("Run Default.mth on " + Instrument(0).Config().name + "?"))
            << question.toStdString();
        EXPECT_TRUE(question.contains("General survey, 40-300 amu")) << question.toStdString();
        EXPECT_TRUE(question.contains("Run time: 12:00")) << question.toStdString();
        ASSERT_TRUE(WaitForStatuses(2));
        EXPECT_FALSE(Instrument(0).Activity().IsRunning()) << "No must leave the instrument alone";
        EXPECT_EQ(runs.PanelCount(), 0);
    }
    ScriptedPrompt prompt;
    prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(runs.Run(Instrument(0), method)) << LogText().toStdString();
    RunPanel* panel = runs.Panel(&Instrument(0));
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->Run().StartedHere());
    EXPECT_TRUE(panel->findChild<QPushButton*>("runStop")->isEnabled());
    // The instrument's own length replaces the method's; the bar follows the instrument's clock.
    ASSERT_TRUE(WaitFor([&] { return panel->Run().Total() == 3; }, 5000));
    EXPECT_EQ(panel->findChild<QProgressBar*>("runProgress")->maximum(), 3);
    ASSERT_TRUE(WaitFor([&] { return panel->Run().HasEnded() && panel->Run().Notified(); }, 15000));
    EXPECT_EQ(panel->Run().GetPhase(), MethodRun::Phase::Finished);
    EXPECT_TRUE(Text(panel, "runResult").startsWith("Finished")) << Text(panel, "runResult").toStdString();
    EXPECT_EQ(panel->findChild<QProgressBar*>("runProgress")->value(), 3);
    EXPECT_FALSE(panel->findChild<QPushButton*>("runStop")->isEnabled());
    EXPECT_TRUE(LogText().contains(Instrument(0).Config().name + ": method finished: /Data/Run"))
        << LogText().toStdString();

    // The data file: fetched to the PC's data folder, then reviewed from there.
    const QString dataFile = panel->DataFile();
    ASSERT_TRUE(dataFile.startsWith(Remote("/Data/Run")) && dataFile.endsWith(".vxs"))
        << dataFile.toStdString();
    EXPECT_TRUE(Text(panel, "runResult").contains(dataFile.section('/', -1)));
    ASSERT_TRUE(panel->findChild<QPushButton*>("runFetch")->isEnabled());
    panel->findChild<QPushButton*>("runFetch")->click();
    const std::string fetched = panel->FetchDestination().toStdString();
    ASSERT_TRUE(FileExists(fetched)) << LogText().toStdString();
    EXPECT_EQ(ReadWholeFile(fetched), ReadWholeFile(m_tree + dataFile.section(':', 1).toStdString()));
    panel->findChild<QPushButton*>("runReview")->click();
    ASSERT_NE(Window().DataReview(), nullptr);
    EXPECT_TRUE(Window().DataReview()->isVisible());
}

TEST_F(RunsTest, StopAsksAndEndsTheRunEarly) {
    StartInstrument(6);
    RunsWindow& runs = *Window().Runs();
    ScriptedPrompt prompt;
    prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(runs.Run(Instrument(0), Remote("/Method/Default.mth")));
    RunPanel* panel = runs.Panel(&Instrument(0));
    ASSERT_TRUE(WaitFor([&] { return panel->Run().Total() == 120; }, 5000));

    prompt.ClearAsked();
    panel->Stop(); // No
    ASSERT_EQ(prompt.Asked(ScriptedPrompt::Kind::YesNo).size(), 1u);
    EXPECT_TRUE(QString::fromStdWString(prompt.Asked()[0].text).startsWith("Stop Default.mth on"));
    ASSERT_TRUE(WaitForStatuses(2));
    EXPECT_TRUE(Instrument(0).Activity().IsRunning());
    EXPECT_TRUE(panel->Run().IsRunning());

    prompt.QueueYesNo(IDYES);
    panel->Stop();
    ASSERT_TRUE(WaitFor([&] { return panel->Run().Notified(); }, 10000)) << LogText().toStdString();
    EXPECT_EQ(panel->Run().GetPhase(), MethodRun::Phase::Stopped);
    EXPECT_LT(panel->Run().ElapsedAt(0), 120);
    EXPECT_TRUE(Text(panel, "runResult").startsWith("Stopped")) << Text(panel, "runResult").toStdString();
    EXPECT_TRUE(LogText().contains("method stopped: /Data/Run")) << LogText().toStdString();
    EXPECT_FALSE(panel->DataFile().isEmpty()) << "the scans up to the stop are kept";
}

TEST_F(RunsTest, SequenceRunsItsStepsWithRepeatsAndStopsBetweenThem) {
    StartInstrument(720);
    const auto writeSequence = [&](const std::string& name, const std::string& steps) {
        m_temp.createFile("demo/Method/" + name,
                          R"({"format": "VexaMethodSequence", "version": 1, "steps": [)" + steps + "]}");
    };
    const std::string at = "@" + m_address.toStdString() + ":";
    // Remote names, and the instrument's own paths that a sequence on the instrument uses.
    writeSequence("Two.xmth", R"({"method": ")" + at + R"(/Method/Default.mth", "repeat": 2},
                               {"method": "/Method/Survey.mth", "repeat": 1})");
    RunsWindow& runs = *Window().Runs();
    ScriptedPrompt prompt;
    prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(runs.Run(Instrument(0), Remote("/Method/Two.xmth"))) << LogText().toStdString();
    EXPECT_TRUE(QString::fromStdWString(prompt.Asked()[0].text).contains("3 run(s)"));
    RunPanel* panel = runs.Panel(&Instrument(0));
    ASSERT_TRUE(WaitFor([&] { return !panel->InSequence(); }, 30000)) << LogText().toStdString();
    QStringList started;
    for (const QString& line : LogText().split('\n')) {
        if (line.contains(" runs /Method/"))
            started << line.section(" runs ", 1).chopped(1);
    }
    EXPECT_EQ(started, (QStringList{"/Method/Default.mth", "/Method/Default.mth", "/Method/Survey.mth"}));
    EXPECT_TRUE(LogText().contains("sequence Two.xmth finished, 3 run(s)")) << LogText().toStdString();

    // Stopped within its first run: the rest never starts.
    writeSequence("Three.xmth", R"({"method": ")" + at + R"(/Method/Default.mth", "repeat": 3})");
    prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(runs.Run(Instrument(0), Remote("/Method/Three.xmth")));
    prompt.QueueYesNo(IDYES);
    panel->Stop();
    ASSERT_TRUE(WaitFor([&] { return !panel->InSequence(); }, 10000));
    EXPECT_TRUE(LogText().contains("sequence Three.xmth stopped after 1 of 3 run(s)"))
        << LogText().toStdString();
    ASSERT_TRUE(WaitForStatuses(2));
    EXPECT_FALSE(Instrument(0).Activity().IsRunning());
}

TEST_F(RunsTest, TuneAsksFirstAndOpensTheReportsOnTheNewReport) {
    StartInstrument(1);
    const std::string reportFile = m_tree + "/Tune/Reports/Default.rpt";
    const auto reports = [&] { return QString::fromStdString(ReadWholeFile(reportFile)).count("\"time\""); };
    const int before = reports();
    StudioWindow& window = Window();
    window.SelectRow(0);
    {
        ScriptedPrompt prompt; // No
        window.RunTool(ToolRow(window, "Tune"));
        const auto asked = prompt.Asked(ScriptedPrompt::Kind::YesNo);
        ASSERT_EQ(asked.size(), 1u);
        EXPECT_EQ(
            QString::fromStdWString(asked[0].text),
            QString("Tune %1 now? The instrument is busy for about 60 s.").arg(Instrument(0).Config().name));
        EXPECT_EQ(reports(), before);
        EXPECT_TRUE(prompt.Asked(ScriptedPrompt::Kind::Dialog).empty());
    }
    ScriptedPrompt prompt;
    prompt.QueueYesNo(IDYES);
    // The tune file, then the reports window, which must open on the newest report.
    prompt.QueueDialog([](CDialog_& dialog) {
        dialog.PressButton(16816);
        dialog.SetDlgItemText(16821, L"Default.tun");
        return IDOK;
    });
    int current = -1, count = 0;
    prompt.QueueDialog([&](CDialog_& dialog) {
        auto* list = qobject_cast<QListWidget*>(dialog.GetDlgItem(10470));
        current = list ? list->currentRow() : -2;
        count = list ? list->count() : 0;
        return IDCANCEL;
    });
    window.RunTool(ToolRow(window, "Tune"));
    EXPECT_EQ(reports(), before + 1);
    EXPECT_EQ(count, before + 1) << LogText().toStdString();
    EXPECT_EQ(current, count - 1);
    EXPECT_TRUE(Instrument(0).BusyNote().isEmpty());
}

TEST_F(RunsTest, FleetColumnsShowWhatEachInstrumentDoes) {
    StartInstrument(5);
    StudioWindow& window = Window();
    const int idleRow =
        window.Sensors().Add({"Spare", QString::fromStdString(FreshLoopbackAddress()), "VEXA"}, true);
    QAbstractItemModel* list = window.InstrumentTable()->model();
    const auto cell = [&](int viewRow, int column) { return list->index(viewRow, column).data().toString(); };
    ASSERT_TRUE(WaitFor([&] { return cell(0, InstrumentListModel::kColumnRun) == "idle"; }, 5000));
    EXPECT_EQ(cell(1, InstrumentListModel::kColumnRun), "") << "no status, nothing said";
    EXPECT_EQ(cell(1, InstrumentListModel::kColumnStatusAge), "-");
    EXPECT_TRUE(cell(0, InstrumentListModel::kColumnStatusAge).endsWith(" s"));

    // Started as another workstation would: straight on the instrument, not through the Runs window.
    VexaDevice device(Instrument(0).Sensor()->GetDevice(L"VEXA"));
    ASSERT_TRUE(device.runMethod(L"\"/Method/Survey.mth\""));
    ASSERT_TRUE(WaitFor([&] { return cell(0, InstrumentListModel::kColumnRun).contains("%"); }, 5000));
    EXPECT_TRUE(cell(0, InstrumentListModel::kColumnRun).startsWith("Survey.mth "))
        << cell(0, 4).toStdString();
    EXPECT_TRUE(cell(0, InstrumentListModel::kColumnRun).contains(" / 1:00)"));
    EXPECT_TRUE(window.windowTitle().contains("1 on line, 1 running, 0 in alarm"))
        << window.windowTitle().toStdString();
    ASSERT_NE(window.Runs()->Panel(&Instrument(0)), nullptr);
    EXPECT_TRUE(
        window.Runs()->Panel(&Instrument(0))->findChild<QLabel*>("runTitle")->text().contains("elsewhere"));

    // Sorted by what runs, most done last: the selection still names the same instrument.
    window.SelectRow(idleRow);
    window.InstrumentTable()->sortByColumn(InstrumentListModel::kColumnRun, Qt::AscendingOrder);
    EXPECT_TRUE(cell(0, InstrumentListModel::kColumnName).startsWith("Spare"));
    EXPECT_EQ(window.SelectedRow(), idleRow);
    window.InstrumentTable()->sortByColumn(InstrumentListModel::kColumnRun, Qt::DescendingOrder);
    EXPECT_EQ(
        list->index(0, InstrumentListModel::kColumnRun).data(InstrumentListModel::kProgressRole).toInt() >= 0,
        true);
    EXPECT_EQ(window.SelectedRow(), idleRow);
    device.stopMethod();
}
