// SPDX-License-Identifier: Apache-2.0
// The Status window's trends and alarms under a scripted instrument, the Service Module and its report,
// and the settings dialog.
#include "studiofixture.h"

#include "demotree.h"
#include "dialog.h"
#include "hostresource.h"
#include "logpane.h"
#include "managedinstrument.h"
#include "registry.h"
#include "scriptedprompt.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "servicewindow.h"
#include "settingsdialog.h"
#include "simulator.h"
#include "statuswindow.h"
#include "tempdir.h"
#include "trendplot.h"
#include "vexadevice.h"

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>

namespace {
// The module's text editor's edit control.
constexpr int kEditTextControl = 16849;

// Replaces the profile whole, as the simulator expects a scripted change.
void WriteProfile(const std::string& path, const std::string& json) {
    const std::string temporary = path + ".new";
    std::ofstream(temporary) << json;
    std::filesystem::rename(temporary, path);
}

const char kCalm[] =
    R"({"drift": false, "totalPres": 0.0025, "heaters": {"1": 1500}, "parameters": {"5:0": "01000000"}})";
const char kTroubled[] =
    R"({"drift": false, "totalPres": 0.05, "heaters": {"1": 1700}, "parameters": {"5:0": "00000000"}})";

class AccessLevels {
public:
    explicit AccessLevels(const char* levels) { setenv("VEXA_ACCESS", levels, 1); }
    ~AccessLevels() { unsetenv("VEXA_ACCESS"); }
};

template <class Window> Window* OnlyToolWindow(StudioWindow& window) {
    const auto open = window.findChildren<Window*>();
    return open.size() == 1 ? open.first() : nullptr;
}
} // namespace

TEST_F(StudioTest, AlarmsBeginAndEndOnceWithAScriptedStatus) {
    const std::string profile = m_temp.file("profile.json");
    WriteProfile(profile, kCalm);
    SimulatorProcess simulator(CopyDemoTree(m_temp.file("demo")), {"--profile", profile});
    m_registry.SetString(L"Alarms", L"Interval", L"200");
    m_registry.SetString(L"Alarms", L"HeaterSettle", L"1");
    m_registry.SetString(L"Alarms", L"NotReadyLimit", L"1");
    StudioWindow& window = StartStudio(BuiltPluginDir(), {QString::fromStdString(simulator.address())});
    ManagedInstrument& instrument = Instrument(0);
    ASSERT_EQ(instrument.GetState(), ManagedInstrument::State::Online) << LogText().toStdString();

    window.RunTool(ToolRow(window, "Status"));
    StatusWindow* status = OnlyToolWindow<StatusWindow>(window);
    ASSERT_NE(status, nullptr);
    // Calm: points accumulate, the heaters settle, nothing alarms.
    ASSERT_TRUE(WaitFor([&] { return instrument.Monitor().History().Times().size() >= 10; }));
    EXPECT_EQ(instrument.ActiveAlarmCount(), 0) << LogText().toStdString();
    EXPECT_EQ(status->ReadyLabel()->text(), "Ready");
    EXPECT_TRUE(status->Plot()->Keys().contains("Current Pressures/Total MS Pressure (Pa)"))
        << status->Plot()->Keys().join(", ").toStdString();
    EXPECT_GE(status->ReadingPicker()->count(), 10);

    const QString pressure = "alarm: Total MS Pressure (Pa) 5.00e-02 is above 1.00e-02";
    const QString pressureOver = "alarm over: Total MS Pressure (Pa) above 1.00e-02";
    const QString notReady = "alarm: not ready for";
    const QString heater = "alarm: Column at 170.0 C, settled at 150.0 C";
    const QString heaterOver = "alarm over: Column away from 150.0 C where it settled";
    WriteProfile(profile, kTroubled);
    ASSERT_TRUE(WaitFor([&] {
        return LogText().contains(pressure) && LogText().contains(notReady) && LogText().contains(heaterOver);
    })) << LogText().toStdString();
    // The heater settled at its new place, which ends its alarm; the others stay on.
    EXPECT_EQ(instrument.ActiveAlarmCount(), 2);
    EXPECT_EQ(Window().Sensors().ActiveAlarmCount(0), 2);
    EXPECT_EQ(Window().Sensors().InstrumentsInAlarm(), 1);
    QTest::qWait(600);
    EXPECT_EQ(status->ActiveAlarms()->topLevelItemCount(), 2);
    EXPECT_EQ(status->ReadyLabel()->text(), "Not ready");
    EXPECT_EQ(LogText().count(pressure), 1);
    EXPECT_EQ(LogText().count(notReady), 1);
    EXPECT_EQ(LogText().count(heater), 1);
    EXPECT_EQ(LogText().count(heaterOver), 1);

    WriteProfile(profile, kCalm);
    ASSERT_TRUE(WaitFor([&] {
        return LogText().contains(pressureOver) && LogText().contains("alarm over: not ready");
    })) << LogText().toStdString();
    QTest::qWait(600);
    EXPECT_EQ(LogText().count(pressureOver), 1);
    EXPECT_EQ(LogText().count(pressure), 1);
    EXPECT_EQ(status->ActiveAlarms()->topLevelItemCount(), instrument.ActiveAlarmCount());
    EXPECT_GE(status->AlarmHistory()->count(), 6);

    // A lost link is an alarm too.
    simulator.stop();
    ASSERT_TRUE(WaitFor([&] { return LogText().contains("alarm: link lost"); })) << LogText().toStdString();
    EXPECT_GE(instrument.ActiveAlarmCount(), 1);
}

TEST_F(StudioTest, ServiceModuleShowsAndReportsTheInstrument) {
    const std::string root = CopyDemoTree(m_temp.file("demo"));
    const std::string profile = m_temp.file("profile.json");
    WriteProfile(profile, R"({"methodSeconds": 0.2, "serial": "VX-7731", "firmware": "5.0.2"})");
    SimulatorProcess simulator(root, {"--profile", profile});
    StudioWindow& window = StartStudio(BuiltPluginDir(), {QString::fromStdString(simulator.address())});
    ManagedInstrument& instrument = Instrument(0);
    ASSERT_EQ(instrument.GetState(), ManagedInstrument::State::Online) << LogText().toStdString();
    // A notification of this session: a replay's end.
    VexaDevice device(instrument.Sensor()->GetDevice(L"VEXA"));
    ASSERT_TRUE(device.runMethod(L"\"/Data/run1.vxs\" -speed=20"));
    ASSERT_TRUE(WaitFor([&] { return !instrument.Notifications().isEmpty(); })) << LogText().toStdString();
    ASSERT_TRUE(
        WaitFor([&] { return !VexaDevice(instrument.Sensor()->GetDevice(L"VEXA")).getSerial().empty(); }));

    ScriptedPrompt prompt;
    window.RunTool(ToolRow(window, "Service Module"));
    ServiceWindow* service = OnlyToolWindow<ServiceWindow>(window);
    ASSERT_NE(service, nullptr);
    EXPECT_TRUE(prompt.Asked(ScriptedPrompt::Kind::Message).empty()) << "the tool is provided";
    ASSERT_EQ(service->ConfigurationList()->count(), 6);
    EXPECT_EQ(service->Data().configuration[0].text, "vexaron-0427\n");
    EXPECT_TRUE(service->LogView()->toPlainText().contains("method finished, data /Data/run2.vxs"));

    // Edit... goes through the text editor and its question; the window shows the file as written.
    service->ConfigurationList()->setCurrentRow(0);
    ASSERT_TRUE(service->EditButton()->isEnabled());
    prompt.QueueDialog([](CDialog_& editor) {
        auto* edit = qobject_cast<QPlainTextEdit*>(editor.GetDlgItem(kEditTextControl));
        if (!edit)
            return IDCANCEL;
        edit->selectAll();
        QTest::keyClicks(edit, "vexaron-0428");
        QTest::keyClick(edit, Qt::Key_Return);
        return IDOK;
    });
    prompt.QueueYesNo(IDYES);
    service->EditButton()->click();
    EXPECT_EQ(prompt.Asked(ScriptedPrompt::Kind::YesNo).size(), 1u);
    EXPECT_EQ(ReadWholeFile(root + "/hostname"), "vexaron-0428\n");
    EXPECT_EQ(service->Data().configuration[0].text, "vexaron-0428\n");

    // The log's tail follows the instrument's log on Refresh.
    std::ofstream(root + "/Log/instrument.log", std::ios::app) << "2026-01-05 10:00:00 service visit\n";
    service->findChild<QPushButton*>("refreshLogs")->click();
    EXPECT_TRUE(service->LogView()->toPlainText().trimmed().endsWith("10:00:00 service visit"))
        << service->LogView()->toPlainText().toStdString();

    const std::string report = m_temp.file("report.txt");
    ASSERT_TRUE(service->SaveReport(QString::fromStdString(report)));
    const QString text = QString::fromStdString(ReadWholeFile(report));
    for (const QString& expected :
         {QString("Serial: VX-7731\n"), QString("Firmware: 5.0.2\n"),
          QString("Address: ") + QString::fromStdString(simulator.address()),
          QString("--- /hostname ---\nvexaron-0428\n"), QString("--- /ip.addresses ---\neth0 10.0.0.5/24"),
          QString("--- /.config.level ---\n"), QString("  1048882  method finished"),
          QString("--- /Log/instrument.log ---\n"), QString("service visit\n")})
        EXPECT_TRUE(text.contains(expected)) << expected.toStdString() << "\n" << text.toStdString();

    // Off line the files say why they are missing, and the report still writes.
    window.Sensors().GoOffline(0);
    service->RefreshFiles();
    EXPECT_FALSE(service->EditButton()->isEnabled());
    ASSERT_TRUE(service->SaveReport(QString::fromStdString(report)));
    EXPECT_TRUE(
        QString::fromStdString(ReadWholeFile(report)).contains("--- /hosts ---\nnot read: error 10057"));
}

TEST_F(StudioTest, SettingsRoundTripThroughTheFile) {
    AccessLevels levels("0,1");
    const std::string file = m_temp.file("settings.ini");
    std::map<QString, QString> chosen;
    {
        CPXRegistry registry(file);
        SettingsDialog dialog(registry);
        for (const SettingEntry& entry : StudioSettings::Entries()) {
            QString value;
            switch (entry.kind) {
            case SettingEntry::Kind::Flag:
                value = "1";
                break;
            case SettingEntry::Kind::Integer:
                value = QString::number(static_cast<int>(entry.minimum) + 7);
                break;
            case SettingEntry::Kind::Number:
                value = "0.25";
                break;
            case SettingEntry::Kind::AccessLevels:
                value = "0";
                break;
            default:
                value = "/opt/vexa test/" + entry.key;
            }
            ASSERT_NE(dialog.Editor(entry.Path()), nullptr) << entry.Path().toStdString();
            dialog.SetEditedValue(entry.Path(), value);
            chosen[entry.Path()] = value;
        }
        ASSERT_TRUE(dialog.Save());
    }
    CPXRegistry reread(file);
    for (const auto& [path, value] : chosen)
        EXPECT_EQ(StudioSettings::Value(reread, *StudioSettings::Find(path)), value) << path.toStdString();
    const AlarmLimits limits = StudioSettings::ReadAlarmLimits(reread);
    EXPECT_EQ(limits.totalPressureHighPa, 0.25);
    EXPECT_EQ(limits.heaterDeviationC, 0.25);
    EXPECT_EQ(limits.settleSeconds, 8);
    EXPECT_EQ(StudioSettings::ReadAlarmInterval(reread), 107);
    SettingsDialog shown(reread);
    for (const auto& [path, value] : chosen)
        EXPECT_EQ(shown.EditedValue(path), value) << path.toStdString();

    // Back to a default: a value without a fixed default leaves the file; an untouched one is not written.
    shown.SetEditedValue("Programs/Nist", "");
    ASSERT_TRUE(shown.Save());
    EXPECT_FALSE(CPXRegistry(file).GetString(L"Programs", L"Nist").has_value());

    // A limit that is not a number is refused with a message and nothing is written.
    ScriptedPrompt prompt;
    shown.SetEditedValue("Alarms/TotalPressureHigh", "high");
    shown.SetEditedValue("Transfers/Retries", "9");
    EXPECT_FALSE(shown.Save());
    EXPECT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message).size(), 1u);
    EXPECT_EQ(CPXRegistry(file).GetString(L"Transfers", L"Retries", L""), L"7");
}

TEST_F(StudioTest, SettingsDialogRefusesAccessChangesWithoutLevelOne) {
    const std::string file = m_temp.file("settings.ini");
    CPXRegistry registry(file);
    registry.SetString(L"Access", L"Levels", L"0");
    AccessLevels levels("0");
    SettingsDialog dialog(registry);
    QWidget* access = dialog.Editor("Access/Levels");
    ASSERT_NE(access, nullptr);
    EXPECT_FALSE(access->isEnabled());
    EXPECT_EQ(dialog.EditedValue("Access/Levels"), "0") << "the levels are shown";
    // Even set behind the dialog's back, the levels are not written; other values are.
    dialog.SetEditedValue("Access/Levels", "0,1");
    dialog.SetEditedValue("Transfers/Retries", "5");
    ASSERT_TRUE(dialog.Save());
    EXPECT_EQ(CPXRegistry(file).GetString(L"Access", L"Levels", L""), L"0");
    EXPECT_EQ(CPXRegistry(file).GetString(L"Transfers", L"Retries", L""), L"5");

    // Each program's Test says whether it starts, with the error number when not.
    dialog.SetEditedValue("Programs/Nist", "/nonexistent/vexa/nist");
    dialog.TestProgram("Programs/Nist");
    EXPECT_TRUE(dialog.TestResult("Programs/Nist").startsWith("Error 2"))
        << dialog.TestResult("Programs/Nist").toStdString();
    dialog.SetEditedValue("Programs/Amdis", "true");
    dialog.TestProgram("Programs/Amdis");
    EXPECT_TRUE(dialog.TestResult("Programs/Amdis").startsWith("Started "))
        << dialog.TestResult("Programs/Amdis").toStdString();
    dialog.SetEditedValue("Programs/Amdis", "");
    dialog.TestProgram("Programs/Amdis");
    EXPECT_EQ(dialog.TestResult("Programs/Amdis"), "Not configured.");
}
