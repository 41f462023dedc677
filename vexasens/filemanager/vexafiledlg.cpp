// SPDX-License-Identifier: Apache-2.0
// The Manage Files dialog's window: start-up, the two panes, navigation, sorting, the deferred button
// update, drag and drop between the panes, the context menu, Alt+H and sensor notifications. The
// commands behind the buttons are in vexafiledlgcommands.cpp.
#include "vexafiledlg.h"

#include "backupdlg.h"
#include "copyjob.h"
#include "drivebox.h"
#include "explorerctrl.h"
#include "fileinfo.h"
#include "nofocusbutton.h"
#include "paths.h"
#include "pxformat.h"
#include "remotename.h"
#include "resource.h"
#include "sensorevent.h"
#include "sensornotifyevent.h"
#include "sensorobject.h"
#include "systemaccess.h"
#include "ui_dialog1701.h"
#include "vexabackup.h"
#include "vexadevice.h"
#include "vexafiledescription.h"
#include "vexafilekinds.h"
#include "vexafilelist.h"
#include "vexaicons.h"

#include <QApplication>
#include <QCursor>
#include <QLabel>
#include <QMenu>
#include <QShortcut>
#include <QSlider>
#include <QThread>
#include <QTimerEvent>

#include <set>

namespace {

// The observer's subscription: state changes, and the device notification that ends a backup. A method
// ending or any other instrument notification must not re-read the panes under the user's selection.
constexpr uint32_t kSensorMask = 0xF8000009;
constexpr uint32_t kDeviceMask = 0xF8000008;
static_assert(kSensorMask == (kEventMaskReserved | kEventMaskBackup | kEventMaskState));
static_assert(kDeviceMask == (kEventMaskReserved | kEventMaskBackup));
constexpr int kDragImageOffset = 12;

// Menu 1739, popup "FileManager".
std::unique_ptr<QMenu> LoadFileManagerMenu(QWidget* parent) {
    auto menu = std::make_unique<QMenu>(parent);
    menu->setObjectName(QStringLiteral("FileManager"));
    auto add = [&menu](const char* text, int command, int prompt) {
        QAction* action = menu->addAction(QString::fromUtf8(text));
        action->setData(command);
        action->setStatusTip(QString::fromStdWString(CDialog_::LoadString(prompt)));
        return action;
    };
    menu->setDefaultAction(add("&Open", ID_FILEMGR_OPEN, IDS_MENU_OPEN_PROMPT));
    menu->addSeparator();
    add("&Rename", ID_FILEMGR_RENAME, IDS_MENU_RENAME_PROMPT);
    add("&Delete", ID_FILEMGR_DELETE, IDS_MENU_DELETE_PROMPT);
    return menu;
}

// Listing may run on a copy worker: only the user-interface thread shows the wait cursor.
void ShowListingBusy(bool busy) {
    if (!qApp || QThread::currentThread() != qApp->thread())
        return;
    if (busy)
        QApplication::setOverrideCursor(Qt::WaitCursor);
    else
        QApplication::restoreOverrideCursor();
}

} // namespace

CVexaFileDlg::CVexaFileDlg(ISensorObject& sensor, QWidget* parent)
    : CDialog_(IDD_VEXA_FILE, parent),
      m_localPane(false, {IDC_FILEMGR_LOCAL_LIST, IDC_FILEMGR_LOCAL_PATH, IDC_FILEMGR_LOCAL_STATUS,
                          IDC_FILEMGR_LOCAL_UP, IDC_FILEMGR_LOCAL_NEW_FOLDER}),
      m_remotePane(true, {IDC_FILEMGR_REMOTE_LIST, IDC_FILEMGR_REMOTE_PATH, IDC_FILEMGR_REMOTE_STATUS,
                          IDC_FILEMGR_REMOTE_UP, IDC_FILEMGR_REMOTE_NEW_FOLDER}),
      m_sensor(SensorRef<>::Share(&sensor)) {
    Ui::Dialog1701 form;
    SetupTemplate(form);
    for (CVexaFilePane* pane : {&m_localPane, &m_remotePane})
        pane->SetView(qobject_cast<CPXExplorerCtrl*>(GetDlgItem(pane->Ids().list)));
    m_driveBox = qobject_cast<CPXDriveBox*>(GetDlgItem(IDC_FILEMGR_DRIVES));
    m_speed = qobject_cast<QSlider*>(GetDlgItem(IDC_FILEMGR_REPLAY_SPEED));
    m_speedLabel = qobject_cast<QLabel*>(GetDlgItem(IDC_FILEMGR_REPLAY_SPEED_LABEL));

    ConnectPane(kLocalPane);
    ConnectPane(kRemotePane);
    connect(m_driveBox, &QComboBox::activated, this, &CVexaFileDlg::OnDriveChanged);
    connect(m_speed, &QSlider::valueChanged, this, &CVexaFileDlg::OnSpeedChanged);
    m_showHidden = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_H), this);
    connect(m_showHidden, &QShortcut::activated, this, [this] { ShowHiddenEntries(); });
    SetFileListBusyHook(ShowListingBusy);
    m_backupDlg = std::make_unique<CBackupDlg>(this);
}

CVexaFileDlg::~CVexaFileDlg() {
    if (m_dragging)
        EndDrag();
    m_observer.SetWnd(nullptr);
    m_observer.SetSensor(nullptr);
    m_localPane.DropList();
    m_remotePane.DropList();
}

void CVexaFileDlg::ConnectPane(int pane) {
    CPXExplorerCtrl* view = View(pane);
    view->SetMultiSelect(true);
    view->EnableLabelEdit(true);
    view->SetBeginLabelEditHandler([this, pane](int row) { return OnLabelEditBegin(pane, row); });
    view->SetEndLabelEditHandler(
        [this, pane](int, const std::optional<std::wstring>& text) { return OnLabelEditEnded(pane, text); });
    connect(view, &CPXExplorerCtrl::itemStateChanged, this, [this, pane] { OnItemStateChanged(pane); });
    connect(view, &CPXExplorerCtrl::itemClick, this, [this, pane] { UpdateButtons(pane, true); });
    connect(view, &CPXExplorerCtrl::itemDoubleClick, this, [this, pane](int row) {
        if (row < 0)
            return;
        UpdateButtons(pane, true);
        OpenEntry(pane, row);
    });
    connect(view, &CPXExplorerCtrl::itemRightClick, this,
            [this, pane](int row, const QPoint& globalPos) { OnRightClick(pane, row, globalPos); });
    connect(view, &CPXExplorerCtrl::columnClicked, this,
            [this, pane](int column) { SortPane(pane, column); });
    connect(view, &CPXExplorerCtrl::beginDrag, this,
            [this, pane](const QPoint& globalPos) { BeginDrag(pane, globalPos); });
    connect(view, &CPXExplorerCtrl::dragDropped, this, &CVexaFileDlg::DropAt);
}

void CVexaFileDlg::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    for (CVexaFilePane* pane : {&m_localPane, &m_remotePane}) {
        DDX_Text(dx, pane->Ids().folder, pane->FolderText());
        DDX_Text(dx, pane->Ids().status, pane->StatusText());
    }
}

bool CVexaFileDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    if (m_dialogFont) {
        setFont(*m_dialogFont);
        for (QWidget* child : findChildren<QWidget*>())
            child->setFont(*m_dialogFont);
    }

    m_online = m_sensor->IsOnline();
    const std::wstring host = m_sensor->GetSensorAddress().GetHostname();
    if (!m_title.empty())
        SetWindowText(m_title);

    m_localPane.CreateList(nullptr, std::wstring(), std::wstring());
    // No instrument address: the pane stays empty, as for an instrument that is off line.
    m_remotePane.CreateList(m_sensor.get(), host, kRemoteStartFolder);
    if (host.empty())
        m_online = false;

    if (!ShowLocalFolder(m_localStartFolder)) {
        EndDialog(IDCANCEL);
        ShowMessage(PXFormat(LoadString(IDS_UNABLE_OPEN_LOCAL_FOLDER).c_str(), m_localStartFolder.c_str()));
        return true;
    }
    if (m_online && !ShowRemoteFolder(kRemoteStartFolder)) {
        EndDialog(IDCANCEL);
        const std::wstring remote = MakeFilename(kRemoteStartFolder, L"", host);
        ShowMessage(PXFormat(LoadString(IDS_UNABLE_OPEN_REMOTE_FOLDER).c_str(), remote.c_str()));
        return true;
    }
    if (!m_online)
        FillPane(kRemotePane);

    for (int id : {IDC_FILEMGR_DELETE, IDC_FILEMGR_RENAME, IDC_FILEMGR_COPY_TO_REMOTE,
                   IDC_FILEMGR_COPY_TO_LOCAL, IDC_FILEMGR_UNUSED})
        EnableControl(id, false);

    UpdateInstrumentButtons();

    const bool service = CSystemAccess::Accessible(0);
    // Without the service level Alt+H is an ordinary key for the dialog's other controls.
    m_showHidden->setEnabled(service);
    ShowControl(IDC_FILEMGR_REPLAY_SPEED_LABEL, service);
    ShowControl(IDC_FILEMGR_REPLAY_SPEED, service);
    EnableControl(IDC_FILEMGR_REPLAY_SPEED_LABEL, service);
    EnableControl(IDC_FILEMGR_REPLAY_SPEED, service);
    if (service) {
        m_speed->setRange(kMinReplaySpeed, kMaxReplaySpeed);
        m_speed->setValue(kDefaultReplaySpeed);
        OnSpeedChanged();
    }

    const QIcon up = VexaIcon(IDI_UP_FOLDER);
    const QIcon newFolder = VexaIcon(IDI_NEW_FOLDER);
    for (const CVexaFilePane* pane : {&m_localPane, &m_remotePane}) {
        if (auto* button = qobject_cast<CPXNoFocusButton*>(GetDlgItem(pane->Ids().up)))
            button->SetIcon(up);
        if (auto* button = qobject_cast<CPXNoFocusButton*>(GetDlgItem(pane->Ids().newFolder)))
            button->SetIcon(newFolder);
    }

    m_observer.SetSensor(m_sensor.get());
    m_observer.SetSensorMask(kSensorMask, 1);
    m_observer.SetAllDeviceMasks(kDeviceMask, 1);
    m_observer.SetWnd(this, CSensorNotifyEvent::kDefaultType);
    return true;
}

void CVexaFileDlg::OnCommand(int id) {
    switch (id) {
    case IDC_FILEMGR_DELETE:
        DeleteInPane(m_activePane);
        break;
    case IDC_FILEMGR_RENAME:
        RenameInPane(m_activePane);
        break;
    case IDC_FILEMGR_COPY_TO_REMOTE:
        CopyToRemote();
        break;
    case IDC_FILEMGR_COPY_TO_LOCAL:
        CopyToLocal();
        break;
    case IDC_FILEMGR_REMOTE_UP:
        UpOneFolder(kRemotePane);
        break;
    case IDC_FILEMGR_LOCAL_UP:
        UpOneFolder(kLocalPane);
        break;
    case IDC_FILEMGR_LOCAL_NEW_FOLDER:
        NewFolder(kLocalPane);
        break;
    case IDC_FILEMGR_REMOTE_NEW_FOLDER:
        NewFolder(kRemotePane);
        break;
    case IDC_FILEMGR_BACKUP:
        Backup(false);
        break;
    case IDC_FILEMGR_BACKUP_ALL:
        Backup(true);
        break;
    default:
        CDialog_::OnCommand(id);
        break;
    }
}

// ---- panes ----

CVexaFilePane* CVexaFileDlg::PaneAt(int pane) {
    return pane == kLocalPane ? &m_localPane : pane == kRemotePane ? &m_remotePane : nullptr;
}

const CVexaFilePane* CVexaFileDlg::PaneAt(int pane) const {
    return pane == kLocalPane ? &m_localPane : pane == kRemotePane ? &m_remotePane : nullptr;
}

CPXExplorerCtrl* CVexaFileDlg::View(int pane) const {
    const CVexaFilePane* found = PaneAt(pane);
    return found ? found->View() : nullptr;
}

CVexaFileList* CVexaFileDlg::List(int pane) const {
    const CVexaFilePane* found = PaneAt(pane);
    return found ? found->List() : nullptr;
}

bool CVexaFileDlg::ShowLocalFolder(const std::wstring& path) {
    return ShowPane(kLocalPane, path);
}

bool CVexaFileDlg::ShowRemoteFolder(const std::wstring& path) {
    return ShowPane(kRemotePane, path);
}

bool CVexaFileDlg::ShowPane(int pane, const std::wstring& path) {
    CVexaFilePane* found = PaneAt(pane);
    if (!found)
        return false;
    const bool read = found->ShowFolder(path);
    ShowPaneState(pane);
    return read;
}

void CVexaFileDlg::FillPane(int pane) {
    if (CVexaFilePane* found = PaneAt(pane)) {
        found->Fill();
        ShowPaneState(pane);
    }
}

void CVexaFileDlg::ShowPaneState(int pane) {
    const CVexaFilePane* found = PaneAt(pane);
    if (!found || !found->List())
        return;
    EnableControl(found->Ids().up, found->CanGoUp());
    UpdateData(false);
    if (pane == kLocalPane)
        m_driveBox->SelectDrive(found->List()->Folder());
    // A refill drops the selection; the buttons must not go on acting on the rows that were there.
    if (m_activePane == pane)
        UpdateButtons(pane, true);
}

void CVexaFileDlg::RefreshPane(int pane) {
    if (CVexaFilePane* found = PaneAt(pane)) {
        found->Refresh(pane == kRemotePane ? kRemoteStartFolder : L"");
        ShowPaneState(pane);
    }
}

void CVexaFileDlg::RefreshLocalPane() {
    RefreshPane(kLocalPane);
}

void CVexaFileDlg::RefreshRemotePane() {
    RefreshPane(kRemotePane);
}

void CVexaFileDlg::UpOneFolder(int pane) {
    const CVexaFilePane* found = PaneAt(pane);
    if (found && found->CanGoUp())
        ShowPane(pane, found->ParentFolder());
}

void CVexaFileDlg::SortPane(int pane, int column) {
    if (CVexaFilePane* found = PaneAt(pane)) {
        found->Sort(column);
        ShowPaneState(pane);
    }
}

const FileInfo* CVexaFileDlg::EntryAtRow(int pane, int row) const {
    const CVexaFilePane* found = PaneAt(pane);
    return found ? found->EntryAtRow(row) : nullptr;
}

std::vector<FileInfo> CVexaFileDlg::SelectedEntries(int pane) const {
    const CVexaFilePane* found = PaneAt(pane);
    return found ? found->SelectedEntries() : std::vector<FileInfo>();
}

// ---- buttons ----

void CVexaFileDlg::EnableCommand(int id, bool on) {
    if (id == IDC_FILEMGR_RENAME || id == IDC_FILEMGR_DELETE)
        on = on && CSystemAccess::Accessible(1);
    EnableControl(id, on);
}

bool CVexaFileDlg::MayCopyDataFiles() const {
    return CSystemAccess::Accessible(0);
}

std::wstring CVexaFileDlg::ActiveProcess() const {
    std::wstring process = m_sensor->GetActiveProcess();
    if (process.empty() && m_online)
        process = VexaDevice(m_sensor->GetDevice(L"VEXA")).getActiveProcess();
    return process;
}

bool CVexaFileDlg::BackupAllowed() const {
    return m_online && ActiveProcess().empty() && CSystemAccess::Accessible(1);
}

void CVexaFileDlg::UpdateInstrumentButtons() {
    const bool backup = BackupAllowed();
    EnableControl(IDC_FILEMGR_BACKUP, backup && !SelectedEntries(kRemotePane).empty());
    EnableControl(IDC_FILEMGR_BACKUP_ALL, backup);
    EnableControl(IDC_FILEMGR_REMOTE_NEW_FOLDER, m_online);
}

void CVexaFileDlg::UpdateButtons(int pane, bool now) {
    if (pane != kLocalPane && pane != kRemotePane)
        return;
    if (!now) {
        OnItemStateChanged(pane);
        return;
    }
    m_activePane = pane;
    const std::vector<FileInfo> selection = SelectedEntries(pane);
    const bool any = !selection.empty();
    EnableCommand(IDC_FILEMGR_DELETE, any);
    EnableCommand(IDC_FILEMGR_RENAME, any);

    // Only this pane's direction: a selection in the other pane keeps its own copy button.
    bool copy = any && (pane == kRemotePane || m_online);
    if (pane == kLocalPane && !MayCopyDataFiles()) {
        for (const FileInfo& entry : selection)
            if (IsWorkstationDataFileName(entry.name))
                copy = false;
    }
    EnableControl(pane == kLocalPane ? IDC_FILEMGR_COPY_TO_REMOTE : IDC_FILEMGR_COPY_TO_LOCAL, copy);
    UpdateInstrumentButtons();

    std::wstring description;
    if (selection.size() == 1 && !IsFolderEntry(selection.front()))
        description = VexaBuildFileDescription(selection.front().name, selection.front().GetTime());
    SetDlgItemText(IDC_FILEMGR_DESCRIPTION, description);
}

void CVexaFileDlg::OnItemStateChanged(int pane) {
    if (CVexaFilePane* found = PaneAt(pane))
        found->MarkChanged();
    // Each change starts the timer again: a burst of changes ends in one update.
    if (m_buttonTimer != 0)
        killTimer(m_buttonTimer);
    m_buttonTimer = startTimer(kButtonUpdateDelayMs);
}

void CVexaFileDlg::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_dragTimer && m_dragTimer != 0) {
        MoveDragImage();
        return;
    }
    if (event->timerId() == m_buttonTimer && m_buttonTimer != 0) {
        if (m_copying)
            return; // fires again once the copy has ended
        killTimer(m_buttonTimer);
        m_buttonTimer = 0;
        for (int pane : {kLocalPane, kRemotePane}) {
            if (PaneAt(pane)->TakeChanged()) {
                ++m_deferredUpdates;
                UpdateButtons(pane, true);
            }
        }
        return;
    }
    CDialog_::timerEvent(event);
}

// ---- drive box, speed, keyboard ----

void CVexaFileDlg::OnDriveChanged() {
    const std::wstring drive = m_driveBox->GetCurDrive();
    if (!drive.empty())
        ShowLocalFolder(drive);
}

void CVexaFileDlg::OnSpeedChanged() {
    if (m_speedLabel)
        m_speedLabel->setText(
            QString::fromStdWString(PXFormat(LoadString(IDS_REPLAY_SPEED).c_str(), m_speed->value())));
}

bool CVexaFileDlg::ShowHiddenEntries() {
    if (!CSystemAccess::Accessible(0) || !RemoteList())
        return false;
    // Only ever switched on, for the rest of the dialog's life.
    RemoteList()->SetShowHidden(true);
    RefreshRemotePane();
    return true;
}

// ---- context menu ----

std::unique_ptr<QMenu> CVexaFileDlg::BuildContextMenu(int pane, int row) {
    std::unique_ptr<QMenu> menu = LoadFileManagerMenu(this);
    const bool changes = CSystemAccess::Accessible(1);
    for (QAction* action : menu->actions()) {
        const int command = action->data().toInt();
        if (command == ID_FILEMGR_RENAME || command == ID_FILEMGR_DELETE)
            action->setEnabled(changes);
    }
    const FileInfo* entry = EntryAtRow(pane, row);
    if (pane == kRemotePane && CSystemAccess::Accessible(0) && entry && !IsFolderEntry(*entry)) {
        if (IsVexaTextOrConfigFile(entry->name))
            menu->addAction(QString::fromStdWString(LoadString(IDS_MENU_TEXT_EDITOR)))
                ->setData(ID_FILEMGR_TEXT_EDITOR);
        else if (IsVexaReplayFile(entry->name))
            menu->addAction(QString::fromStdWString(LoadString(IDS_MENU_REPLAY)))->setData(ID_FILEMGR_REPLAY);
    }
    return menu;
}

void CVexaFileDlg::OnRightClick(int pane, int row, const QPoint& globalPos) {
    // A click beside the rows acts on the selection, as the menu's commands do.
    if (row < 0)
        row = PaneAt(pane) ? PaneAt(pane)->FirstSelectedRow() : -1;
    std::unique_ptr<QMenu> menu = BuildContextMenu(pane, row);
    QAction* chosen = menu->exec(globalPos);
    if (chosen)
        RunMenuCommand(pane, row, chosen->data().toInt());
}

void CVexaFileDlg::RunMenuCommand(int pane, int row, int command) {
    switch (command) {
    case ID_FILEMGR_OPEN:
        UpdateButtons(pane, true);
        OpenEntry(pane, row);
        break;
    case ID_FILEMGR_RENAME:
        RenameInPane(pane);
        break;
    case ID_FILEMGR_DELETE:
        DeleteInPane(pane);
        break;
    case ID_FILEMGR_TEXT_EDITOR:
        if (pane == kRemotePane)
            EditTextFile(row);
        break;
    case ID_FILEMGR_REPLAY:
        if (pane == kRemotePane)
            StartReplay(row);
        break;
    default:
        break;
    }
}

// ---- drag and drop between the panes ----

void CVexaFileDlg::BeginDrag(int pane, const QPoint& globalPos) {
    if (m_dragging)
        EndDrag();
    const QPixmap image = View(pane)->CreateDragImageEx();
    if (image.isNull())
        return;
    auto* label = new QLabel(this, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput);
    label->setAttribute(Qt::WA_TransparentForMouseEvents);
    label->setAttribute(Qt::WA_DeleteOnClose);
    label->setPixmap(image);
    label->setWindowOpacity(0.7);
    label->resize(image.deviceIndependentSize().toSize());
    label->move(globalPos + QPoint(kDragImageOffset, kDragImageOffset));
    label->show();
    m_dragImage = label;
    m_dragging = true;
    m_dragPane = pane;
    QApplication::setOverrideCursor(Qt::ArrowCursor);
    m_dragTimer = startTimer(kDragTimerMs);
}

void CVexaFileDlg::MoveDragImage() {
    const QPoint cursor = QCursor::pos();
    if (m_dragImage)
        m_dragImage->move(cursor + QPoint(kDragImageOffset, kDragImageOffset));
    const bool overPane = m_localPane.Contains(cursor) || m_remotePane.Contains(cursor);
    QApplication::changeOverrideCursor(overPane ? Qt::ArrowCursor : Qt::ForbiddenCursor);
}

void CVexaFileDlg::EndDrag() {
    if (m_dragTimer != 0) {
        killTimer(m_dragTimer);
        m_dragTimer = 0;
    }
    if (m_dragImage)
        m_dragImage->close();
    m_dragImage = nullptr;
    if (m_dragging)
        QApplication::restoreOverrideCursor();
    m_dragging = false;
}

void CVexaFileDlg::DropAt(const QPoint& globalPos) {
    if (!m_dragging)
        return;
    EndDrag();
    const int from = m_dragPane;
    m_dragPane = kNoPane;
    if (from == kLocalPane && m_remotePane.Contains(globalPos))
        CopyToRemote();
    else if (from == kRemotePane && m_localPane.Contains(globalPos))
        CopyToLocal();
}

// ---- sensor notifications ----

void CVexaFileDlg::customEvent(QEvent* event) {
    if (const ISensorEvent* notification = CSensorNotifyEvent::From(event)) {
        OnSensorNotification(notification->code, notification->text);
        return;
    }
    CDialog_::customEvent(event);
}

void CVexaFileDlg::OnSensorNotification(uint32_t code, const std::wstring& text) {
    const VexaBackup::Notification what = VexaBackup::Classify(code, text);
    if (what == VexaBackup::Notification::Ignore || !RemoteList() || !LocalList())
        return;
    if (m_copying) {
        m_heldNotifications.emplace_back(code, text);
        return;
    }
    if (what == VexaBackup::Notification::StateChange) {
        const bool wasOnline = m_online;
        m_online = m_sensor->GetSensorState() == kSensorOnline;
        m_remotePane.SetHost(m_sensor->GetSensorAddress().GetHostname());
        if (m_remotePane.Host().empty())
            m_online = false;
        // Gone while shown: the pane waits for it in its folder.
        m_remotePane.SetAway(!m_online && !m_remotePane.Host().empty() &&
                             (wasOnline || m_remotePane.IsAway()));
        if (!m_online)
            EnableControl(IDC_FILEMGR_COPY_TO_REMOTE, false);
        UpdateInstrumentButtons();
    }
    if (code == kSensorEventBackup) {
        const bool own = IsOwnBackupOutcome(text);
        if (m_backupRunning && !own)
            return; // an earlier backup's archive: this one still packs, its window stays
        m_backupRunning = m_backupRunning && !own;
        // Another client's backup only changed what the panes show.
        if (own && what == VexaBackup::Notification::ArchiveReady)
            FetchBackup(text);
    }
    // Whatever the notification said, a backup window still open has nothing more to wait for.
    EndBackupWindow();
    // Both panes show what is there now, the instrument first.
    RefreshRemotePane();
    RefreshLocalPane();
    // Back again: the selection's copy button comes back with the instrument.
    if (what == VexaBackup::Notification::StateChange && m_activePane != kNoPane)
        UpdateButtons(m_activePane, true);
}
