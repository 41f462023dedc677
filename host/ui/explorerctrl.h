// SPDX-License-Identifier: Apache-2.0
#pragma once
// The file list of a file pane: one row per entry with Name, Size and Date, folder and file icons.
// The control only shows and reports; the owner decides everything:
// - sorting: a header click emits columnClicked; the owner sorts its list, refills, and calls
//   SetSortIndicator. The control never reorders rows itself.
// - in-place rename (F2 or a click on a selected name): the begin handler may refuse; the end handler
//   receives the new text, or none when the user pressed Escape, and says whether to keep it.
// - dragging: pressing a selected row and moving beyond the platform's drag distance emits beginDrag,
//   then dragMoved and dragDropped while the button stays down. Qt's own drag and drop is not used.
// Each row's data is the caller's index of the entry in its own list.
#include <QIcon>
#include <QPixmap>
#include <QTimer>
#include <QTreeWidget>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

class FileInfo;

class CPXExplorerCtrl : public QTreeWidget {
    Q_OBJECT
public:
    enum Column { kColumnName = 0, kColumnSize = 1, kColumnDate = 2 };
    // Returns false to refuse the edit of that row.
    using BeginLabelEditHandler = std::function<bool(int row)>;
    // `text` is empty (no value) when the edit was cancelled; returns true to keep the new text.
    using EndLabelEditHandler = std::function<bool(int row, const std::optional<std::wstring>& text)>;

    explicit CPXExplorerCtrl(QWidget* parent = nullptr);

    void SetMultiSelect(bool multiple);
    void EnableLabelEdit(bool enable);
    void SetBeginLabelEditHandler(BeginLabelEditHandler handler) { m_beginEdit = std::move(handler); }
    void SetEndLabelEditHandler(EndLabelEditHandler handler) { m_endEdit = std::move(handler); }

    // ---- rows ----
    void DeleteAllItems();
    // Appends a row for an entry (a negative size or the folder flag shows a folder); returns its row.
    int AddItem(const FileInfo& entry, qintptr data);
    int AddItem(const std::wstring& name, const QString& size, const QString& date, bool folder,
                qintptr data);
    int GetItemCount() const { return topLevelItemCount(); }
    // Fits the columns to their contents after a fill.
    void ResizeColumns();
    std::wstring GetItemText(int row, int column = kColumnName) const;
    qintptr GetItemData(int row) const;

    // ---- selection ----
    int GetSelectedCount() const;
    // Selected rows, in row order.
    std::vector<int> GetSelectedIndexes() const;
    // The data of the selected rows, in row order.
    std::vector<qintptr> GetSelectedItemData() const;
    void SelectItem(int row, bool select);
    void ClearSelection();

    // ---- sort indicator, owned by the caller ----
    void SetSortIndicator(int column, bool descending);
    int SortColumn() const { return m_sortColumn; }
    bool SortDescending() const { return m_sortDescending; }

    using QTreeWidget::edit;
    // Starts the in-place edit of a row's name, through the begin handler.
    bool EditLabel(int row);
    bool IsEditingLabel() const { return m_editRow >= 0; }

    // The selected rows as they look on screen, stacked, for dragging. Null when nothing is selected.
    QPixmap CreateDragImageEx() const;

    // The row at a point in viewport co-ordinates, -1 for none.
    int RowAt(const QPoint& viewportPos) const;

signals:
    void columnClicked(int column);
    // A row's selection changed; one signal per row, so the owner can defer its work.
    void itemStateChanged(int row, bool selected);
    // Rows are -1 when the click was not on a row. Positions are global.
    void itemClick(int row, const QPoint& globalPos);
    void itemDoubleClick(int row, const QPoint& globalPos);
    void itemRightClick(int row, const QPoint& globalPos);
    void beginDrag(const QPoint& globalPos);
    void dragMoved(const QPoint& globalPos);
    void dragDropped(const QPoint& globalPos);

protected:
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void commitData(QWidget* editor) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    void OnSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected);
    void OnSortIndicatorChanged(int column, Qt::SortOrder order);
    // Asks the begin handler and opens the editor of the row's name.
    bool StartLabelEdit(int row);

    BeginLabelEditHandler m_beginEdit;
    EndLabelEditHandler m_endEdit;
    bool m_labelEdit = true;
    int m_editRow = -1;
    QTimer m_slowClickTimer; // a click on a selected name edits it unless a double click follows
    int m_slowClickRow = -1;
    bool m_ignoreSelectedClick = false;
    std::optional<QString> m_committedText;

    int m_sortColumn = kColumnName;
    bool m_sortDescending = false;
    bool m_settingIndicator = false;

    QPoint m_pressPos; // viewport co-ordinates
    bool m_pressOnSelected = false;
    bool m_dragging = false;

    QIcon m_folderIcon;
    QIcon m_fileIcon;
};
