// SPDX-License-Identifier: Apache-2.0
#include "filemanagerfixture.h"

#include "explorerctrl.h"
#include "vexafiledlg.h"
#include "vexasensorobject.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>

#include <cstdlib>

FileManagerTest::FileManagerTest() {
    m_temp.createDir("pc");
    SetAccess("0,1");
}

FileManagerTest::~FileManagerTest() {
    m_dialog.reset();
    m_instrument.dropSensor();
    m_instrument.stop();
    unsetenv("VEXA_ACCESS");
}

void FileManagerTest::StartInstrument(const std::vector<std::string>& simulatorArgs) {
    m_instrument.start(simulatorArgs);
    ASSERT_TRUE(m_instrument.goOnline()) << "the sensor did not go on line to " << m_instrument.address();
}

void FileManagerTest::SetAccess(const char* levels) {
    setenv("VEXA_ACCESS", levels, 1);
}

CVexaFileDlg& FileManagerTest::OpenDialog(VEXASensorObject* sensor) {
    m_dialog = std::make_unique<CVexaFileDlg>(sensor ? *sensor : *m_instrument.sensor());
    m_dialog->SetTitle(L"Manage Files");
    m_dialog->SetLocalStartFolder(Wide(PcFolder()));
    m_dialog->resize(1000, 640);
    m_dialog->show();
    QApplication::processEvents();
    return *m_dialog;
}

void FileManagerTest::Select(CPXExplorerCtrl* view, const std::vector<std::wstring>& names) {
    view->ClearSelection();
    for (const std::wstring& name : names) {
        const int row = RowOf(view, name);
        ASSERT_GE(row, 0) << "not listed: " << QString::fromStdWString(name).toStdString();
        view->SelectItem(row, true);
    }
}

QPoint FileManagerTest::CenterOf(const QWidget* widget) {
    return widget->mapToGlobal(widget->rect().center());
}

void FileManagerTest::DragRowTo(CPXExplorerCtrl* from, int row, const QPoint& globalDrop) {
    QWidget* viewport = from->viewport();
    const QPoint press = from->visualItemRect(from->topLevelItem(row)).center();
    QTest::mousePress(viewport, Qt::LeftButton, Qt::NoModifier, press);
    // Beyond the drag distance with the button held: the list starts its drag.
    const QPoint moved = press + QPoint(QApplication::startDragDistance() * 3, 0);
    QMouseEvent move(QEvent::MouseMove, moved, viewport->mapToGlobal(moved), Qt::NoButton, Qt::LeftButton,
                     Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    QTest::mouseRelease(viewport, Qt::LeftButton, Qt::NoModifier, viewport->mapFromGlobal(globalDrop));
}

std::vector<int> FileManagerTest::MenuCommands(QMenu& menu) {
    std::vector<int> commands;
    for (QAction* action : menu.actions())
        if (!action->isSeparator())
            commands.push_back(action->data().toInt());
    return commands;
}
