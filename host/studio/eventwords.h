// SPDX-License-Identifier: Apache-2.0
#pragma once
// Instrument and sensor notifications in the operator's words: "method finished: /Data/Run008.vxs",
// "backup ready: /Backup/x_backup.tgz". The event number goes to a detail an operator rarely needs.
#include <QString>

struct EventWords {
    QString text;   // what happened, without the instrument's name
    QString detail; // "event 1048882 (0x100132)"
};

EventWords DescribeSensorEvent(quint32 code, const QString& text);
