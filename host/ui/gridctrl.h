// SPDX-License-Identifier: Apache-2.0
#pragma once
// A read-only grid of texts. Columns come in groups: AddColumn starts a group and AddSubColumn adds
// the columns under it; a group's title heads its sub-columns ("Group" over "Sub"). An optional check
// column (always the first) is bound to the caller's flags: a toggle writes the flag at once.
// Column numbers in this interface count the text columns only, from 0; the check column is apart.
// Hovering a cell asks the hover-text handler for its tooltip.
#include <QTableWidget>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class CPXGridCtrl : public QTableWidget {
    Q_OBJECT
public:
    // The tooltip of a cell (column -1: the check column); empty for none.
    using HoverTextHandler = std::function<std::wstring(int row, int column)>;

    explicit CPXGridCtrl(QWidget* parent = nullptr);

    // ---- columns ----
    // Removes every column (the check column and its binding too) and every row.
    void DeleteAllColumns();
    // Starts a group of columns; returns the group's number.
    int AddColumn(const std::wstring& title = {});
    // Adds a column to the last group (starting an untitled group when there is none). `widthChars` is
    // the least width, in average characters. Returns the column's number.
    int AddSubColumn(const std::wstring& title, int widthChars = 0);
    int GetColumnCount() const { return static_cast<int>(m_columns.size()); }
    std::wstring GetColumnTitle(int column) const;

    // ---- check column ----
    // Binds the check column to `flags` (one per row, non-zero = checked); null removes the column.
    // The vector must outlive the binding; rows beyond its end show no check.
    void MapDataToChecks(std::vector<uint8_t>* flags);
    bool HasCheckColumn() const { return m_checks != nullptr; }
    bool GetCheck(int row) const;
    // Sets the check and the flag, as a click would.
    void SetCheck(int row, bool checked);

    // ---- rows and cells ----
    void SetGridSize(int rows);
    int GetRowCount() const { return rowCount(); }
    void SetCellText(int row, int column, const std::wstring& text);
    std::wstring GetCellText(int row, int column) const;
    void SetRowData(int row, qintptr data);
    qintptr GetRowData(int row) const;
    void SelectCell(int row, int column);
    // The selected row, -1 for none.
    int GetSelectedRow() const;

    // Fits each column to its title and contents, never narrower than its least width.
    void AutoSizeColumns();

    void SetHoverTextHandler(HoverTextHandler handler) { m_hoverText = std::move(handler); }
    // What the handler says for a cell (also what the tooltip shows).
    std::wstring HoverText(int row, int column) const;

signals:
    void checkChanged(int row, bool checked);

protected:
    bool viewportEvent(QEvent* event) override;

private:
    struct ColumnInfo {
        int group;
        QString title;
        int widthChars;
    };
    int GridColumn(int column) const { return column + (m_checks ? 1 : 0); }
    int TextColumn(int gridColumn) const { return gridColumn - (m_checks ? 1 : 0); }
    void RebuildHeader();
    void FillChecks();
    void OnItemChanged(QTableWidgetItem* item);

    std::vector<QString> m_groups;
    std::vector<ColumnInfo> m_columns;
    std::vector<uint8_t>* m_checks = nullptr;
    bool m_fillingChecks = false;
    HoverTextHandler m_hoverText;
};
