// SPDX-License-Identifier: Apache-2.0
#pragma once
// The row table both method editors share: a QTableWidget whose rows the user adds, removes and moves
// with four buttons. Cell widgets (combo boxes) move with their rows.
#include <QTableWidget>

#include <functional>

class QComboBox;

// Selects the entry holding `value`, adding one with `text` when the combo box has none (a value that
// a newer file wrote survives an edit).
void SelectComboValue(QComboBox* combo, const QVariant& value, const QString& text);

class CEditableTable : public QTableWidget {
    Q_OBJECT
public:
    // `fillRow` puts the contents of a new row (its items and cell widgets) at the given index.
    CEditableTable(const QStringList& headers, std::function<void(int row)> fillRow,
                   QWidget* parent = nullptr);

    // Inserts a new row after the current one (at the end when none is current) and selects it.
    void AddRow();
    // Removes the current row; false when there is none.
    bool RemoveCurrentRow();
    // Moves the current row one place up (-1) or down (+1); false at the edge or without a current row.
    bool MoveCurrentRow(int delta);
    // Runs the row button `id` (IDC_VM_ADD, IDC_VM_REMOVE, IDC_VM_UP or IDC_VM_DOWN) and returns true;
    // false for any other id, which is the dialog's own.
    bool RunRowCommand(int id);

signals:
    void rowsChanged();

private:
    void SwapRows(int a, int b);

    std::function<void(int row)> m_fillRow;
};
