// SPDX-License-Identifier: Apache-2.0
#include "logpane.h"

#include <QDateTime>
#include <QFontDatabase>

#include <cstdio>

LogPane::LogPane(QWidget* parent) : QPlainTextEdit(parent) {
    setObjectName(QStringLiteral("logPane"));
    setReadOnly(true);
    setMaximumBlockCount(kMaxLines);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setPlaceholderText(tr("Nothing has happened yet."));
}

void LogPane::Append(const QString& line) {
    const QString stamped = QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss.zzz  ")) + line;
    appendPlainText(stamped);
    std::fprintf(stderr, "vexa-studio: %s\n", qUtf8Printable(stamped));
}
