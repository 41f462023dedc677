// SPDX-License-Identifier: Apache-2.0
#pragma once
// Alarms in the operator's words, for the status window, the log and the service report.
#include "alarmevaluator.h"

#include <QString>

namespace AlarmText {
// "Total MS Pressure (Pa) 2.50e-02 is above 1.00e-02", "Column at 162.0 C, settled at 150.0 C", ...
QString Describe(const Alarm& alarm);
// What the alarm is about, without the reading that raised it: "Total MS Pressure (Pa) above 1.00e-02".
QString Subject(const Alarm& alarm);
// "alarm: <description>" when it begins, "alarm over: <subject>" when it ends, for the log.
QString Change(const AlarmChange& change);
// A reading's value as the status shows numbers of its unit.
QString Value(double value, const std::wstring& unit);
} // namespace AlarmText
