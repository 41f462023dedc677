// SPDX-License-Identifier: Apache-2.0
#pragma once
// The modal "Manage Files" dialog: the workstation's files on the left, the instrument's on the right,
// with copy buttons between them. From it the user copies, deletes, renames and makes folders on either
// side, opens a file for review (the dialog then ends with IDOK and the file's full name), edits the
// instrument's text and configuration files and starts a replay of an instrument data file.
//
// Everything runs on the user-interface thread except a copy, which runs on a worker behind the modal
// CFileCopyDlg. Sensor notifications arrive as posted CSensorNotifyEvent events (QEvent::User + 1).
//
// Commands the user may not use are shown as disabled controls: Rename and Delete need access level 1,
// the replay speed, Alt+H (hidden instrument entries), the text editor, the replay and copying data
// files between the sides need access level 0.
#include "dialog.h"
#include "sensorref.h"
#include "vexafilepane.h"
#include "wsensorobserver.h"

#include <QFont>
#include <QPointer>
#include <QTimer>

#include <memory>
#include <optional>
#include <string>
#include <vector>

class CBackupDlg;
class CPXDriveBox;
class CPXExplorerCtrl;
class CVexaFileList;
class FileInfo;
class ISensorObject;
class QLabel;
class QMenu;
class QShortcut;
class QSlider;

class CVexaFileDlg : public CDialog_ {
    Q_OBJECT
public:
    enum Pane : int { kNoPane = 0, kLocalPane = 1, kRemotePane = 2 };
    // Timer 1 moves the drag image; timer 2 collects a burst of selection changes into one update.
    static constexpr int kDragTimerMs = 25;
    static constexpr int kButtonUpdateDelayMs = 250;
    static constexpr int kMinReplaySpeed = 1;
    static constexpr int kMaxReplaySpeed = 20;
    static constexpr int kDefaultReplaySpeed = 10;

    // Serves `sensor` (a reference is held for the dialog's life).
    explicit CVexaFileDlg(ISensorObject& sensor, QWidget* parent = nullptr);
    ~CVexaFileDlg() override;

    // ---- set by the opener before the modal run ----
    void SetTitle(const std::wstring& title) { m_title = title; }
    // The opener's flags, kept for the dialog's life as the opener passed them.
    void SetFlags(uint32_t flags) { m_flags = flags; }
    uint32_t Flags() const { return m_flags; }
    void SetLocalStartFolder(const std::wstring& folder) { m_localStartFolder = folder; }
    // A font for the dialog and every control in it; without one the template's font stays.
    void SetDialogFont(const QFont& font) { m_dialogFont = font; }
    // The full name of the file chosen with Open; valid after the dialog ended with IDOK.
    const std::wstring& GetSelectedFile() const { return m_selectedFile; }

    // ---- panes ----
    // Read a folder into the pane and show it; false when it cannot be read (the pane is then empty and
    // says so with "0 Object(s)").
    bool ShowLocalFolder(const std::wstring& path);
    bool ShowRemoteFolder(const std::wstring& path);
    // Re-read the pane's current folder and fill the pane again.
    void RefreshLocalPane();
    void RefreshRemotePane();
    void UpOneFolder(int pane);
    // As a click on a column heading: the same column flips the order, another sorts ascending by it.
    void SortPane(int pane, int column);
    // Makes `pane` the active pane and sets the command buttons and the description for its selection.
    void UpdateButtons(int pane, bool now);

    // ---- commands ----
    void CopyToRemote();
    void CopyToLocal();
    void DeleteInPane(int pane);
    void RenameInPane(int pane);
    void NewFolder(int pane);
    // A folder is entered; a file becomes the selected file and the dialog ends with IDOK.
    void OpenEntry(int pane, int row);
    void EditTextFile(int row);
    void StartReplay(int row);
    // Asks, starts the instrument's backup of the selected instrument entries (or of everything) and
    // shows the progress window until the instrument's notification ends it.
    void Backup(bool all);
    CBackupDlg* BackupWindow() const { return m_backupDlg.get(); }

    // ---- context menu ----
    // Menu 1739 as the user would see it for a right click on `row` (-1: no row) of a pane.
    std::unique_ptr<QMenu> BuildContextMenu(int pane, int row);
    void RunMenuCommand(int pane, int row, int command);
    // Sets the instrument list's show-hidden flag and refills the pane, when access level 0 allows it.
    // False when refused.
    bool ShowHiddenEntries();
    // The end of a drag at a global point: a drop on the other pane copies, anywhere else nothing.
    void DropAt(const QPoint& globalPos);

    // ---- state, for the opener and tests ----
    int ActivePane() const { return m_activePane; }
    bool IsInstrumentOnline() const { return m_online; }
    bool IsDragging() const { return m_dragging; }
    // How many deferred button updates ran (timer 2 firing with a changed pane).
    int DeferredUpdateCount() const { return m_deferredUpdates; }
    CVexaFileList* LocalList() const { return m_localPane.List(); }
    CVexaFileList* RemoteList() const { return m_remotePane.List(); }
    CPXExplorerCtrl* View(int pane) const;
    // The pane object for kLocalPane or kRemotePane; null for any other number.
    CVexaFilePane* PaneAt(int pane);
    const CVexaFilePane* PaneAt(int pane) const;

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;
    void OnCommand(int id) override;
    void customEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    static constexpr const wchar_t* kRemoteStartFolder = L"/";

    CVexaFileList* List(int pane) const;
    bool ShowPane(int pane, const std::wstring& path);
    // Pushes the pane's texts and up button to the controls after its view was filled.
    void ShowPaneState(int pane);
    void FillPane(int pane);
    void RefreshPane(int pane);
    void EnableCommand(int id, bool on);
    // Backup, Backup All and the instrument's New Folder: enabled only when they can act.
    void UpdateInstrumentButtons();
    bool BackupAllowed() const;
    std::wstring ActiveProcess() const;
    const FileInfo* EntryAtRow(int pane, int row) const;
    std::vector<FileInfo> SelectedEntries(int pane) const;
    void ConnectPane(int pane);
    void OnItemStateChanged(int pane);
    bool OnLabelEditBegin(int pane, int row);
    // Returns whether the row keeps the typed text (never: the pane is read again instead).
    bool OnLabelEditEnded(int pane, const std::optional<std::wstring>& text);
    // Renames in the pane's folder after checking the new name; false when nothing was tried.
    bool RenameEntry(int pane, const std::wstring& oldName, const std::wstring& newName);
    void OnRightClick(int pane, int row, const QPoint& globalPos);
    void OnDriveChanged();
    void OnSpeedChanged();
    void OnSensorNotification(uint32_t code, const std::wstring& text);
    void EndBackupWindow();
    // Whether a backup notification's text is the outcome of the backup this dialog runs (not of one
    // that another client, or an earlier run, left queued).
    bool IsOwnBackupOutcome(const std::wstring& text) const;
    void FetchBackup(const std::wstring& archive);
    void BeginDrag(int pane, const QPoint& globalPos);
    void MoveDragImage();
    void EndDrag();
    void Copy(int fromPane);
    bool MayCopyDataFiles() const;

    WSensorObserver m_observer;
    std::unique_ptr<CBackupDlg> m_backupDlg;
    CVexaFilePane m_localPane;
    CVexaFilePane m_remotePane;
    SensorRef<> m_sensor;
    bool m_online = false;
    // From this dialog's backup start until its outcome; the start in seconds since 1970.
    bool m_backupRunning = false;
    int64_t m_backupSince = 0;
    std::wstring m_title;
    uint32_t m_flags = 0;
    std::wstring m_localStartFolder;
    std::optional<QFont> m_dialogFont;
    std::wstring m_selectedFile;
    int m_activePane = kNoPane;
    bool m_dragging = false;
    int m_dragPane = kNoPane;
    QPointer<QLabel> m_dragImage;
    std::wstring m_labelOldName;
    int m_dragTimer = 0;
    int m_buttonTimer = 0;
    int m_deferredUpdates = 0;
    // While a copy worker runs, it owns the destination list and the link's transfer: notifications
    // wait until it has ended.
    bool m_copying = false;
    std::vector<std::pair<uint32_t, std::wstring>> m_heldNotifications;

    CPXDriveBox* m_driveBox = nullptr;
    QShortcut* m_showHidden = nullptr;
    QSlider* m_speed = nullptr;
    QLabel* m_speedLabel = nullptr;
};
