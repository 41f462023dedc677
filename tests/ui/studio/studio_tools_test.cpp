// SPDX-License-Identifier: Apache-2.0
// What each of the sensor type's tools does in the studio.
#include "studiofixture.h"

#include "datareviewwindow.h"
#include "demotree.h"
#include "dialog.h"
#include "logpane.h"
#include "loopback.h"
#include "managedinstrument.h"
#include "remotename.h"
#include "runreviewpage.h"
#include "scriptedprompt.h"
#include "sensormanager.h"
#include "servicewindow.h"
#include "simulator.h"
#include "statuspanel.h"
#include "statuswindow.h"
#include "tempdir.h"
#include "toollist.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QTableView>
#include <QTest>
#include <QTreeWidget>

namespace {
// The module's Manage Files dialog template.
constexpr int kManageFilesTemplate = 1701;

QStringList Messages(const ScriptedPrompt& prompt) {
    QStringList texts;
    for (const ScriptedPrompt::Question& question : prompt.Asked(ScriptedPrompt::Kind::Message))
        texts << QString::fromStdWString(question.text);
    return texts;
}
} // namespace

TEST_F(StudioTest, DataReviewAndRunMethodAskForAFileThroughTheSensor) {
    SimulatorProcess simulator(CopyDemoTree(m_temp.file("demo")));
    const QString address = QString::fromStdString(simulator.address());
    StudioWindow& window = StartStudio(BuiltPluginDir(), {address});
    ASSERT_EQ(Instrument(0).GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    window.SelectRow(0);
    // The module's file selection dialog (template 1704): the instrument radio 16816, the name 16821.
    auto chooseOnInstrument = [](const wchar_t* name) {
        return [name](CDialog_& dialog) {
            dialog.PressButton(16816);
            dialog.SetDlgItemText(16821, name);
            return IDOK;
        };
    };
    struct Case {
        const char* tool;
        const wchar_t* name;
        QString logged;
    };
    const Case cases[] = {
        {"Data Review", L"run1.vxs", "chosen file: @" + address + ":/Data/run1.vxs."},
        // The run itself asks first (answered No here).
        {"Run Method", L"Default.mth", "Default.mth was not run on " + address + "."},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.tool);
        ScriptedPrompt prompt;
        prompt.QueueDialog(chooseOnInstrument(c.name));
        window.RunTool(ToolRow(window, c.tool));
        const auto dialogs = prompt.Asked(ScriptedPrompt::Kind::Dialog);
        ASSERT_EQ(dialogs.size(), 1u);
        EXPECT_EQ(dialogs[0].templateId, 1704);
        EXPECT_EQ(dialogs[0].text, QString(c.tool).toStdWString());
        EXPECT_TRUE(LogText().contains(c.logged)) << LogText().toStdString();
        EXPECT_TRUE(Messages(prompt).isEmpty());
    }
    // Data Review copied the instrument's file into the sensor's data folder and shows it from there.
    ASSERT_NE(window.DataReview(), nullptr);
    ASSERT_EQ(window.DataReview()->PageCount(), 1);
    const RunReviewPage& page = *window.DataReview()->Page(0);
    EXPECT_EQ(page.SourceName(), L"@" + address.toStdWString() + L":/Data/run1.vxs");
    const QString copy = QString::fromStdWString(page.FileName());
    EXPECT_TRUE(copy.endsWith("/Data/run1.vxs")) << copy.toStdString();
    EXPECT_FALSE(IsRemoteFilename(page.FileName()));
    QFile copied(copy);
    QFile original(QString::fromStdString(m_temp.file("demo")) + "/Data/run1.vxs");
    ASSERT_TRUE(copied.open(QIODevice::ReadOnly) && original.open(QIODevice::ReadOnly));
    EXPECT_EQ(copied.readAll(), original.readAll());
    VexaRun run;
    std::string reason;
    ASSERT_TRUE(VexaDataFile::LoadRun(original.fileName().toStdWString(), &run, &reason)) << reason;
    EXPECT_EQ(page.Run().ScanCount(), run.ScanCount());

    // Cancelled: said in the log, nothing else.
    ScriptedPrompt prompt;
    window.RunTool(ToolRow(window, "Run Method"));
    EXPECT_TRUE(LogText().contains("no method chosen")) << LogText().toStdString();
}

TEST_F(StudioTest, StatusAndServiceModuleOpenOneWindowPerInstrument) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    for (const char* tool : {"Status", "Service Module"}) {
        ScriptedPrompt prompt;
        window.RunTool(ToolRow(window, tool));
        ASSERT_EQ(Messages(prompt).size(), 1) << tool;
        EXPECT_TRUE(Messages(prompt)[0].contains("select one in the list first"));
    }
    window.SelectRow(
        window.Sensors().Add({"Bench", QString::fromStdString(FreshLoopbackAddress()), "VEXA"}, true));
    ScriptedPrompt prompt;
    for (int twice = 0; twice < 2; ++twice) {
        window.RunTool(ToolRow(window, "Status"));
        window.RunTool(ToolRow(window, "Service Module"));
    }
    EXPECT_TRUE(Messages(prompt).isEmpty());
    const auto status = window.findChildren<StatusWindow*>();
    ASSERT_EQ(status.size(), 1);
    EXPECT_EQ(window.findChildren<ServiceWindow*>().size(), 1);
    EXPECT_TRUE(status[0]->Panel()->PlaceholderText().contains("off line"));
    EXPECT_EQ(status[0]->ReadyLabel()->text(), "Ready: unknown");
    // Removing the instrument closes its windows.
    window.Sensors().Remove(0);
    EXPECT_TRUE(WaitFor([&] { return window.findChildren<StatusWindow*>().isEmpty(); }, 2000));
    EXPECT_TRUE(window.findChildren<ServiceWindow*>().isEmpty());
}

TEST_F(StudioTest, ManageFilesNeedsAnInstrumentAndOpensTheDialog) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    {
        ScriptedPrompt prompt;
        window.RunTool(ToolRow(window, "Manage Files"));
        ASSERT_EQ(Messages(prompt).size(), 1);
        EXPECT_TRUE(Messages(prompt)[0].contains("select one in the list first"));
        EXPECT_TRUE(prompt.Asked(ScriptedPrompt::Kind::Dialog).empty());
    }
    const int row =
        window.Sensors().Add({"Bench", QString::fromStdString(FreshLoopbackAddress()), "VEXA"}, true);
    window.SelectRow(row);
    ScriptedPrompt prompt;
    std::wstring title;
    prompt.QueueDialog([&title](CDialog_& dialog) {
        title = dialog.windowTitle().toStdWString();
        return IDCANCEL;
    });
    window.RunTool(ToolRow(window, "Manage Files"));
    const auto dialogs = prompt.Asked(ScriptedPrompt::Kind::Dialog);
    ASSERT_EQ(dialogs.size(), 1u) << LogText().toStdString();
    EXPECT_EQ(dialogs[0].templateId, kManageFilesTemplate);
    EXPECT_EQ(title, L"Manage Files");
    EXPECT_TRUE(Messages(prompt).isEmpty()) << "an off-line instrument opens the dialog without a message";
    EXPECT_TRUE(LogText().contains("Manage Files on Bench closed.")) << LogText().toStdString();
}

TEST_F(StudioTest, TuneNeedsAnInstrumentOnLine) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    {
        ScriptedPrompt prompt;
        window.RunTool(ToolRow(window, "Tune"));
        ASSERT_EQ(Messages(prompt).size(), 1);
        EXPECT_TRUE(Messages(prompt)[0].contains("select one in the list first"));
    }
    const int row =
        window.Sensors().Add({"Bench", QString::fromStdString(FreshLoopbackAddress()), "VEXA"}, true);
    window.SelectRow(row);
    ScriptedPrompt prompt;
    window.RunTool(ToolRow(window, "Tune"));
    ASSERT_EQ(Messages(prompt).size(), 1);
    EXPECT_TRUE(Messages(prompt)[0].contains("Bench is off line")) << Messages(prompt)[0].toStdString();
}

TEST_F(StudioTest, FunctionKeysRunTheModulesPrograms) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    struct Case {
        Qt::KeyboardModifiers modifiers;
        const char* logged;
    };
    // Not configured here: the module says so, and the log says the program did not run.
    for (const Case& c :
         {Case{Qt::NoModifier, "NIST did not run: "}, Case{Qt::ShiftModifier, "AMDIS did not run: "}}) {
        SCOPED_TRACE(c.logged);
        ScriptedPrompt prompt;
        QTest::keyClick(window.InstrumentTable(), Qt::Key_F8, c.modifiers);
        EXPECT_TRUE(LogText().contains(c.logged)) << LogText().toStdString();
    }
    EXPECT_EQ(LogText().count("did not run"), 2);
    EXPECT_FALSE(LogText().contains(" ran.")) << LogText().toStdString();
}
