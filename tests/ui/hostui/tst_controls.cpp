// SPDX-License-Identifier: Apache-2.0
// The file pane's list, the drive box, the grid with its check column and the no-focus button.
#include "drivebox.h"
#include "explorerctrl.h"
#include "fileinfo.h"
#include "gridctrl.h"
#include "nofocusbutton.h"

#include <QApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QToolTip>
#include <QtTest>

namespace {

FileInfo Entry(const wchar_t* name, int32_t size, bool folder = false) {
    FileInfo entry;
    entry.name = name;
    entry.size = size;
    entry.attrib = folder ? uint32_t(kFileAttrFolder) : 0u;
    entry.times[2] = 1'700'000'000'000'000;
    return entry;
}

// A list with "..", one folder and three files, shown so that geometry and events are real.
struct ShownExplorer {
    CPXExplorerCtrl list;
    ShownExplorer() {
        list.resize(500, 300);
        const FileInfo entries[] = {Entry(L"..", -1, true), Entry(L"Methods", -1, true), Entry(L"a.txt", 10),
                                    Entry(L"b.vxs", 2048), Entry(L"c.mth", 999)};
        int index = 0;
        for (const FileInfo& entry : entries)
            list.AddItem(entry, index++);
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
    }
    QPoint RowCenter(int row) const { return list.visualItemRect(list.topLevelItem(row)).center(); }
};

void SendMouse(QWidget* target, QEvent::Type type, const QPoint& pos, Qt::MouseButton button,
               Qt::MouseButtons buttons) {
    QMouseEvent event(type, pos, target->mapToGlobal(pos), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

// The open in-place editor of a row's name.
QLineEdit* EditorOf(CPXExplorerCtrl& list, int row) {
    return qobject_cast<QLineEdit*>(list.indexWidget(list.model()->index(row, 0)));
}

std::vector<int> Rows(std::initializer_list<int> rows) {
    return std::vector<int>(rows);
}

} // namespace

class ControlsTest : public QObject {
    Q_OBJECT
private slots:
    void explorerShowsEntries();
    void explorerLeavesSortingToTheOwner();
    void explorerReportsSelectionPerRow();
    void explorerLabelEditThroughHandlers();
    void explorerDragsTheSelection();
    void explorerReportsClicks();
    void driveBoxSelectsLongestRoot_data();
    void driveBoxSelectsLongestRoot();
    void driveBoxInstrumentEntry();
    void gridCheckColumnWritesFlags();
    void gridColumnsAndHoverText();
    void noFocusButtonKeepsFocusElsewhere();
};

void ControlsTest::explorerShowsEntries() {
    ShownExplorer pane;
    CPXExplorerCtrl& list = pane.list;
    QCOMPARE(list.GetItemCount(), 5);
    QCOMPARE(list.GetItemText(1), std::wstring(L"Methods"));
    QCOMPARE(list.GetItemText(1, CPXExplorerCtrl::kColumnSize), std::wstring()); // folders have no size
    QCOMPARE(list.GetItemText(3, CPXExplorerCtrl::kColumnSize), std::wstring(L"2,048"));
    QVERIFY(!list.GetItemText(3, CPXExplorerCtrl::kColumnDate).empty());
    QCOMPARE(list.GetItemData(4), qintptr(4));
    QCOMPARE(list.GetItemData(99), qintptr(-1));
    QVERIFY(list.topLevelItem(1)->icon(0).cacheKey() != list.topLevelItem(2)->icon(0).cacheKey());
    list.DeleteAllItems();
    QCOMPARE(list.GetItemCount(), 0);
}

void ControlsTest::explorerLeavesSortingToTheOwner() {
    ShownExplorer pane;
    CPXExplorerCtrl& list = pane.list;
    QSignalSpy clicked(&list, &CPXExplorerCtrl::columnClicked);
    QHeaderView* header = list.header();
    const QPoint sizeHeader(header->sectionViewportPosition(1) + header->sectionSize(1) / 2,
                            header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, sizeHeader);
    QCOMPARE(clicked.size(), 1);
    QCOMPARE(clicked.front().front().toInt(), 1);
    // The click changed neither the rows nor the indicator: the owner has not decided yet.
    QCOMPARE(list.GetItemText(0), std::wstring(L".."));
    QCOMPARE(list.GetItemText(4), std::wstring(L"c.mth"));
    QCOMPARE(header->sortIndicatorSection(), 0);
    QCOMPARE(header->sortIndicatorOrder(), Qt::AscendingOrder);

    list.SetSortIndicator(1, true);
    QCOMPARE(header->sortIndicatorSection(), 1);
    QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, sizeHeader);
    QCOMPARE(clicked.size(), 2);
    QCOMPARE(header->sortIndicatorOrder(), Qt::DescendingOrder);
    QCOMPARE(list.SortColumn(), 1);
    QVERIFY(list.SortDescending());
}

void ControlsTest::explorerReportsSelectionPerRow() {
    ShownExplorer pane;
    CPXExplorerCtrl& list = pane.list;
    QSignalSpy changed(&list, &CPXExplorerCtrl::itemStateChanged);
    list.SelectItem(2, true);
    list.SelectItem(4, true);
    QCOMPARE(list.GetSelectedCount(), 2);
    QCOMPARE(list.GetSelectedIndexes(), Rows({2, 4}));
    QCOMPARE(list.GetSelectedItemData(), std::vector<qintptr>({2, 4}));
    QCOMPARE(changed.size(), 2);

    // A plain click on another row: two rows leave the selection, one joins; one signal each.
    changed.clear();
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, pane.RowCenter(3));
    QCOMPARE(list.GetSelectedIndexes(), Rows({3}));
    QCOMPARE(changed.size(), 3);
    int selectedSignals = 0;
    for (const QList<QVariant>& signal : changed)
        selectedSignals += signal.at(1).toBool() ? 1 : 0;
    QCOMPARE(selectedSignals, 1);

    list.SetMultiSelect(false);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, Qt::ControlModifier, pane.RowCenter(1));
    QCOMPARE(list.GetSelectedIndexes(), Rows({1}));
}

void ControlsTest::explorerLabelEditThroughHandlers() {
    ShownExplorer pane;
    CPXExplorerCtrl& list = pane.list;
    bool allow = false;
    std::vector<int> asked;
    std::vector<std::optional<std::wstring>> ended;
    list.SetBeginLabelEditHandler([&](int row) {
        asked.push_back(row);
        return allow;
    });
    list.SetEndLabelEditHandler([&](int, const std::optional<std::wstring>& text) {
        ended.push_back(text);
        return false; // the owner renames and refills
    });

    // Refused: by EditLabel, by F2, and by a slow second click on the selected name.
    QVERIFY(!list.EditLabel(2));
    list.SelectItem(2, true);
    list.setFocus();
    QTest::keyClick(&list, Qt::Key_F2);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, pane.RowCenter(2));
    QTRY_COMPARE(asked.size(), size_t(3));
    QVERIFY(!list.IsEditingLabel());
    QVERIFY(ended.empty());
    QCOMPARE(asked, std::vector<int>({2, 2, 2}));

    // Accepted: Enter hands over the new text; the row keeps its name until the owner refills.
    allow = true;
    QVERIFY(list.EditLabel(2));
    QVERIFY(list.IsEditingLabel());
    auto* editor = EditorOf(list, 2);
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, QStringLiteral("renamed.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(ended.size(), size_t(1));
    QCOMPARE(ended[0], std::optional<std::wstring>(L"renamed.txt"));
    QCOMPARE(list.GetItemText(2), std::wstring(L"a.txt"));
    QVERIFY(!list.IsEditingLabel());

    // Escape ends the edit without a text.
    QVERIFY(list.EditLabel(3));
    editor = EditorOf(list, 3);
    QVERIFY(editor);
    QTest::keyClicks(editor, QStringLiteral("zzz"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QTRY_COMPARE(ended.size(), size_t(2));
    QVERIFY(!ended[1].has_value());

    // An end handler that accepts keeps the new text in the row.
    list.SetEndLabelEditHandler([](int, const std::optional<std::wstring>&) { return true; });
    QVERIFY(list.EditLabel(4));
    editor = EditorOf(list, 4);
    QVERIFY(editor);
    editor->setText(QStringLiteral("d.mth"));
    QTest::keyClick(editor, Qt::Key_Return);
    QTRY_COMPARE(list.GetItemText(4), std::wstring(L"d.mth"));
}

void ControlsTest::explorerDragsTheSelection() {
    ShownExplorer pane;
    CPXExplorerCtrl& list = pane.list;
    list.SelectItem(2, true);
    list.SelectItem(3, true);
    QSignalSpy begin(&list, &CPXExplorerCtrl::beginDrag);
    QSignalSpy moved(&list, &CPXExplorerCtrl::dragMoved);
    QSignalSpy dropped(&list, &CPXExplorerCtrl::dragDropped);
    QSignalSpy clicked(&list, &CPXExplorerCtrl::itemClick);

    QWidget* viewport = list.viewport();
    const QPoint start = pane.RowCenter(2);
    SendMouse(viewport, QEvent::MouseButtonPress, start, Qt::LeftButton, Qt::LeftButton);
    // Within the drag distance nothing happens yet.
    SendMouse(viewport, QEvent::MouseMove, start + QPoint(1, 0), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(begin.size(), 0);
    const QPoint far = start + QPoint(0, QApplication::startDragDistance() + 40);
    SendMouse(viewport, QEvent::MouseMove, far, Qt::NoButton, Qt::LeftButton);
    SendMouse(viewport, QEvent::MouseMove, far + QPoint(5, 5), Qt::NoButton, Qt::LeftButton);
    QCOMPARE(begin.size(), 1);
    QCOMPARE(begin.front().front().toPoint(), viewport->mapToGlobal(start));
    QVERIFY(moved.size() >= 2);
    SendMouse(viewport, QEvent::MouseButtonRelease, far + QPoint(5, 5), Qt::LeftButton, Qt::NoButton);
    QCOMPARE(dropped.size(), 1);
    QCOMPARE(dropped.front().front().toPoint(), viewport->mapToGlobal(far + QPoint(5, 5)));
    QCOMPARE(clicked.size(), 0);
    // The drag neither changed the selection nor started a rubber band.
    QCOMPARE(list.GetSelectedIndexes(), Rows({2, 3}));

    const QPixmap image = list.CreateDragImageEx();
    QVERIFY(!image.isNull());
    const int rowHeight = list.visualItemRect(list.topLevelItem(2)).height();
    QCOMPARE(qRound(image.height() / image.devicePixelRatio()), 2 * rowHeight);
    list.ClearSelection();
    QVERIFY(list.CreateDragImageEx().isNull());
}

void ControlsTest::explorerReportsClicks() {
    ShownExplorer pane;
    CPXExplorerCtrl& list = pane.list;
    QSignalSpy clicked(&list, &CPXExplorerCtrl::itemClick);
    QSignalSpy doubled(&list, &CPXExplorerCtrl::itemDoubleClick);
    QSignalSpy right(&list, &CPXExplorerCtrl::itemRightClick);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, pane.RowCenter(1));
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, pane.RowCenter(1));
    QTest::mouseClick(list.viewport(), Qt::RightButton, {}, pane.RowCenter(3));
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, QPoint(10, list.viewport()->height() - 3));
    QCOMPARE(doubled.size(), 1);
    QCOMPARE(doubled.front().front().toInt(), 1);
    QCOMPARE(right.size(), 1);
    QCOMPARE(right.front().front().toInt(), 3);
    QCOMPARE(right.front().at(1).toPoint(), list.viewport()->mapToGlobal(pane.RowCenter(3)));
    QCOMPARE(list.GetSelectedIndexes(), Rows({})); // the click below the rows cleared the selection
    QCOMPARE(clicked.back().front().toInt(), -1);
    // A double click on a selected name opens it; it never starts an in-place edit.
    int begins = 0;
    list.SetBeginLabelEditHandler([&](int) { return ++begins, true; });
    list.SelectItem(2, true);
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, pane.RowCenter(2));
    QTest::qWait(QApplication::doubleClickInterval() + 200);
    QCOMPARE(begins, 0);
}

void ControlsTest::driveBoxSelectsLongestRoot_data() {
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("found");
    QTest::addColumn<QString>("drive");
    QTest::newRow("root itself") << "/" << true << "/";
    QTest::newRow("under root") << "/etc/hosts" << true << "/";
    QTest::newRow("home") << "/home/user" << true << "/home/user";
    QTest::newRow("under home") << "/home/user/Data/run1.vxs" << true << "/home/user";
    QTest::newRow("not at a folder boundary") << "/home/username/x" << true << "/home";
    QTest::newRow("mount with trailing part") << "/mnt/data/" << true << "/mnt/data";
    QTest::newRow("similar name") << "/mnt/database" << true << "/";
    QTest::newRow("empty") << "" << false << "/home";
    QTest::newRow("relative") << "data/x" << false << "/home";
}

void ControlsTest::driveBoxSelectsLongestRoot() {
    QFETCH(QString, path);
    QFETCH(bool, found);
    QFETCH(QString, drive);
    CPXDriveBox box;
    box.SetRoots({L"/", L"/home/user", L"/home", L"/mnt/data"});
    box.AddInstrument(L"VEXARON 10.0.0.5");
    QVERIFY(box.SelectDrive(L"/home/x")); // a known start
    QCOMPARE(box.SelectDrive(path.toStdWString()), found);
    QCOMPARE(QString::fromStdWString(box.GetCurDrive()), drive);
}

void ControlsTest::driveBoxInstrumentEntry() {
    CPXDriveBox box;
    const std::vector<std::wstring> roots = CPXDriveBox::WorkstationRoots();
    QVERIFY(!roots.empty());
#ifndef _WIN32
    QCOMPARE(roots.front(), std::wstring(L"/"));
#endif
    QCOMPARE(box.Roots(), roots);
    QCOMPARE(box.GetCurDrive(), roots.front());

    box.AddInstrument(L"VEXARON 1");
    box.AddInstrument(L"VEXARON 2"); // replaces the first
    QCOMPARE(box.count(), static_cast<int>(roots.size()) + 1);
    box.setCurrentIndex(box.count() - 1);
    QVERIFY(box.IsInstrumentSelected());
    QCOMPARE(box.GetCurDrive(), std::wstring());
    QCOMPARE(box.currentText(), QStringLiteral("VEXARON 2"));
    box.SetRoots({L"/", L"/srv"}); // the instrument entry survives a refill
    QVERIFY(box.HasInstrument());
    box.RemoveInstrument();
    QVERIFY(!box.HasInstrument());
    QCOMPARE(box.Roots(), std::vector<std::wstring>({L"/", L"/srv"}));
}

void ControlsTest::gridCheckColumnWritesFlags() {
    CPXGridCtrl grid;
    std::vector<uint8_t> flags = {1, 0, 1};
    grid.MapDataToChecks(&flags);
    grid.AddColumn();
    grid.AddSubColumn(L"Name", 16);
    grid.AddSubColumn(L"Changed", 16);
    grid.SetGridSize(4); // one row more than flags: it shows no check
    QCOMPARE(grid.columnCount(), 3);
    QCOMPARE(grid.item(0, 0)->checkState(), Qt::Checked);
    QCOMPARE(grid.item(1, 0)->checkState(), Qt::Unchecked);
    QVERIFY(!(grid.item(3, 0)->flags() & Qt::ItemIsUserCheckable));

    QSignalSpy changed(&grid, &CPXGridCtrl::checkChanged);
    grid.resize(400, 200);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    // The user's way: the check cell is current and Space toggles it.
    grid.setFocus();
    grid.setCurrentCell(1, 0);
    QTest::keyClick(&grid, Qt::Key_Space);
    QCOMPARE(flags, std::vector<uint8_t>({1, 1, 1}));
    grid.setCurrentCell(0, 0);
    QTest::keyClick(&grid, Qt::Key_Space);
    QCOMPARE(flags, std::vector<uint8_t>({0, 1, 1}));
    QCOMPARE(changed.size(), 2);
    grid.SetCheck(2, false);
    QCOMPARE(flags, std::vector<uint8_t>({0, 1, 0}));
    QVERIFY(!grid.GetCheck(2));
    grid.SetCheck(3, true); // beyond the flags: nothing to write
    QCOMPARE(flags.size(), size_t(3));

    // Filling the grid again shows the flags as they now are.
    flags = {1, 1, 1};
    grid.MapDataToChecks(&flags);
    QCOMPARE(grid.item(0, 0)->checkState(), Qt::Checked);
    grid.MapDataToChecks(nullptr);
    QCOMPARE(grid.columnCount(), 2);
    QVERIFY(!grid.HasCheckColumn());
}

void ControlsTest::gridColumnsAndHoverText() {
    CPXGridCtrl grid;
    grid.AddColumn(L"Method");
    grid.AddSubColumn(L"Name", 16);
    grid.AddSubColumn(L"Model");
    grid.AddColumn();
    grid.AddSubColumn(L"Run Time (M:S)");
    grid.SetGridSize(2);
    grid.SetCellText(0, 0, L"Survey");
    grid.SetCellText(1, 2, L"12:30");
    grid.SetCellText(5, 0, L"ignored");
    grid.SetRowData(0, 10);
    grid.SetRowData(1, 11);
    QCOMPARE(grid.GetColumnCount(), 3);
    QCOMPARE(grid.horizontalHeaderItem(0)->text(), QStringLiteral("Method\nName"));
    QCOMPARE(grid.horizontalHeaderItem(2)->text(), QStringLiteral("Run Time (M:S)"));
    QCOMPARE(grid.GetCellText(1, 2), std::wstring(L"12:30"));
    QCOMPARE(grid.GetRowData(1), qintptr(11));

    grid.AutoSizeColumns();
    QVERIFY(grid.columnWidth(0) >= 16 * grid.fontMetrics().averageCharWidth());
    QVERIFY(grid.columnWidth(2) >= grid.fontMetrics().horizontalAdvance(QStringLiteral("Run Time (M:S)")));

    grid.SelectCell(1, 0);
    QCOMPARE(grid.GetSelectedRow(), 1);

    grid.SetHoverTextHandler(
        [](int row, int column) { return row == 0 ? L"tip " + std::to_wstring(column) : std::wstring(); });
    grid.resize(500, 200);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    const QPoint cell = grid.visualRect(grid.model()->index(0, 1)).center();
    QHelpEvent help(QEvent::ToolTip, cell, grid.viewport()->mapToGlobal(cell));
    QApplication::sendEvent(grid.viewport(), &help);
    QTRY_COMPARE(QToolTip::text(), QStringLiteral("tip 1"));
    QCOMPARE(grid.HoverText(1, 0), std::wstring());
    QCOMPARE(grid.HoverText(7, 0), std::wstring());
}

void ControlsTest::noFocusButtonKeepsFocusElsewhere() {
    QWidget window;
    auto* edit = new QLineEdit(&window);
    auto* button = new CPXNoFocusButton(QIcon(), &window);
    button->move(0, 40);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    edit->setFocus();
    QSignalSpy clicked(button, &QPushButton::clicked);
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(clicked.size(), 1);
    QCOMPARE(QApplication::focusWidget(), edit);
    QCOMPARE(button->focusPolicy(), Qt::NoFocus);
}

QTEST_MAIN(ControlsTest)
#include "tst_controls.moc"
