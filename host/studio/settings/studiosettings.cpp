// SPDX-License-Identifier: Apache-2.0
#include "studiosettings.h"

#include "registry.h"

#include <QCoreApplication>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("StudioSettings", text);
}

QList<SettingEntry> MakeEntries() {
    using Kind = SettingEntry::Kind;
    const QString programs = Tr("External programs");
    const QString methods = Tr("Method editor");
    const QString alarms = Tr("Status and alarms");
    const QString transfers = Tr("Transfers and data");
    const QString tune = Tr("Tune reports");
    const QString access = Tr("Access");
#ifdef _WIN32
    const QString safetyPage = QStringLiteral("C:\\NIOSHDBS\\start.htm");
#else
    const QString safetyPage = Tr("<data root>/NIOSHDBS/start.htm");
#endif
    const QString margins = Tr("Margins of printed tune reports.");
    // clang-format off
    return {
        {programs, "Programs", "Nist", Tr("NIST program:"), Kind::Program, {}, 0, 0,
         Tr("Started by the NIST tool (F8). Empty: not configured.")},
        {programs, "Programs", "NistArguments", Tr("NIST arguments:"), Kind::Text, "%1", 0, 0,
         Tr("The NIST program's command line; %1 is the spectrum file Data Review's F8 hands over (the NIST "
            "tool passes none).")},
        {programs, "Programs", "Amdis", Tr("AMDIS program:"), Kind::Program, {}, 0, 0,
         Tr("Started by the AMDIS tool (Shift+F8). Empty: not configured.")},
        {programs, "Programs", "AmdisArguments", Tr("AMDIS arguments:"), Kind::Text, "%1 %2", 0, 0,
         Tr("Arguments given to AMDIS; %1 and %2 are the two texts the tool passes (left out when empty).")},
        {programs, "Programs", "Opener", Tr("Page opener:"), Kind::Program, {}, 0, 0,
         Tr("Opens documents such as the safety database's page."), Tr("the desktop's own opener")},
        {programs, "Programs", "OpenerArguments", Tr("Opener arguments:"), Kind::Text, "%1", 0, 0,
         Tr("Arguments given to the opener; %1 is the document.")},
        {programs, "NIOSH", "Path", Tr("Safety database page:"), Kind::File, {}, 0, 0,
         Tr("The start page the Safety DB tool opens."), safetyPage},
        {methods, "Method", "WizardMode", Tr("Expert mode"), Kind::Flag, "0", 0, 1,
         Tr("The method editor shows every field of a method (expert) instead of the basic ones.")},
        {alarms, "Alarms", "Interval", Tr("Poll and alarm interval (ms):"), Kind::Integer, "1000", 100, 60000,
         Tr("How often each instrument's status is read, its trends extended and its alarms judged.")},
        {alarms, "Alarms", "TotalPressureHigh", Tr("Total MS pressure above (Pa):"), Kind::Number, "0.01", 1e-9, 1e6,
         Tr("A total mass-spectrometer pressure above this raises an alarm.")},
        {alarms, "Alarms", "HeaterDeviation", Tr("Heater deviation above (C):"), Kind::Number, "10", 0.1, 1000,
         Tr("A heater this far from where it settled raises an alarm (not while a method runs).")},
        {alarms, "Alarms", "HeaterSettle", Tr("Heater settles within (s):"), Kind::Integer, "60", 1, 3600,
         Tr("A heater has settled when its readings stayed within 1 C for this long.")},
        {alarms, "Alarms", "NotReadyLimit", Tr("Not ready for longer than (s):"), Kind::Integer, "600", 1, 86400,
         Tr("An instrument that is not ready for longer than this raises an alarm.")},
        {transfers, "Transfers", "Retries", Tr("Transfer retries:"), Kind::Integer, "3", 0, 100,
         Tr("How often a copy whose link failed is tried again once the instrument is back.")},
        {transfers, "Paths", "DataRoot", Tr("Data root folder:"), Kind::Folder, {}, 0, 0,
         Tr("Where each instrument's workstation folders live."), Tr("the per-user data folder's VexaSuite")},
        {tune, "Tune", "RemoveReportDays", Tr("Remove reports older than (days):"), Kind::Integer, "30", 1, 36500,
         Tr("The tune reports dialog offers to remove reports older than this.")},
        {tune, "Tune", "TopMargin", Tr("Top margin:"), Kind::Number, "1.0", 0, 20, margins},
        {tune, "Tune", "BottomMargin", Tr("Bottom margin:"), Kind::Number, "1.0", 0, 20, margins},
        {tune, "Tune", "LeftMargin", Tr("Left margin:"), Kind::Number, "1.25", 0, 20, margins},
        {tune, "Tune", "RightMargin", Tr("Right margin:"), Kind::Number, "1.25", 0, 20, margins},
        {tune, "Tune", "MarginUnit", Tr("Margins in centimetres"), Kind::Flag, "0", 0, 1,
         Tr("Off: the margins are in inches.")},
        {access, "Access", "Levels", Tr("Granted access levels:"), Kind::AccessLevels, "0,1", 0, 0,
         Tr("Level 0: service features; level 1: changing commands. Only a user with level 1 may change this.")},
    };
    // clang-format on
}
} // namespace

namespace StudioSettings {

const QList<SettingEntry>& Entries() {
    static const QList<SettingEntry> entries = MakeEntries();
    return entries;
}

const SettingEntry* Find(const QString& path) {
    for (const SettingEntry& entry : Entries()) {
        if (entry.Path() == path)
            return &entry;
    }
    return nullptr;
}

QString Value(const CPXRegistry& registry, const SettingEntry& entry) {
    const auto value = registry.GetString(entry.section.toStdWString(), entry.key.toStdWString());
    return value ? QString::fromStdWString(*value) : entry.defaultValue;
}

namespace {
double Number(const CPXRegistry& registry, const char* path) {
    const SettingEntry* entry = Find(QString::fromLatin1(path));
    bool ok = false;
    const double value = Value(registry, *entry).trimmed().toDouble(&ok);
    if (ok && value >= entry->minimum && value <= entry->maximum)
        return value;
    return entry->defaultValue.toDouble();
}
} // namespace

AlarmLimits ReadAlarmLimits(const CPXRegistry& registry) {
    AlarmLimits limits;
    limits.totalPressureHighPa = Number(registry, "Alarms/TotalPressureHigh");
    limits.heaterDeviationC = Number(registry, "Alarms/HeaterDeviation");
    limits.settleSeconds = static_cast<int>(Number(registry, "Alarms/HeaterSettle"));
    limits.notReadySeconds = static_cast<int>(Number(registry, "Alarms/NotReadyLimit"));
    return limits;
}

int ReadAlarmInterval(const CPXRegistry& registry) {
    return static_cast<int>(Number(registry, "Alarms/Interval"));
}

} // namespace StudioSettings
