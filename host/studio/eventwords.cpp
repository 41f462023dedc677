// SPDX-License-Identifier: Apache-2.0
#include "eventwords.h"

#include "sensorevent.h"

#include <QCoreApplication>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("EventWords", text);
}

// "method finished /Data/Run008.vxs" -> "method finished: /Data/Run008.vxs"; the instrument's own
// words are kept, only the path is set apart.
QString MethodEnded(const QString& text) {
    for (const QString& verb : {QStringLiteral("method finished"), QStringLiteral("method stopped")}) {
        if (!text.startsWith(verb))
            continue;
        const QString rest = text.mid(verb.size()).trimmed();
        if (rest.isEmpty())
            return verb;
        if (text.at(verb.size()).isSpace())
            return verb + QStringLiteral(": ") + rest;
    }
    return text.isEmpty() ? Tr("method finished") : Tr("method finished: %1").arg(text);
}
} // namespace

EventWords DescribeSensorEvent(quint32 code, const QString& text) {
    EventWords words;
    words.detail = code >= 0x100 ? QStringLiteral("event %1 (0x%2)").arg(code).arg(code, 0, 16)
                                 : QStringLiteral("event %1").arg(code);
    const QString trimmed = text.trimmed();
    switch (code) {
    case kSensorEventOnline:
        words.text = Tr("link on line");
        break;
    case kSensorEventOffline:
        words.text = trimmed.isEmpty() ? Tr("link off line") : Tr("link off line (%1)").arg(trimmed);
        break;
    case kSensorEventBackup:
        words.text = trimmed.isEmpty() || trimmed == QStringLiteral("aborted")
                         ? Tr("backup aborted")
                         : Tr("backup ready: %1").arg(trimmed);
        break;
    case kSensorEventMethodEnded:
        words.text = MethodEnded(trimmed);
        break;
    default:
        words.text = trimmed.isEmpty() ? Tr("notification") : Tr("notification: %1").arg(trimmed);
        break;
    }
    return words;
}
