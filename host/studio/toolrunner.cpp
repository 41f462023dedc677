// SPDX-License-Identifier: Apache-2.0
#include "toolrunner.h"

#include "dialogwatcher.h"
#include "filetype.h"
#include "hostresource.h"
#include "newesttunereport.h"
#include "prompt.h"
#include "remotename.h"
#include "sensorinfo.h"
#include "sensorobject.h"
#include "text.h"
#include "toolcategory.h"
#include "vexadevice.h"
#include "warningtap.h"
#include "winsockerror.h"

#include <QCoreApplication>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("ToolRunner", text);
}

// The sensor folder kinds the tools ask for, and SelectFile's flags.
constexpr int kFolderKindMethods = 1;
constexpr int kFolderKindData = 4;
constexpr uint32_t kSelectInstrumentOnly = 0x20;
constexpr uint32_t kSelectReturnCancel = 0x40;
const std::wstring kCancelled = L"Cancel";

// File kinds of a sensor type's file types.
constexpr int kFileKindData = 1;
constexpr int kFileKindMethod = 2;
constexpr int kFileKindTune = 4;

int FileKind(const ISensorInfo& sensorType, const std::wstring& file) {
    const std::wstring type = GetFileType(file);
    for (const SensorFileType& fileType : sensorType.FileTypes()) {
        if (EqualsNoCase(fileType.suffix, type))
            return fileType.kind;
    }
    return 0;
}

bool WorksOnSensor(const SensorTool& tool) {
    return (tool.category == kToolCategoryFiles &&
            (tool.index == kToolIndexManageFiles || tool.index == kToolIndexDataReview)) ||
           (tool.category == kToolCategoryRun && tool.index == kToolIndexRunMethod);
}
} // namespace

ToolRunner::Outcome ToolRunner::Run(ISensorInfo& sensorType, const SensorTool& tool, ISensorObject* sensor,
                                    const BusyNotice& busy) {
    using Kind = Outcome::Kind;
    const QString name = QString::fromStdWString(tool.name);

    if (tool.category == kToolCategoryPrograms)
        return RunProgram(sensorType, tool);
    if (WorksOnSensor(tool)) {
        if (!sensor)
            return {Kind::NeedsInstrument,
                    Tr("%1 works on an instrument: select one in the list first.").arg(name)};
        if (tool.category == kToolCategoryRun)
            return ChooseMethod(name, *sensor);
        if (tool.index == kToolIndexDataReview)
            return ReviewData(name, *sensor);
        return ManageFiles(sensorType, name, *sensor);
    }
    if (tool.category == kToolCategoryRun && tool.index == kToolIndexTune)
        return RunTune(name, sensor, busy);
    if (tool.category == kToolCategoryMethods)
        return {Kind::ChooseMethodAction,
                Tr("%1: new method, new sequence, open or default methods.").arg(name)};
    if (tool.category == kToolCategoryStatus &&
        (tool.index == kToolIndexStatus || tool.index == kToolIndexService)) {
        if (!sensor)
            return {Kind::NeedsInstrument,
                    Tr("%1 works on an instrument: select one in the list first.").arg(name)};
        return {tool.index == kToolIndexStatus ? Kind::ShowStatus : Kind::ShowService,
                Tr("%1 of %2 opened.").arg(name, QString::fromStdWString(sensor->GetName()))};
    }
    return {Kind::OutOfScope,
            Tr("%1 (%2) is a feature of the full instrument suite; VEXA Studio does not provide it.")
                .arg(name, QString::fromStdWString(tool.description))};
}

// The module tells the operator itself when a program cannot start, and returns nothing.
ToolRunner::Outcome ToolRunner::RunProgram(ISensorInfo& sensorType, const SensorTool& tool) {
    using Kind = Outcome::Kind;
    const QString name = QString::fromStdWString(tool.name);
    WarningTap warnings;
    sensorType.RunTool(tool.category, tool.index);
    if (!warnings.Warnings().isEmpty())
        return {Kind::ProgramFailed,
                Tr("%1 did not run: %2").arg(name, warnings.Warnings().join(QChar(' ')))};
    return {Kind::RanByModule, Tr("%1 ran.").arg(name)};
}

ToolRunner::Outcome ToolRunner::RunTune(const QString& toolName, ISensorObject* sensor,
                                        const BusyNotice& busy) {
    using Kind = Outcome::Kind;
    if (!sensor)
        return {Kind::NeedsInstrument,
                Tr("%1 works on an instrument: select one in the list first.").arg(toolName)};
    const QString sensorName = QString::fromStdWString(sensor->GetName());
    if (!sensor->IsOnline(true))
        return {Kind::TuneFailed, Tr("%1 is off line: take it on line to tune it.").arg(sensorName)};
    VexaDevice device(sensor->GetDevice(L"VEXA"));
    if (const std::wstring running = device.getActiveProcess(); !running.empty())
        return {Kind::TuneFailed, Tr("%1 is running %2: tune it when the run has ended.")
                                      .arg(sensorName, QString::fromStdWString(running))};
    const QString question =
        Tr("Tune %1 now? The instrument is busy for about %2 s.").arg(sensorName).arg(kTuneSeconds);
    if (Prompt().AskYesNo(question.toStdWString(), toolName.toStdWString()) != IDYES)
        return {Kind::TuneDeclined, Tr("%1 was not tuned.").arg(sensorName)};
    if (busy)
        busy(Tr("Tuning %1 ...").arg(sensorName));
    const bool tuned = device.runTune();
    if (busy)
        busy({});
    if (!tuned) {
        QString reason = QString::fromStdWString(DescribeError(device.getLastError()));
        if (!device.getLastErrorText().empty())
            reason += " - " + QString::fromStdWString(device.getLastErrorText());
        return {Kind::TuneFailed, Tr("%1 could not tune: error %2.").arg(sensorName, reason)};
    }
    const NewestTuneReport newest;
    sensor->ShowTuneReports();
    return {Kind::Tuned,
            Tr("%1 tuned; its report was added to the reports of its tune file.").arg(sensorName)};
}

ToolRunner::Outcome ToolRunner::ManageFiles(ISensorInfo& sensorType, const QString& name,
                                            ISensorObject& sensor) {
    using Kind = Outcome::Kind;
    DialogWatcher watcher;
    const QString chosen = QString::fromStdWString(sensor.ManageFiles(L"", 0, 0));
    const QString sensorName = QString::fromStdWString(sensor.GetName());
    if (!chosen.isEmpty()) {
        const Outcome handed = ReviewFile(sensorType, chosen.toStdWString());
        return {Kind::ManageFilesClosed,
                Tr("%1 on %2 closed; chosen file: %3. %4").arg(name, sensorName, chosen, handed.message)};
    }
    if (watcher.SawDialog())
        return {Kind::ManageFilesClosed, Tr("%1 on %2 closed.").arg(name, sensorName)};
    return {Kind::ManageFilesUnavailable,
            Tr("The %1 dialog is not available in this build of the %2 module (the sensor answered without "
               "opening it).")
                .arg(name, QString::fromStdWString(sensorType.ShortName()))};
}

// A data file from either side, for the Data Review window.
ToolRunner::Outcome ToolRunner::ReviewData(const QString& name, ISensorObject& sensor) {
    using Kind = Outcome::Kind;
    const std::wstring chosen =
        sensor.SelectFileForKind(kFolderKindData, L"", kSelectReturnCancel, name.toStdWString());
    const QString sensorName = QString::fromStdWString(sensor.GetName());
    if (chosen.empty() || chosen == kCancelled)
        return {Kind::SelectionCancelled, Tr("%1 on %2: no file chosen.").arg(name, sensorName)};
    return {Kind::ReviewDataFile,
            Tr("%1 on %2; chosen file: %3.").arg(name, sensorName, QString::fromStdWString(chosen)), chosen};
}

// A method or sequence on the instrument; the window asks and runs it.
ToolRunner::Outcome ToolRunner::ChooseMethod(const QString& name, ISensorObject& sensor) {
    using Kind = Outcome::Kind;
    const QString sensorName = QString::fromStdWString(sensor.GetName());
    if (!sensor.IsOnline())
        return {Kind::NeedsInstrument,
                Tr("%1 runs a method on the instrument: take %2 on line first.").arg(name, sensorName)};
    // Without a start name the instrument side opens at the kind's folder.
    const std::wstring chosen = sensor.SelectFileForKind(
        kFolderKindMethods, L"", kSelectInstrumentOnly | kSelectReturnCancel, name.toStdWString());
    if (chosen.empty() || chosen == kCancelled)
        return {Kind::SelectionCancelled, Tr("%1 on %2: no method chosen.").arg(name, sensorName)};
    if (!SplitRemoteName(chosen, nullptr, nullptr))
        return {Kind::MethodFailed, Tr("%1 on %2: %3 is not on the instrument; choose a method there.")
                                        .arg(name, sensorName, QString::fromStdWString(chosen))};
    return {Kind::MethodChosen, {}, chosen};
}

ToolRunner::Outcome ToolRunner::RunMethodEditor(ISensorInfo& sensorType, MethodAction action,
                                                ISensorObject* sensor) {
    using Kind = Outcome::Kind;
    switch (action) {
    case MethodAction::NewMethod:
        sensorType.NewFile(L"mth");
        return {Kind::HandedToModule, Tr("Method Editor: new method.")};
    case MethodAction::NewSequence:
        sensorType.NewFile(L"xmth");
        return {Kind::HandedToModule, Tr("Method Editor: new method sequence.")};
    case MethodAction::DefaultMethods:
        // The module shows its default methods first; a new default method follows only on OK.
        sensorType.NewFile(L"dmth");
        return {Kind::HandedToModule, Tr("Method Editor: default methods.")};
    case MethodAction::Open:
        break;
    }
    if (!sensor)
        return {Kind::NeedsInstrument,
                Tr("Opening a method works on an instrument: select one in the list first.")};
    const std::wstring chosen = sensor->SelectFileForKind(kFolderKindMethods, L"", kSelectReturnCancel, L"");
    if (chosen.empty() || chosen == kCancelled)
        return {Kind::SelectionCancelled, Tr("Method Editor: no file chosen.")};
    sensorType.OpenFile(chosen);
    return {Kind::HandedToModule, Tr("Method Editor: opened %1.").arg(QString::fromStdWString(chosen))};
}

ToolRunner::Outcome ToolRunner::ReviewFile(ISensorInfo& sensorType, const std::wstring& file) {
    using Kind = Outcome::Kind;
    const QString name = QString::fromStdWString(file);
    const int kind = FileKind(sensorType, file);
    if (kind == kFileKindMethod) {
        sensorType.OpenFile(file);
        return {Kind::HandedToModule, Tr("Opened %1 in the method editor.").arg(name)};
    }
    if (kind != kFileKindData && kind != kFileKindTune)
        return {Kind::FileChosen, Tr("%1 is neither a method nor a data file.").arg(name)};
    const std::wstring question = Tr("Edit the method that %1 was made with?").arg(name).toStdWString();
    if (Prompt().AskYesNo(question, {}) != IDYES)
        return {Kind::FileChosen, Tr("The method of %1 was not opened.").arg(name)};
    sensorType.EditMethodOfFile(file);
    return {Kind::HandedToModule, Tr("Opened the method of %1.").arg(name)};
}
