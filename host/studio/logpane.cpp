// SPDX-License-Identifier: Apache-2.0
#include "logpane.h"

#include "prompt.h"
#include "stdiofile.h"
#include "winsockerror.h"

#include <QDateTime>
#include <QDir>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <cstdio>

namespace {
enum Column { kColumnTime, kColumnText, kColumnDetail };
} // namespace

LogPane::LogPane(QWidget* parent) : QWidget(parent), m_lines(new QTreeWidget(this)) {
    setObjectName(QStringLiteral("logPane"));
    m_lines->setObjectName(QStringLiteral("logLines"));
    m_lines->setRootIsDecorated(false);
    m_lines->setUniformRowHeights(true);
    m_lines->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_lines->setHeaderLabels({tr("Time"), tr("What happened"), tr("Detail")});
    m_lines->header()->setStretchLastSection(false);
    m_lines->header()->setSectionResizeMode(kColumnTime, QHeaderView::ResizeToContents);
    m_lines->header()->setSectionResizeMode(kColumnText, QHeaderView::Stretch);
    m_lines->header()->setSectionResizeMode(kColumnDetail, QHeaderView::Interactive);
    m_lines->header()->resizeSection(kColumnDetail, 200);
    m_lines->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));

    auto* save = new QPushButton(tr("Save..."), this);
    save->setObjectName(QStringLiteral("logSave"));
    auto* clear = new QPushButton(tr("Clear"), this);
    clear->setObjectName(QStringLiteral("logClear"));
    connect(save, &QPushButton::clicked, this, &LogPane::SaveAs);
    connect(clear, &QPushButton::clicked, this, &LogPane::Clear);
    auto* buttons = new QVBoxLayout;
    buttons->addWidget(save);
    buttons->addWidget(clear);
    buttons->addStretch(1);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_lines, 1);
    layout->addLayout(buttons);
}

void LogPane::Append(const QString& line) {
    AppendWithDetail(line, {});
}

void LogPane::AppendWithDetail(const QString& line, const QString& detail) {
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("HH:mm:ss.zzz"));
    auto* item = new QTreeWidgetItem(QStringList{time, line, detail});
    item->setToolTip(kColumnText, detail.isEmpty() ? line : line + QStringLiteral("\n") + detail);
    if (m_lines->topLevelItemCount() >= kMaxLines)
        delete m_lines->takeTopLevelItem(0);
    const bool atEnd = m_lines->topLevelItemCount() == 0 ||
                       m_lines->visualItemRect(m_lines->topLevelItem(m_lines->topLevelItemCount() - 1))
                           .intersects(m_lines->viewport()->rect());
    m_lines->addTopLevelItem(item);
    // Follows new lines unless the operator scrolled back to read.
    if (atEnd)
        m_lines->scrollToItem(item);
    const QString text = detail.isEmpty() ? line : QStringLiteral("%1  [%2]").arg(line, detail);
    std::fprintf(stderr, "vexa-studio: %s  %s\n", qUtf8Printable(time), qUtf8Printable(text));
}

QString LogPane::Text() const {
    QStringList lines;
    for (int i = 0; i < m_lines->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_lines->topLevelItem(i);
        QString line = item->text(kColumnTime) + QStringLiteral("  ") + item->text(kColumnText);
        if (!item->text(kColumnDetail).isEmpty())
            line += QStringLiteral("  [%1]").arg(item->text(kColumnDetail));
        lines << line;
    }
    return lines.join(QLatin1Char('\n'));
}

int LogPane::LineCount() const {
    return m_lines->topLevelItemCount();
}

QString LogPane::Detail(int line) const {
    const QTreeWidgetItem* item = m_lines->topLevelItem(line);
    return item ? item->text(kColumnDetail) : QString();
}

bool LogPane::SaveTo(const QString& path, QString* error) const {
    const QByteArray bytes = (Text() + QLatin1Char('\n')).toUtf8();
    StdioFile file;
    const bool saved = file.Open(path.toStdWString(), L"wb") &&
                       file.Write(bytes.constData(), int(bytes.size())) == int(bytes.size()) && file.Close();
    if (!saved && error)
        *error = tr("error %1").arg(QString::fromStdWString(DescribeError(file.GetError())));
    return saved;
}

void LogPane::SaveAs() {
    const QString name = QStringLiteral("vexa-studio-%1.log")
                             .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-HHmmss")));
    const QString path = QFileDialog::getSaveFileName(this, tr("Save the log"), name,
                                                      tr("Log files (*.log *.txt);;All files (*)"));
    if (path.isEmpty())
        return;
    QString error;
    if (!SaveTo(path, &error)) {
        Prompt().Message(tr("The log could not be saved to %1: %2").arg(path, error).toStdWString(), {},
                         PromptIcon::Error, this);
        return;
    }
    Append(tr("Log saved to %1.").arg(QDir::toNativeSeparators(path)));
}

void LogPane::Clear() {
    m_lines->clear();
}
