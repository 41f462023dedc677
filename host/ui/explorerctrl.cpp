// SPDX-License-Identifier: Apache-2.0
#include "explorerctrl.h"

#include "fileinfo.h"
#include "filetext.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

namespace {

constexpr int kDataRole = Qt::UserRole;
// Rows drawn into a drag image at most; a long selection would make a huge picture.
constexpr int kMaxDragImageRows = 12;

} // namespace

CPXExplorerCtrl::CPXExplorerCtrl(QWidget* parent) : QTreeWidget(parent) {
    setColumnCount(3);
    setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Size"), QStringLiteral("Date")});
    headerItem()->setTextAlignment(kColumnSize, Qt::AlignRight | Qt::AlignVCenter);
    setRootIsDecorated(false);
    setItemsExpandable(false);
    setUniformRowHeights(true);
    setAllColumnsShowFocus(true);
    setSortingEnabled(false);
    setDragEnabled(false);
    setDragDropMode(QAbstractItemView::NoDragDrop);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);

    QHeaderView* head = header();
    head->setSectionsClickable(true);
    head->setSortIndicatorShown(true);
    head->setSortIndicator(kColumnName, Qt::AscendingOrder);
    head->setStretchLastSection(false);
    head->setSectionResizeMode(kColumnName, QHeaderView::Stretch);
    head->setSectionResizeMode(kColumnSize, QHeaderView::Interactive);
    head->setSectionResizeMode(kColumnDate, QHeaderView::Interactive);
    const QFontMetrics metrics(font());
    head->resizeSection(kColumnSize, metrics.horizontalAdvance(QStringLiteral("0,000,000,000")) + 16);
    head->resizeSection(kColumnDate, metrics.horizontalAdvance(QStringLiteral("0000-00-00 00:00")) + 16);
    connect(head, &QHeaderView::sectionClicked, this, &CPXExplorerCtrl::columnClicked);
    connect(head, &QHeaderView::sortIndicatorChanged, this, &CPXExplorerCtrl::OnSortIndicatorChanged);
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &CPXExplorerCtrl::OnSelectionChanged);

    m_folderIcon = style()->standardIcon(QStyle::SP_DirIcon, nullptr, this);
    m_fileIcon = style()->standardIcon(QStyle::SP_FileIcon, nullptr, this);

    m_slowClickTimer.setSingleShot(true);
    m_slowClickTimer.setInterval(QApplication::doubleClickInterval());
    connect(&m_slowClickTimer, &QTimer::timeout, this, [this] {
        if (m_slowClickRow >= 0 && m_slowClickRow < GetItemCount() &&
            topLevelItem(m_slowClickRow)->isSelected())
            StartLabelEdit(m_slowClickRow);
    });
}

void CPXExplorerCtrl::SetMultiSelect(bool multiple) {
    setSelectionMode(multiple ? QAbstractItemView::ExtendedSelection : QAbstractItemView::SingleSelection);
}

void CPXExplorerCtrl::EnableLabelEdit(bool enable) {
    m_labelEdit = enable;
    for (int row = 0; row < GetItemCount(); ++row) {
        QTreeWidgetItem* item = topLevelItem(row);
        item->setFlags(enable ? item->flags() | Qt::ItemIsEditable : item->flags() & ~Qt::ItemIsEditable);
    }
}

void CPXExplorerCtrl::DeleteAllItems() {
    m_slowClickTimer.stop();
    m_editRow = -1;
    m_committedText.reset();
    clear();
}

int CPXExplorerCtrl::AddItem(const FileInfo& entry, qintptr data) {
    const bool folder = entry.size < 0 || entry.IsFolder();
    return AddItem(entry.name, folder ? QString() : FormatFileSize(entry.size),
                   FormatFileTime(entry.GetTime()), folder, data);
}

int CPXExplorerCtrl::AddItem(const std::wstring& name, const QString& size, const QString& date, bool folder,
                             qintptr data) {
    auto* item = new QTreeWidgetItem();
    item->setText(kColumnName, QString::fromStdWString(name));
    item->setText(kColumnSize, size);
    item->setText(kColumnDate, date);
    item->setTextAlignment(kColumnSize, Qt::AlignRight | Qt::AlignVCenter);
    item->setIcon(kColumnName, folder ? m_folderIcon : m_fileIcon);
    item->setData(kColumnName, kDataRole, QVariant::fromValue<qlonglong>(data));
    Qt::ItemFlags flags = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    if (m_labelEdit)
        flags |= Qt::ItemIsEditable;
    item->setFlags(flags);
    addTopLevelItem(item);
    return GetItemCount() - 1;
}

void CPXExplorerCtrl::ResizeColumns() {
    for (int column = 0; column < columnCount(); ++column)
        resizeColumnToContents(column);
}

std::wstring CPXExplorerCtrl::GetItemText(int row, int column) const {
    const QTreeWidgetItem* item = topLevelItem(row);
    return item ? item->text(column).toStdWString() : std::wstring();
}

qintptr CPXExplorerCtrl::GetItemData(int row) const {
    const QTreeWidgetItem* item = topLevelItem(row);
    return item ? static_cast<qintptr>(item->data(kColumnName, kDataRole).toLongLong()) : -1;
}

int CPXExplorerCtrl::GetSelectedCount() const {
    return static_cast<int>(GetSelectedIndexes().size());
}

std::vector<int> CPXExplorerCtrl::GetSelectedIndexes() const {
    std::vector<int> rows;
    for (int row = 0; row < GetItemCount(); ++row) {
        if (topLevelItem(row)->isSelected())
            rows.push_back(row);
    }
    return rows;
}

std::vector<qintptr> CPXExplorerCtrl::GetSelectedItemData() const {
    std::vector<qintptr> data;
    for (int row : GetSelectedIndexes())
        data.push_back(GetItemData(row));
    return data;
}

void CPXExplorerCtrl::SelectItem(int row, bool select) {
    const QModelIndex index = model()->index(row, kColumnName);
    if (!index.isValid())
        return;
    selectionModel()->select(index, (select ? QItemSelectionModel::Select : QItemSelectionModel::Deselect) |
                                        QItemSelectionModel::Rows);
    if (select)
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
}

void CPXExplorerCtrl::ClearSelection() {
    clearSelection();
}

void CPXExplorerCtrl::SetSortIndicator(int column, bool descending) {
    m_sortColumn = column;
    m_sortDescending = descending;
    m_settingIndicator = true;
    header()->setSortIndicator(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
    m_settingIndicator = false;
}

void CPXExplorerCtrl::OnSortIndicatorChanged(int, Qt::SortOrder) {
    // The header flips its indicator by itself on a click; only the owner may change it.
    if (m_settingIndicator)
        return;
    SetSortIndicator(m_sortColumn, m_sortDescending);
}

bool CPXExplorerCtrl::EditLabel(int row) {
    return StartLabelEdit(row);
}

bool CPXExplorerCtrl::StartLabelEdit(int row) {
    m_slowClickTimer.stop();
    const QModelIndex index = model()->index(row, kColumnName);
    if (!m_labelEdit || !index.isValid() || m_editRow >= 0)
        return false;
    if (m_beginEdit && !m_beginEdit(row))
        return false;
    m_editRow = row;
    m_committedText.reset();
    setCurrentIndex(index);
    if (!QTreeWidget::edit(index, QAbstractItemView::AllEditTriggers, nullptr)) {
        m_editRow = -1;
        return false;
    }
    return true;
}

bool CPXExplorerCtrl::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    // Without a trigger the base only passes the event to the delegate.
    if (trigger == QAbstractItemView::NoEditTriggers)
        return QTreeWidget::edit(index, trigger, event);
    if (!m_labelEdit || !index.isValid() || !(editTriggers() & trigger))
        return false;
    if (trigger == QAbstractItemView::SelectedClicked) {
        if (m_ignoreSelectedClick) {
            m_ignoreSelectedClick = false;
            return false;
        }
        m_slowClickRow = index.row();
        m_slowClickTimer.start();
        return true;
    }
    return StartLabelEdit(index.row());
}

void CPXExplorerCtrl::commitData(QWidget* editor) {
    // The owner renames and refills; the row keeps its text unless the end handler accepts the new one.
    if (auto* line = qobject_cast<QLineEdit*>(editor))
        m_committedText = line->text();
}

void CPXExplorerCtrl::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    const int row = m_editRow;
    std::optional<QString> text = std::move(m_committedText);
    m_editRow = -1;
    m_committedText.reset();
    QTreeWidget::closeEditor(editor, hint);
    if (row < 0)
        return;
    std::optional<std::wstring> newText;
    if (text)
        newText = text->toStdWString();
    const bool keep = m_endEdit ? m_endEdit(row, newText) : false;
    if (keep && text && row < GetItemCount())
        topLevelItem(row)->setText(kColumnName, *text);
}

int CPXExplorerCtrl::RowAt(const QPoint& viewportPos) const {
    QTreeWidgetItem* item = itemAt(viewportPos);
    return item ? indexOfTopLevelItem(item) : -1;
}

void CPXExplorerCtrl::mousePressEvent(QMouseEvent* event) {
    m_ignoreSelectedClick = false;
    m_dragging = false;
    m_slowClickTimer.stop();
    // A right press beside the rows keeps the selection: the context menu that follows acts on it.
    if (event->button() == Qt::RightButton && RowAt(event->position().toPoint()) < 0) {
        event->accept();
        return;
    }
    QTreeWidget::mousePressEvent(event);
    m_pressPos = event->position().toPoint();
    const int row = RowAt(m_pressPos);
    m_pressOnSelected = event->button() == Qt::LeftButton && row >= 0 && topLevelItem(row)->isSelected();
}

void CPXExplorerCtrl::mouseMoveEvent(QMouseEvent* event) {
    const QPoint global = event->globalPosition().toPoint();
    if (m_dragging) {
        emit dragMoved(global);
        return;
    }
    if (m_pressOnSelected && (event->buttons() & Qt::LeftButton)) {
        // A press on the selection drags it; it never starts a rubber-band selection.
        if ((event->position().toPoint() - m_pressPos).manhattanLength() >=
            QApplication::startDragDistance()) {
            m_dragging = true;
            m_slowClickTimer.stop();
            emit beginDrag(viewport()->mapToGlobal(m_pressPos));
            emit dragMoved(global);
        }
        return;
    }
    QTreeWidget::mouseMoveEvent(event);
}

void CPXExplorerCtrl::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint global = event->globalPosition().toPoint();
    if (m_dragging && event->button() == Qt::LeftButton) {
        // The selection stays as it was when the drag began.
        m_dragging = false;
        m_pressOnSelected = false;
        emit dragDropped(global);
        return;
    }
    m_pressOnSelected = false;
    const int row = RowAt(event->position().toPoint());
    QTreeWidget::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton)
        emit itemClick(row, global);
    else if (event->button() == Qt::RightButton)
        emit itemRightClick(row, global);
}

void CPXExplorerCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
    m_slowClickTimer.stop();
    QTreeWidget::mouseDoubleClickEvent(event);
    // The release that ends a double click must not start an in-place edit.
    m_ignoreSelectedClick = true;
    if (event->button() == Qt::LeftButton)
        emit itemDoubleClick(RowAt(event->position().toPoint()), event->globalPosition().toPoint());
}

void CPXExplorerCtrl::contextMenuEvent(QContextMenuEvent* event) {
    // The mouse's right click is reported on release; only the keyboard's menu key arrives here.
    event->accept();
    if (event->reason() != QContextMenuEvent::Keyboard)
        return;
    const int row = currentIndex().isValid() ? currentIndex().row() : -1;
    QPoint global = event->globalPos();
    if (row >= 0)
        global = viewport()->mapToGlobal(visualItemRect(topLevelItem(row)).center());
    emit itemRightClick(row, global);
}

void CPXExplorerCtrl::OnSelectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    for (const QModelIndex& index : selected.indexes()) {
        if (index.column() == kColumnName)
            emit itemStateChanged(index.row(), true);
    }
    for (const QModelIndex& index : deselected.indexes()) {
        if (index.column() == kColumnName)
            emit itemStateChanged(index.row(), false);
    }
}

QPixmap CPXExplorerCtrl::CreateDragImageEx() const {
    std::vector<int> rows = GetSelectedIndexes();
    if (rows.empty())
        return {};
    if (rows.size() > kMaxDragImageRows)
        rows.resize(kMaxDragImageRows);
    const int width = header()->length();
    int rowHeight = visualItemRect(topLevelItem(rows.front())).height();
    if (rowHeight <= 0)
        rowHeight = fontMetrics().height() + 4;
    const qreal ratio = devicePixelRatioF();
    QPixmap image(QSize(width, rowHeight * static_cast<int>(rows.size())) * ratio);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    for (size_t i = 0; i < rows.size(); ++i) {
        for (int column = 0; column < columnCount(); ++column) {
            const QModelIndex index = model()->index(rows[i], column);
            QStyleOptionViewItem option;
            initViewItemOption(&option);
            option.rect = QRect(header()->sectionPosition(column), static_cast<int>(i) * rowHeight,
                                header()->sectionSize(column), rowHeight);
            option.state |= QStyle::State_Selected;
            itemDelegateForIndex(index)->paint(&painter, option, index);
        }
    }
    return image;
}
