// SPDX-License-Identifier: Apache-2.0
#pragma once
// Every value the studio and the modules it loads read from the settings file, with its default: the
// one table the settings dialog shows and the readers below use. GUI thread.
#include "alarmevaluator.h"

#include <QList>
#include <QString>

class CPXRegistry;

struct SettingEntry {
    enum class Kind { Text, Program, Folder, File, Integer, Number, Flag, AccessLevels };
    QString group;   // the dialog's group box
    QString section; // "Alarms"
    QString key;     // "Interval"
    QString label;
    Kind kind = Kind::Text;
    QString defaultValue; // the text the readers fall back to; empty for "none"
    double minimum = 0;
    double maximum = 0;
    QString help; // the tooltip: what the value means and its unit
    // Says what an empty value stands for when that is not a fixed text.
    QString defaultNote;

    // "Alarms/Interval": also the dialog's widget name for the entry.
    QString Path() const { return section + QLatin1Char('/') + key; }
};

namespace StudioSettings {
// All entries, grouped in the order the dialog shows them.
const QList<SettingEntry>& Entries();
// The entry of that section/key; null when none.
const SettingEntry* Find(const QString& path);

// The value as the readers see it: the file's text, else the default.
QString Value(const CPXRegistry& registry, const SettingEntry& entry);

AlarmLimits ReadAlarmLimits(const CPXRegistry& registry);
// How often each instrument is polled and judged, in ms.
int ReadAlarmInterval(const CPXRegistry& registry);
} // namespace StudioSettings
