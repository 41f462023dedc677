// SPDX-License-Identifier: Apache-2.0
#pragma once
// Everything the Service Module shows of one instrument, and the text file a service engineer gets:
// identity, configuration files, alarms and notifications of this session, and the logs' tails.
#include "alarmevaluator.h"

#include <QDateTime>
#include <QList>
#include <QString>

struct ServiceFile {
    QString path;  // on the instrument: "/hostname", "/Log/instrument.log"
    QString text;  // the content (a log: its last lines)
    int error = 0; // why it could not be read; 0 when read
};

struct ServiceNotification {
    QDateTime time;
    quint32 code = 0;
    QString text;
};

struct ServiceData {
    QString name;
    QString address;
    QString sensorType;
    QString state;
    QString serial;
    QString firmware;
    QList<ServiceFile> configuration;
    QList<ServiceFile> logs;
    QList<ServiceNotification> notifications;
    QList<AlarmChange> alarms;
};

namespace ServiceReport {
// The report's text, made at `made`.
QString Text(const ServiceData& data, const QDateTime& made);
// Writes the text through a temporary file; false with the reason in *problem.
bool Save(const QString& path, const QString& text, QString* problem);
// "not read: error 10057 (not connected)" for a file that could not be read.
QString FileProblem(int error);
} // namespace ServiceReport
