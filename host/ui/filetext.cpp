// SPDX-License-Identifier: Apache-2.0
#include "filetext.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

namespace {

QLocale GroupingLocale() {
    QLocale locale;
    locale.setNumberOptions(locale.numberOptions() & ~QLocale::OmitGroupSeparator);
    return locale;
}

} // namespace

QString FormatFileSize(int64_t bytes) {
    if (bytes < 0)
        return {};
    return GroupingLocale().toString(static_cast<qlonglong>(bytes));
}

QString FormatFileTime(int64_t microseconds) {
    if (microseconds == 0)
        return {};
    const QDateTime time = QDateTime::fromMSecsSinceEpoch(microseconds / 1000, Qt::UTC).toLocalTime();
    return time.toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString FormatByteAmount(int64_t bytes) {
    if (bytes < 1024)
        return QStringLiteral("%1 bytes").arg(bytes);
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString QtFileFilter(const std::wstring& filter) {
    const QStringList parts = QString::fromStdWString(filter).split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i].trimmed();
        const QString patterns = parts[i + 1].split(';', Qt::SkipEmptyParts).join(' ').simplified();
        if (description.isEmpty() || patterns.isEmpty())
            continue;
        // Qt reads the patterns from the last parentheses: replace the description's own list.
        const qsizetype open = description.lastIndexOf(" (");
        if (open > 0 && description.endsWith(')'))
            description.truncate(open);
        filters << description + " (" + patterns + ")";
    }
    return filters.join(";;");
}
