// SPDX-License-Identifier: Apache-2.0
#include "statuspanel.h"

#include "sensorobject.h"

#include <QApplication>
#include <QHeaderView>
#include <QLabel>
#include <QStackedWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
enum Column { kColumnLabel, kColumnValue };
} // namespace

StatusPanel::StatusPanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("statusPanel"));
    m_tree = new QTreeWidget(this);
    m_tree->setObjectName(QStringLiteral("statusTree"));
    m_tree->setColumnCount(2);
    m_tree->setHeaderLabels({tr("Reading"), tr("Value")});
    m_tree->setRootIsDecorated(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setSelectionMode(QAbstractItemView::NoSelection);
    m_tree->setFocusPolicy(Qt::StrongFocus);
    m_tree->header()->setSectionResizeMode(kColumnLabel, QHeaderView::ResizeToContents);
    m_tree->header()->setStretchLastSection(true);

    m_placeholder = new QLabel(this);
    m_placeholder->setObjectName(QStringLiteral("statusPlaceholder"));
    m_placeholder->setAlignment(Qt::AlignCenter);
    m_placeholder->setWordWrap(true);
    // Drawn in the placeholder colour: a hint, not data.
    QPalette hint = m_placeholder->palette();
    hint.setColor(QPalette::WindowText, hint.color(QPalette::PlaceholderText));
    m_placeholder->setPalette(hint);
    m_placeholder->setFocusPolicy(Qt::StrongFocus);

    m_pages = new QStackedWidget(this);
    m_pages->addWidget(m_placeholder);
    m_pages->addWidget(m_tree);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_pages, 1);
    ShowPlaceholder(tr("Select an instrument to see its status."));
}

QString StatusPanel::PlaceholderText() const {
    return m_pages->currentWidget() == m_placeholder ? m_placeholder->text() : QString();
}

void StatusPanel::Refresh(ISensorObject* sensor, const QString& caption, const QString& away) {
    if (!sensor) {
        SetCaption(tr("Status"));
        ShowPlaceholder(tr("Select an instrument to see its status."));
        return;
    }
    SetCaption(tr("Status of %1").arg(caption));
    if (!away.isEmpty() && sensor->GetSensorState() != kSensorOnline) {
        ShowPlaceholder(tr("%1 is away: it stopped answering.\n%2\nIts status comes back here by itself when "
                           "it returns.")
                            .arg(caption, away));
        return;
    }
    switch (sensor->GetSensorState()) {
    case kSensorOnline:
        FillSections(*sensor);
        return;
    case kSensorConnecting:
        ShowPlaceholder(tr("Connecting to %1 ...").arg(caption));
        return;
    default:
        ShowPlaceholder(tr("%1 is off line. Take it on line to see its status.").arg(caption));
        return;
    }
}

void StatusPanel::SetCaption(const QString& caption) {
    if (caption == m_captionText)
        return;
    m_captionText = caption;
    emit captionChanged(caption);
}

void StatusPanel::ShowPlaceholder(const QString& text) {
    m_placeholder->setText(text);
    ShowPage(m_placeholder);
}

// Focus given to the panel goes to the page on show, and stays in the panel when the page changes.
void StatusPanel::ShowPage(QWidget* page) {
    if (m_pages->currentWidget() == page && focusProxy() == page)
        return;
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    m_pages->setCurrentWidget(page);
    setFocusProxy(page);
    if (hadFocus)
        page->setFocus();
}

QTreeWidgetItem* StatusPanel::SectionItem(int section) {
    if (section < m_tree->topLevelItemCount())
        return m_tree->topLevelItem(section);
    auto* item = new QTreeWidgetItem(m_tree);
    QFont font = item->font(kColumnLabel);
    font.setBold(true);
    item->setFont(kColumnLabel, font);
    item->setFirstColumnSpanned(true);
    item->setExpanded(true);
    return item;
}

// Items are updated in place so that scrolling and collapsed sections survive each refresh.
void StatusPanel::FillSections(ISensorObject& sensor) {
    const int sections = qMax(0, sensor.GetStatusSectionCount());
    while (m_tree->topLevelItemCount() > sections)
        delete m_tree->takeTopLevelItem(m_tree->topLevelItemCount() - 1);
    for (int section = 0; section < sections; ++section) {
        QTreeWidgetItem* sectionItem = SectionItem(section);
        sectionItem->setText(kColumnLabel, QString::fromStdWString(sensor.GetStatusSectionTitle(section)));
        const int lines = qMax(0, sensor.GetStatusLineCount(section));
        while (sectionItem->childCount() > lines)
            delete sectionItem->takeChild(sectionItem->childCount() - 1);
        for (int line = 0; line < lines; ++line) {
            QTreeWidgetItem* lineItem = line < sectionItem->childCount() ? sectionItem->child(line)
                                                                         : new QTreeWidgetItem(sectionItem);
            const QString label = QString::fromStdWString(sensor.GetStatusLabel(section, line));
            const QString value = QString::fromStdWString(sensor.GetStatusValue(section, line));
            if (lineItem->text(kColumnLabel) != label)
                lineItem->setText(kColumnLabel, label);
            if (lineItem->text(kColumnValue) != value)
                lineItem->setText(kColumnValue, value);
        }
    }
    ShowPage(m_tree);
}
