#include "filetext.h"

#include <QDateTime>
#include <QLocale>

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
