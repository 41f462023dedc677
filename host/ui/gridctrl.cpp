// SPDX-License-Identifier: Apache-2.0
#include "gridctrl.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int kRowDataRole = Qt::UserRole;

} // namespace

CPXGridCtrl::CPXGridCtrl(QWidget* parent) : QTableWidget(parent) {
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setWordWrap(false);
    verticalHeader()->setVisible(false);
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setHighlightSections(false);
    connect(this, &QTableWidget::itemChanged, this, &CPXGridCtrl::OnItemChanged);
}

void CPXGridCtrl::DeleteAllColumns() {
    m_checks = nullptr;
    m_groups.clear();
    m_columns.clear();
    clear();
    setRowCount(0);
    setColumnCount(0);
}

int CPXGridCtrl::AddColumn(const std::wstring& title) {
    m_groups.push_back(QString::fromStdWString(title));
    return static_cast<int>(m_groups.size()) - 1;
}

int CPXGridCtrl::AddSubColumn(const std::wstring& title, int widthChars) {
    if (m_groups.empty())
        AddColumn();
    m_columns.push_back({static_cast<int>(m_groups.size()) - 1, QString::fromStdWString(title), widthChars});
    setColumnCount(GridColumn(GetColumnCount()));
    RebuildHeader();
    return GetColumnCount() - 1;
}

std::wstring CPXGridCtrl::GetColumnTitle(int column) const {
    if (column < 0 || column >= GetColumnCount())
        return {};
    return m_columns[column].title.toStdWString();
}

void CPXGridCtrl::RebuildHeader() {
    QStringList labels;
    if (m_checks)
        labels << QString();
    for (const ColumnInfo& column : m_columns) {
        const QString& group = m_groups[column.group];
        labels << (group.isEmpty() || group == column.title ? column.title
                                                            : group + QLatin1Char('\n') + column.title);
    }
    setHorizontalHeaderLabels(labels);
}

void CPXGridCtrl::MapDataToChecks(std::vector<uint8_t>* flags) {
    if (flags && !m_checks) {
        m_checks = flags;
        insertColumn(0);
    } else if (!flags && m_checks) {
        m_checks = nullptr;
        removeColumn(0);
    } else {
        m_checks = flags;
    }
    RebuildHeader();
    FillChecks();
}

void CPXGridCtrl::FillChecks() {
    if (!m_checks)
        return;
    m_fillingChecks = true;
    for (int row = 0; row < rowCount(); ++row) {
        QTableWidgetItem* check = item(row, 0);
        if (!check) {
            check = new QTableWidgetItem();
            setItem(row, 0, check);
        }
        const bool bound = row < static_cast<int>(m_checks->size());
        check->setFlags(bound ? Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable
                              : Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        if (bound)
            check->setCheckState((*m_checks)[row] ? Qt::Checked : Qt::Unchecked);
    }
    m_fillingChecks = false;
}

bool CPXGridCtrl::GetCheck(int row) const {
    return m_checks && row >= 0 && row < static_cast<int>(m_checks->size()) && (*m_checks)[row] != 0;
}

void CPXGridCtrl::SetCheck(int row, bool checked) {
    if (!m_checks || row < 0 || row >= static_cast<int>(m_checks->size()) || row >= rowCount())
        return;
    if (QTableWidgetItem* check = item(row, 0))
        check->setCheckState(checked ? Qt::Checked : Qt::Unchecked);
}

void CPXGridCtrl::OnItemChanged(QTableWidgetItem* changed) {
    if (m_fillingChecks || !m_checks || changed->column() != 0)
        return;
    const int row = changed->row();
    if (row < 0 || row >= static_cast<int>(m_checks->size()))
        return;
    const bool checked = changed->checkState() == Qt::Checked;
    if (((*m_checks)[row] != 0) == checked)
        return;
    (*m_checks)[row] = checked ? 1 : 0;
    emit checkChanged(row, checked);
}

void CPXGridCtrl::SetGridSize(int rows) {
    setRowCount(std::max(0, rows));
    FillChecks();
}

void CPXGridCtrl::SetCellText(int row, int column, const std::wstring& text) {
    if (row < 0 || row >= rowCount() || column < 0 || column >= GetColumnCount())
        return;
    const int gridColumn = GridColumn(column);
    QTableWidgetItem* cell = item(row, gridColumn);
    if (!cell) {
        cell = new QTableWidgetItem();
        cell->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        setItem(row, gridColumn, cell);
    }
    cell->setText(QString::fromStdWString(text));
}

std::wstring CPXGridCtrl::GetCellText(int row, int column) const {
    if (column < 0 || column >= GetColumnCount())
        return {};
    const QTableWidgetItem* cell = item(row, GridColumn(column));
    return cell ? cell->text().toStdWString() : std::wstring();
}

void CPXGridCtrl::SetRowData(int row, qintptr data) {
    if (row < 0 || row >= rowCount())
        return;
    QTableWidgetItem* header = verticalHeaderItem(row);
    if (!header) {
        header = new QTableWidgetItem();
        setVerticalHeaderItem(row, header);
    }
    header->setData(kRowDataRole, QVariant::fromValue<qlonglong>(data));
}

qintptr CPXGridCtrl::GetRowData(int row) const {
    const QTableWidgetItem* header = verticalHeaderItem(row);
    return header ? static_cast<qintptr>(header->data(kRowDataRole).toLongLong()) : -1;
}

void CPXGridCtrl::SelectCell(int row, int column) {
    if (row < 0 || row >= rowCount())
        return;
    setCurrentCell(row, GridColumn(std::clamp(column, 0, std::max(0, GetColumnCount() - 1))));
}

int CPXGridCtrl::GetSelectedRow() const {
    const QModelIndexList rows = selectionModel()->selectedRows();
    return rows.isEmpty() ? -1 : rows.front().row();
}

void CPXGridCtrl::AutoSizeColumns() {
    resizeColumnsToContents();
    const int charWidth = fontMetrics().averageCharWidth();
    for (int column = 0; column < GetColumnCount(); ++column) {
        const int least = m_columns[column].widthChars * charWidth + 12;
        const int gridColumn = GridColumn(column);
        if (columnWidth(gridColumn) < least)
            setColumnWidth(gridColumn, least);
    }
}

std::wstring CPXGridCtrl::HoverText(int row, int column) const {
    if (!m_hoverText || row < 0 || row >= rowCount())
        return {};
    return m_hoverText(row, column);
}

bool CPXGridCtrl::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QTableWidget::viewportEvent(event);
    auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex index = indexAt(help->pos());
    const QString text = index.isValid()
                             ? QString::fromStdWString(HoverText(index.row(), TextColumn(index.column())))
                             : QString();
    if (text.isEmpty()) {
        QToolTip::hideText();
        event->ignore();
    } else {
        QToolTip::showText(help->globalPos(), text, viewport(), visualRect(index));
    }
    return true;
}
