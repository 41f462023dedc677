#include "toolrunner.h"

#include "dialogwatcher.h"
#include "sensorinfo.h"
#include "sensorobject.h"
#include "toolcategory.h"
#include "vexadevice.h"
#include "winsockerror.h"

#include <QCoreApplication>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("ToolRunner", text);
}
} // namespace

ToolRunner::Outcome ToolRunner::Run(ISensorInfo& sensorType, const SensorTool& tool, ISensorObject* sensor) {
    using Kind = Outcome::Kind;
    const QString name = QString::fromStdWString(tool.name);

    if (tool.category == kToolCategoryPrograms) {
        sensorType.RunTool(tool.category, tool.index);
        return {Kind::RanByModule,
                Tr("Ran the tool %1 (category %2, index %3).").arg(name).arg(tool.category).arg(tool.index)};
    }
    if (tool.category == kToolCategoryFiles && tool.index == kToolIndexManageFiles) {
        if (!sensor)
            return {Kind::NeedsInstrument,
                    Tr("%1 works on an instrument: select one in the list first.").arg(name)};
        DialogWatcher watcher;
        const QString chosen = QString::fromStdWString(sensor->ManageFiles(L"", 0, 0));
        const QString sensorName = QString::fromStdWString(sensor->GetName());
        if (!chosen.isEmpty())
            return {Kind::ManageFilesClosed,
                    Tr("%1 on %2 closed; chosen file: %3.").arg(name, sensorName, chosen)};
        if (watcher.SawDialog())
            return {Kind::ManageFilesClosed, Tr("%1 on %2 closed.").arg(name, sensorName)};
        return {
            Kind::ManageFilesUnavailable,
            Tr("The %1 dialog is not available in this build of the %2 module (the sensor answered without "
               "opening it).")
                .arg(name, QString::fromStdWString(sensorType.ShortName()))};
    }
    if (tool.category == kToolCategoryRun && tool.index == kToolIndexTune)
        return RunTune(name, sensor);
    if (tool.category == kToolCategoryStatus && tool.index == kToolIndexStatus)
        return {Kind::ShowStatus, Tr("Showing the status panel.")};
    return {Kind::OutOfScope,
            Tr("%1 (%2) is a feature of the full instrument suite; VEXA Studio does not provide it.")
                .arg(name, QString::fromStdWString(tool.description))};
}

ToolRunner::Outcome ToolRunner::RunTune(const QString& toolName, ISensorObject* sensor) {
    using Kind = Outcome::Kind;
    if (!sensor)
        return {Kind::NeedsInstrument,
                Tr("%1 works on an instrument: select one in the list first.").arg(toolName)};
    const QString sensorName = QString::fromStdWString(sensor->GetName());
    if (!sensor->IsOnline(true))
        return {Kind::TuneFailed, Tr("%1 is off line: take it on line to tune it.").arg(sensorName)};
    VexaDevice device(sensor->GetDevice(L"VEXA"));
    if (!device.runTune()) {
        QString reason = QString::fromStdWString(DescribeError(device.getLastError()));
        if (!device.getLastErrorText().empty())
            reason += " - " + QString::fromStdWString(device.getLastErrorText());
        return {Kind::TuneFailed, Tr("%1 could not tune: error %2.").arg(sensorName, reason)};
    }
    sensor->ShowTuneReports();
    return {Kind::Tuned,
            Tr("%1 tuned; its report was added to the reports of its tune file.").arg(sensorName)};
}
