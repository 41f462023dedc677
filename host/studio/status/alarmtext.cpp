// SPDX-License-Identifier: Apache-2.0
#include "alarmtext.h"

#include "winsockerror.h"

#include <QCoreApplication>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("AlarmText", text);
}
} // namespace

namespace AlarmText {

QString Value(double value, const std::wstring& unit) {
    if (unit == L"Pa")
        return QString::number(value, 'e', 2);
    if (unit == L"C")
        return QString::number(value, 'f', 1);
    return QString::number(value, 'g', 6);
}

QString Describe(const Alarm& alarm) {
    const QString name = QString::fromStdWString(alarm.name);
    const QString unit = QString::fromStdWString(alarm.unit);
    switch (alarm.kind) {
    case Alarm::Kind::ReadingHigh:
        return Tr("%1 %2 is above %3")
            .arg(name, Value(alarm.value, alarm.unit), Value(alarm.limit, alarm.unit));
    case Alarm::Kind::HeaterDeviation:
        return Tr("%1 at %2 %3, settled at %4 %3")
            .arg(name, Value(alarm.value, alarm.unit), unit, Value(alarm.limit, alarm.unit));
    case Alarm::Kind::NotReady:
        return Tr("not ready for %1 s (limit %2 s)").arg(qRound64(alarm.value)).arg(qRound64(alarm.limit));
    case Alarm::Kind::LinkLost:
        if (alarm.value != 0)
            return Tr("link lost: error %1")
                .arg(QString::fromStdWString(DescribeError(static_cast<int>(alarm.value))));
        return Tr("link lost");
    }
    return {};
}

QString Subject(const Alarm& alarm) {
    const QString name = QString::fromStdWString(alarm.name);
    switch (alarm.kind) {
    case Alarm::Kind::ReadingHigh:
        return Tr("%1 above %2").arg(name, Value(alarm.limit, alarm.unit));
    case Alarm::Kind::HeaterDeviation:
        return Tr("%1 away from %2 %3 where it settled")
            .arg(name, Value(alarm.limit, alarm.unit), QString::fromStdWString(alarm.unit));
    case Alarm::Kind::NotReady:
        return Tr("not ready");
    case Alarm::Kind::LinkLost:
        return Tr("link lost");
    }
    return {};
}

QString Change(const AlarmChange& change) {
    return change.raised ? Tr("alarm: %1").arg(Describe(change.alarm))
                         : Tr("alarm over: %1").arg(Subject(change.alarm));
}

} // namespace AlarmText
