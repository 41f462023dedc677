// SPDX-License-Identifier: Apache-2.0
// The dialog itself: start-up, navigation, the deferred button update, sorting, dragging, the access
// rules on buttons, menu and keyboard, and the backup buttons' start-up rule.
#include "filemanagerfixture.h"

#include "explorerctrl.h"
#include "resource.h"
#include "sensorevent.h"
#include "sensorobject.h"
#include "vexadevice.h"
#include "vexafiledlg.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <cstdlib>
#include <filesystem>
#include <functional>

namespace {

// Counts the Alt+H presses that reach a widget.
class KeyCounter : public QObject {
public:
    int altH = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            altH += key->key() == Qt::Key_H && key->modifiers() == Qt::AltModifier;
        }
        return QObject::eventFilter(watched, event);
    }
};

bool MenuItemEnabled(QMenu& menu, int command) {
    for (QAction* action : menu.actions())
        if (action->data().toInt() == command)
            return action->isEnabled();
    return false;
}

} // namespace

TEST_F(FileManagerTest, StartUpShowsBothSidesWithCommandsDisabled) {
    m_temp.createFile("pc/a.txt", "a");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    EXPECT_FALSE(dialog.HasEnded());
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Manage Files"));
    EXPECT_TRUE(dialog.IsInstrumentOnline());
    for (int id :
         {IDC_FILEMGR_DELETE, IDC_FILEMGR_RENAME, IDC_FILEMGR_COPY_TO_REMOTE, IDC_FILEMGR_COPY_TO_LOCAL})
        EXPECT_FALSE(dialog.GetDlgItem(id)->isEnabled()) << id;
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_PATH), L"/");
    EXPECT_NE(RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"Data"), -1);
    EXPECT_NE(RowOf(dialog.View(CVexaFileDlg::kLocalPane), L"a.txt"), -1);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REPLAY_SPEED_LABEL), L"Replay Speed: 10");
    EXPECT_TRUE(m_prompt.Asked().empty());
}

TEST_F(FileManagerTest, UnreadableLocalFolderEndsTheDialogWithItsMessage) {
    StartInstrument();
    m_dialog = std::make_unique<CVexaFileDlg>(*m_instrument.sensor());
    m_dialog->SetLocalStartFolder(L"/no/such/folder");
    EXPECT_EQ(m_dialog->DoModal(), IDCANCEL);
    const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, L"Unable to open local folder /no/such/folder");
}

TEST_F(FileManagerTest, OfflineInstrumentLeavesItsPaneEmptyWithoutAMessage) {
    const auto offline =
        SensorRef<VEXASensorObject>::Adopt(new VEXASensorObject(nullptr, ISensorAddress(L"127.0.0.1")));
    CVexaFileDlg& dialog = OpenDialog(offline.get());
    EXPECT_FALSE(dialog.HasEnded());
    EXPECT_FALSE(dialog.IsInstrumentOnline());
    EXPECT_EQ(dialog.View(CVexaFileDlg::kRemotePane)->GetItemCount(), 0);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_STATUS), L"0 Object(s)");
    EXPECT_TRUE(m_prompt.Asked().empty());
}

// Root folders have no ".." and a disabled up button; below them ".." is listed, counted and enabled.
TEST_F(FileManagerTest, UpButtonAndObjectCountFollowTheParentEntry) {
    m_temp.createFile("pc/sub/one.txt", "1");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    struct Case {
        int pane;
        int upId;
        int statusId;
    };
    for (const Case& c : {Case{CVexaFileDlg::kRemotePane, IDC_FILEMGR_REMOTE_UP, IDC_FILEMGR_REMOTE_STATUS},
                          Case{CVexaFileDlg::kLocalPane, IDC_FILEMGR_LOCAL_UP, IDC_FILEMGR_LOCAL_STATUS}}) {
        const bool remote = c.pane == CVexaFileDlg::kRemotePane;
        ASSERT_TRUE(remote ? dialog.ShowRemoteFolder(L"/") : dialog.ShowLocalFolder(L"/"));
        CPXExplorerCtrl* view = dialog.View(c.pane);
        EXPECT_EQ(RowOf(view, L".."), -1);
        EXPECT_FALSE(dialog.GetDlgItem(c.upId)->isEnabled());

        const std::wstring sub = remote ? L"/Method" : Wide(PcPath("sub"));
        ASSERT_TRUE(remote ? dialog.ShowRemoteFolder(sub) : dialog.ShowLocalFolder(sub));
        ASSERT_GE(view->GetItemCount(), 2);
        EXPECT_EQ(view->GetItemText(0), L"..");
        EXPECT_TRUE(dialog.GetDlgItem(c.upId)->isEnabled());
        EXPECT_EQ(dialog.GetDlgItemText(c.statusId), std::to_wstring(view->GetItemCount()) + L" Object(s)");
    }
    // Up from /Method lands on the root, shown as "/", not "/Method/..".
    dialog.UpOneFolder(CVexaFileDlg::kRemotePane);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_PATH), L"/");
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_REMOTE_UP)->isEnabled());
}

// A folder that cannot be listed is shown empty, as what it is; the up button still leads out of it.
TEST_F(FileManagerTest, EnteringAnUnreadableFolderShowsItEmpty) {
    m_temp.createFile("pc/a.txt", "a");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    struct Case {
        int pane;
        std::wstring folder;
        int pathId;
        int statusId;
        int upId;
    };
    for (const Case& c : {Case{CVexaFileDlg::kRemotePane, L"/NoSuchFolder", IDC_FILEMGR_REMOTE_PATH,
                               IDC_FILEMGR_REMOTE_STATUS, IDC_FILEMGR_REMOTE_UP},
                          Case{CVexaFileDlg::kLocalPane, Wide(PcPath("gone")), IDC_FILEMGR_LOCAL_PATH,
                               IDC_FILEMGR_LOCAL_STATUS, IDC_FILEMGR_LOCAL_UP}}) {
        const bool remote = c.pane == CVexaFileDlg::kRemotePane;
        EXPECT_FALSE(remote ? dialog.ShowRemoteFolder(c.folder) : dialog.ShowLocalFolder(c.folder));
        EXPECT_EQ(dialog.View(c.pane)->GetItemCount(), 0);
        EXPECT_EQ(dialog.GetDlgItemText(c.statusId), L"0 Object(s)");
        EXPECT_EQ(dialog.GetDlgItemText(c.pathId), c.folder);
        ASSERT_TRUE(dialog.GetDlgItem(c.upId)->isEnabled());
        dialog.UpOneFolder(c.pane);
        EXPECT_GT(dialog.View(c.pane)->GetItemCount(), 0);
    }
    EXPECT_NE(RowOf(dialog.View(CVexaFileDlg::kLocalPane), L"a.txt"), -1);
}

// Each pane's update touches only its own direction, whatever the instrument's state.
TEST_F(FileManagerTest, SelectionsInBothPanesKeepBothCopyButtons) {
    m_temp.createFile("pc/a.txt", "a");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* pc = dialog.View(CVexaFileDlg::kLocalPane);
    Select(pc, {L"a.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"hosts"});
    dialog.UpdateButtons(CVexaFileDlg::kRemotePane, true);
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_LOCAL)->isEnabled());

    pc->ClearSelection();
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_LOCAL)->isEnabled());
}

// Only what the dialog subscribed to reaches it: a method ending or another notification leaves the
// panes and the user's selection alone; the sensor coming on line reads them again.
TEST_F(FileManagerTest, OnlySubscribedNotificationsReadThePanesAgain) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    struct Case {
        uint32_t code;
        bool readsAgain;
    };
    for (const Case& c : {Case{kSensorEventMethodEnded, false}, Case{0x100200, false}, Case{0x1234, false},
                          Case{kSensorEventOnline, true}}) {
        Select(instrument, {L"hosts"});
        dialog.UpdateButtons(CVexaFileDlg::kRemotePane, true);
        m_instrument.sensor()->RaiseEvent(c.code, L"note");
        QTest::qWait(50);
        EXPECT_EQ(instrument->GetSelectedCount(), c.readsAgain ? 0 : 1) << std::hex << c.code;
        EXPECT_EQ(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_LOCAL)->isEnabled(), !c.readsAgain)
            << std::hex << c.code;
    }
}

// A right click beside the rows opens the pane's menu, whose commands act on the selection.
TEST_F(FileManagerTest, RightClickBesideTheRowsOpensTheMenuForTheSelection) {
    m_temp.createFile("pc/a.txt", "a");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* pc = dialog.View(CVexaFileDlg::kLocalPane);
    Select(pc, {L"a.txt"});
    std::vector<int> offered;
    QTimer::singleShot(200, [&offered] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu)
            return;
        offered = MenuCommands(*menu);
        for (QAction* action : menu->actions())
            if (action->data().toInt() == ID_FILEMGR_DELETE)
                menu->setActiveAction(action);
        QTest::keyClick(menu, Qt::Key_Return);
    });
    m_prompt.QueueYesNo(IDNO);
    const QPoint below(10, pc->viewport()->height() - 4);
    ASSERT_EQ(pc->RowAt(below), -1);
    QTest::mouseClick(pc->viewport(), Qt::RightButton, Qt::NoModifier, below);
    EXPECT_EQ(offered, (std::vector<int>{ID_FILEMGR_OPEN, ID_FILEMGR_RENAME, ID_FILEMGR_DELETE}));
    const auto questions = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_NE(questions[0].text.find(L"\"a.txt\""), std::wstring::npos) << questions[0].text;
}

TEST_F(FileManagerTest, BurstOfSelectionChangesUpdatesTheButtonsOnce) {
    for (int i = 0; i < 10; ++i)
        m_temp.createFile("pc/file" + std::to_string(i) + ".txt", "x");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* view = dialog.View(CVexaFileDlg::kLocalPane);
    ASSERT_EQ(view->GetItemCount(), 11); // ".." and ten files
    const int before = dialog.DeferredUpdateCount();
    for (int row = 1; row <= 10; ++row)
        view->SelectItem(row, true);
    EXPECT_EQ(dialog.DeferredUpdateCount(), before);
    ASSERT_TRUE(WaitFor([&] { return dialog.DeferredUpdateCount() > before; }));
    QTest::qWait(CVexaFileDlg::kButtonUpdateDelayMs * 2);
    EXPECT_EQ(dialog.DeferredUpdateCount(), before + 1);
    EXPECT_EQ(dialog.ActivePane(), CVexaFileDlg::kLocalPane);
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_DELETE)->isEnabled());
}

TEST_F(FileManagerTest, ColumnClicksFlipOrStartAscending) {
    m_temp.createFile("pc/b.txt", std::string(30, 'b'));
    m_temp.createFile("pc/a.txt", std::string(10, 'a'));
    m_temp.createFile("pc/c.txt", std::string(20, 'c'));
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* view = dialog.View(CVexaFileDlg::kLocalPane);
    using Rows = std::vector<std::wstring>;
    const Rows ascending{L"..", L"a.txt", L"b.txt", L"c.txt"};
    EXPECT_EQ(Names(view), ascending);

    dialog.SortPane(CVexaFileDlg::kLocalPane, CPXExplorerCtrl::kColumnName);
    EXPECT_EQ(Names(view), (Rows{L"..", L"c.txt", L"b.txt", L"a.txt"}));
    EXPECT_TRUE(view->SortDescending());
    dialog.SortPane(CVexaFileDlg::kLocalPane, CPXExplorerCtrl::kColumnName);
    EXPECT_EQ(Names(view), ascending);

    // From descending by name, a new column starts ascending.
    dialog.SortPane(CVexaFileDlg::kLocalPane, CPXExplorerCtrl::kColumnName);
    dialog.SortPane(CVexaFileDlg::kLocalPane, CPXExplorerCtrl::kColumnSize);
    EXPECT_EQ(Names(view), (Rows{L"..", L"a.txt", L"c.txt", L"b.txt"}));
    EXPECT_EQ(view->SortColumn(), CPXExplorerCtrl::kColumnSize);
    EXPECT_FALSE(view->SortDescending());
}

TEST_F(FileManagerTest, DropOnTheSourcePaneCopiesNothingAndOnTheOtherCopies) {
    m_temp.createFile("pc/dragged.txt", "dragged");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* pc = dialog.View(CVexaFileDlg::kLocalPane);
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    Select(pc, {L"dragged.txt"});

    DragRowTo(pc, RowOf(pc, L"dragged.txt"), CenterOf(pc));
    EXPECT_FALSE(dialog.IsDragging());
    EXPECT_FALSE(FileExists(InstrumentPath("dragged.txt")));
    EXPECT_EQ(RowOf(instrument, L"dragged.txt"), -1);

    DragRowTo(pc, RowOf(pc, L"dragged.txt"), CenterOf(dialog.GetDlgItem(IDC_FILEMGR_DESCRIPTION)));
    EXPECT_FALSE(FileExists(InstrumentPath("dragged.txt")));

    DragRowTo(pc, RowOf(pc, L"dragged.txt"), CenterOf(instrument));
    EXPECT_EQ(ReadWholeFile(InstrumentPath("dragged.txt")), "dragged");
    EXPECT_NE(RowOf(instrument, L"dragged.txt"), -1);
    EXPECT_TRUE(m_prompt.Asked().empty());
}

TEST_F(FileManagerTest, WithoutLevelOneRenameAndDeleteStayDisabled) {
    SetAccess("0");
    m_temp.createFile("pc/keep.txt", "keep");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* pc = dialog.View(CVexaFileDlg::kLocalPane);
    Select(pc, {L"keep.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_RENAME)->isEnabled());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_DELETE)->isEnabled());
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP)->isEnabled());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP_ALL)->isEnabled());

    auto menu = dialog.BuildContextMenu(CVexaFileDlg::kLocalPane, RowOf(pc, L"keep.txt"));
    EXPECT_TRUE(MenuItemEnabled(*menu, ID_FILEMGR_OPEN));
    EXPECT_FALSE(MenuItemEnabled(*menu, ID_FILEMGR_RENAME));
    EXPECT_FALSE(MenuItemEnabled(*menu, ID_FILEMGR_DELETE));

    EXPECT_FALSE(pc->EditLabel(RowOf(pc, L"keep.txt")));
    EXPECT_FALSE(pc->IsEditingLabel());
    dialog.DeleteInPane(CVexaFileDlg::kLocalPane);
    EXPECT_TRUE(FileExists(PcPath("keep.txt")));
    EXPECT_TRUE(m_prompt.Asked().empty());
}

// Without level 0: no replay controls, no extra menu items, Alt+H ignored, data files stay put.
TEST_F(FileManagerTest, WithoutLevelZeroTheServiceFeaturesNeverAppear) {
    SetAccess("1");
    m_temp.createFile("pc/survey.vxz", "data");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_REPLAY_SPEED)->isVisible());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_REPLAY_SPEED_LABEL)->isVisible());

    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    const size_t visible = Names(instrument).size();
    // Alt+H goes on to the control that has the focus instead of being taken by the dialog.
    dialog.activateWindow();
    instrument->setFocus();
    KeyCounter keys;
    instrument->installEventFilter(&keys);
    QTest::keyClick(instrument, Qt::Key_H, Qt::AltModifier);
    EXPECT_EQ(keys.altH, 1);
    EXPECT_FALSE(dialog.ShowHiddenEntries());
    EXPECT_EQ(Names(instrument).size(), visible);
    EXPECT_EQ(RowOf(instrument, L".config.level"), -1);

    auto hostsMenu = dialog.BuildContextMenu(CVexaFileDlg::kRemotePane, RowOf(instrument, L"hosts"));
    EXPECT_EQ(MenuCommands(*hostsMenu),
              (std::vector<int>{ID_FILEMGR_OPEN, ID_FILEMGR_RENAME, ID_FILEMGR_DELETE}));
    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Data"));
    auto dataMenu = dialog.BuildContextMenu(CVexaFileDlg::kRemotePane, RowOf(instrument, L"run1.vxs"));
    EXPECT_EQ(MenuCommands(*dataMenu).size(), 3u);

    // A data file selected on the PC disables Copy -->; from the instrument it is skipped silently.
    Select(dialog.View(CVexaFileDlg::kLocalPane), {L"survey.vxz"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
    Select(instrument, {L"run1.vxs", L"run2.vxs"});
    dialog.CopyToLocal();
    EXPECT_FALSE(FileExists(PcPath("run1.vxs")));
    EXPECT_FALSE(FileExists(PcPath("run2.vxs")));
    EXPECT_TRUE(m_prompt.Asked().empty());
}

TEST_F(FileManagerTest, AltHShowsHiddenInstrumentEntriesWithLevelZero) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    EXPECT_EQ(RowOf(instrument, L".config.level"), -1);
    dialog.activateWindow();
    QTest::keyClick(&dialog, Qt::Key_H, Qt::AltModifier);
    EXPECT_NE(RowOf(instrument, L".config.level"), -1);
    EXPECT_TRUE(dialog.RemoteList()->ShowHidden());
}

TEST_F(FileManagerTest, RunningMethodDisablesBothBackupButtons) {
    const std::string profile = m_temp.createFile("profile.json", R"({"methodSeconds": 60})");
    StartInstrument({"--profile", profile});
    VexaDevice device(m_instrument.sensor()->GetDevice(L"VEXA"));
    ASSERT_TRUE(device.runMethod(L"\"/Method/Default.mth\"")) << device.getLastError();
    m_instrument.sensor()->OnTimer(0);
    ASSERT_FALSE(VexaDevice(m_instrument.sensor()->GetDevice(L"VEXA")).getActiveProcess().empty());
    CVexaFileDlg& dialog = OpenDialog();
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP)->isEnabled());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP_ALL)->isEnabled());
}

TEST_F(FileManagerTest, IdleInstrumentEnablesBackupAllWhichAsksFirst) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP_ALL)->isEnabled());
    m_prompt.QueueYesNo(IDNO);
    ASSERT_TRUE(dialog.PressButton(IDC_FILEMGR_BACKUP_ALL));
    const auto questions = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_EQ(questions[0].caption, L"Backup");
}

// Refused commands are shown disabled: each instrument command is enabled only when it can act.
TEST_F(FileManagerTest, InstrumentCommandsAreEnabledOnlyWhenTheyCanAct) {
    m_temp.createFile("pc/a.txt", "a");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* pc = dialog.View(CVexaFileDlg::kLocalPane);
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    const auto selectIn = [&](int pane, CPXExplorerCtrl* view, const std::vector<std::wstring>& names) {
        if (names.empty())
            view->ClearSelection();
        else
            Select(view, names);
        dialog.UpdateButtons(pane, true);
    };
    const auto goOffline = [&] {
        m_instrument.sim().stop();
        m_instrument.sensor()->Disconnect(0);
        ASSERT_TRUE(WaitFor([&] { return !dialog.IsInstrumentOnline(); }));
        selectIn(CVexaFileDlg::kLocalPane, pc, {L"a.txt"});
    };
    const struct {
        const char* state;
        std::function<void()> reach;
        bool backup, backupAll, newFolder, copyToInstrument;
    } rows[] = {
        {"on line, nothing selected", [] {}, false, true, true, false},
        {"an instrument entry selected", [&] { selectIn(CVexaFileDlg::kRemotePane, instrument, {L"Data"}); },
         true, true, true, false},
        {"a PC file selected", [&] { selectIn(CVexaFileDlg::kLocalPane, pc, {L"a.txt"}); }, true, true, true,
         true},
        {"the instrument selection cleared", [&] { selectIn(CVexaFileDlg::kRemotePane, instrument, {}); },
         false, true, true, true},
        {"off line, a PC file selected", goOffline, false, false, false, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.state);
        row.reach();
        EXPECT_EQ(dialog.GetDlgItem(IDC_FILEMGR_BACKUP)->isEnabled(), row.backup);
        EXPECT_EQ(dialog.GetDlgItem(IDC_FILEMGR_BACKUP_ALL)->isEnabled(), row.backupAll);
        EXPECT_EQ(dialog.GetDlgItem(IDC_FILEMGR_REMOTE_NEW_FOLDER)->isEnabled(), row.newFolder);
        EXPECT_EQ(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled(), row.copyToInstrument);
    }
    EXPECT_TRUE(m_prompt.Asked().empty());
}

// The instrument drops while shown (its simulator refuses everything for a while): the pane says it is
// away and offers nothing that needs it, then comes back by itself in the folder it showed.
TEST_F(FileManagerTest, DroppedInstrumentIsShownAwayAndComesBackInItsFolder) {
    m_temp.createFile("pc/a.txt", "a");
    StartInstrument({"--fault", "outage=3000:2000"});
    CVexaFileDlg& dialog = OpenDialog();
    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Method"));
    const int listed = dialog.View(CVexaFileDlg::kRemotePane)->GetItemCount();
    ASSERT_GT(listed, 1);
    ASSERT_TRUE(
        WaitFor([&] { return m_instrument.sim().log().find("outage:") != std::string::npos; }, 10000));
    // What the studio's poll does when the status command finds the link gone.
    m_instrument.sensor()->Disconnect(kWsaConnReset);
    ASSERT_TRUE(WaitFor([&] { return !dialog.IsInstrumentOnline(); }));
    EXPECT_EQ(dialog.View(CVexaFileDlg::kRemotePane)->GetItemCount(), 0);
    EXPECT_NE(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_STATUS).find(L"is not answering"), std::wstring::npos);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_PATH), L"/Method");
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_REMOTE_UP)->isEnabled())
        << "the folder is kept for the return";
    Select(dialog.View(CVexaFileDlg::kLocalPane), {L"a.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP_ALL)->isEnabled());

    // What the studio's reconnection does once the instrument answers again.
    ASSERT_TRUE(
        WaitFor([&] { return m_instrument.sim().log().find("outage over") != std::string::npos; }, 10000));
    ASSERT_TRUE(m_instrument.sensor()->GoOnline());
    ASSERT_TRUE(WaitFor([&] { return dialog.IsInstrumentOnline(); }));
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_PATH), L"/Method");
    EXPECT_EQ(dialog.View(CVexaFileDlg::kRemotePane)->GetItemCount(), listed);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_STATUS), std::to_wstring(listed) + L" Object(s)");
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_REMOTE_UP)->isEnabled());
    Select(dialog.View(CVexaFileDlg::kLocalPane), {L"a.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    EXPECT_TRUE(dialog.GetDlgItem(IDC_FILEMGR_COPY_TO_REMOTE)->isEnabled());
}

// Not a check: with VEXA_SCREENSHOT set, saves the dialog over the demo tree as a picture for people.
TEST_F(FileManagerTest, Screenshot) {
    const char* target = std::getenv("VEXA_SCREENSHOT");
    if (!target || !*target)
        GTEST_SKIP() << "VEXA_SCREENSHOT names no file";
    m_temp.createFile("pc/Reports/summary.csv", "a,b\n");
    m_temp.createFile("pc/notes.txt", "notes");
    m_temp.createFile("pc/run1.vxs", std::string(1248, 'v'));
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Data"));
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    Select(instrument, {L"run1.vxs"});
    dialog.UpdateButtons(CVexaFileDlg::kRemotePane, true);
    QTest::qWait(300);
    ASSERT_TRUE(dialog.grab().save(QString::fromLocal8Bit(target)));
}
