// SPDX-License-Identifier: Apache-2.0
#include "servicereport.h"

#include "alarmtext.h"
#include "winsockerror.h"

#include <QCoreApplication>
#include <QSaveFile>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("ServiceReport", text);
}

void Heading(QString& out, const QString& title) {
    out += QStringLiteral("\n== %1 ==\n").arg(title);
}

void Files(QString& out, const QList<ServiceFile>& files) {
    for (const ServiceFile& file : files) {
        out += QStringLiteral("\n--- %1 ---\n").arg(file.path);
        if (file.error != 0) {
            out += ServiceReport::FileProblem(file.error) + QLatin1Char('\n');
            continue;
        }
        out += file.text;
        if (!file.text.endsWith(QLatin1Char('\n')))
            out += QLatin1Char('\n');
    }
}
} // namespace

namespace ServiceReport {

QString FileProblem(int error) {
    return Tr("not read: error %1").arg(QString::fromStdWString(DescribeError(error)));
}

QString Text(const ServiceData& data, const QDateTime& made) {
    const auto orUnknown = [](const QString& text) { return text.isEmpty() ? Tr("unknown") : text; };
    QString out = Tr("Service report of %1, made %2\n").arg(data.name, made.toString(Qt::ISODate));
    Heading(out, Tr("Identity"));
    out += Tr("Name: %1\n").arg(data.name);
    out += Tr("Address: %1\n").arg(data.address);
    out += Tr("Sensor type: %1\n").arg(data.sensorType);
    out += Tr("State: %1\n").arg(data.state);
    out += Tr("Serial: %1\n").arg(orUnknown(data.serial));
    out += Tr("Firmware: %1\n").arg(orUnknown(data.firmware));
    Heading(out, Tr("Configuration"));
    Files(out, data.configuration);
    Heading(out, Tr("Alarms this session"));
    if (data.alarms.isEmpty())
        out += Tr("none\n");
    for (const AlarmChange& change : data.alarms)
        out += QStringLiteral("%1  %2\n")
                   .arg(QDateTime::fromMSecsSinceEpoch(change.timeMs).toString(Qt::ISODate),
                        AlarmText::Change(change));
    Heading(out, Tr("Notifications this session"));
    if (data.notifications.isEmpty())
        out += Tr("none\n");
    for (const ServiceNotification& notification : data.notifications)
        out += QStringLiteral("%1  %2  %3\n")
                   .arg(notification.time.toString(Qt::ISODate))
                   .arg(notification.code)
                   .arg(notification.text);
    Heading(out, Tr("Logs (last lines)"));
    if (data.logs.isEmpty())
        out += Tr("none\n");
    Files(out, data.logs);
    return out;
}

bool Save(const QString& path, const QString& text, QString* problem) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Text) || file.write(text.toUtf8()) < 0 ||
        !file.commit()) {
        *problem = file.errorString();
        return false;
    }
    return true;
}

} // namespace ServiceReport
