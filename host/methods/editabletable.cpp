// SPDX-License-Identifier: Apache-2.0
#include "editabletable.h"

#include "methodresource.h"

#include <QComboBox>
#include <QHeaderView>

void SelectComboValue(QComboBox* combo, const QVariant& value, const QString& text) {
    int index = combo->findData(value);
    if (index < 0) {
        combo->addItem(text, value);
        index = combo->count() - 1;
    }
    combo->setCurrentIndex(index);
}

CEditableTable::CEditableTable(const QStringList& headers, std::function<void(int row)> fillRow,
                               QWidget* parent)
    : QTableWidget(0, static_cast<int>(headers.size()), parent), m_fillRow(std::move(fillRow)) {
    setHorizontalHeaderLabels(headers);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    horizontalHeader()->setStretchLastSection(true);
    verticalHeader()->setVisible(false);
}

void CEditableTable::AddRow() {
    const int row = currentRow() < 0 ? rowCount() : currentRow() + 1;
    insertRow(row);
    m_fillRow(row);
    setCurrentCell(row, 0);
    emit rowsChanged();
}

bool CEditableTable::RemoveCurrentRow() {
    const int row = currentRow();
    if (row < 0)
        return false;
    removeRow(row);
    if (rowCount() > 0)
        setCurrentCell(std::min(row, rowCount() - 1), 0);
    emit rowsChanged();
    return true;
}

bool CEditableTable::MoveCurrentRow(int delta) {
    const int row = currentRow();
    const int target = row + delta;
    if (row < 0 || target < 0 || target >= rowCount())
        return false;
    SwapRows(row, target);
    setCurrentCell(target, 0);
    emit rowsChanged();
    return true;
}

// Items swap by taking them out; combo boxes keep their widgets and swap their choices, since a cell
// widget cannot be moved to another cell.
void CEditableTable::SwapRows(int a, int b) {
    for (int column = 0; column < columnCount(); ++column) {
        auto* comboA = qobject_cast<QComboBox*>(cellWidget(a, column));
        auto* comboB = qobject_cast<QComboBox*>(cellWidget(b, column));
        if (comboA && comboB) {
            const QVariant dataA = comboA->currentData();
            const QString textA = comboA->currentText();
            SelectComboValue(comboA, comboB->currentData(), comboB->currentText());
            SelectComboValue(comboB, dataA, textA);
            continue;
        }
        QTableWidgetItem* itemA = takeItem(a, column);
        QTableWidgetItem* itemB = takeItem(b, column);
        setItem(a, column, itemB);
        setItem(b, column, itemA);
    }
}

bool CEditableTable::RunRowCommand(int id) {
    switch (id) {
    case IDC_VM_ADD:
        AddRow();
        return true;
    case IDC_VM_REMOVE:
        RemoveCurrentRow();
        return true;
    case IDC_VM_UP:
    case IDC_VM_DOWN:
        MoveCurrentRow(id == IDC_VM_UP ? -1 : 1);
        return true;
    default:
        return false;
    }
}
