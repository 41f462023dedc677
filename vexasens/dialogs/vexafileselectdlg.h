// SPDX-License-Identifier: Apache-2.0
#pragma once
// The module's own open and save dialog (template 1704). One list browses either the workstation or
// the instrument, chosen with two location radios or the drive box; the user picks or types a file
// name. The sensor's SelectFile runs it modally and returns GetPathName() after IDOK.
//
// The caller's flags word is described in fileselectrules.h. An unreadable start folder ends the
// dialog with IDCANCEL after a message. An instrument that cannot be listed any more is reported with
// its error number; when it has gone off line the dialog carries on with the PC side alone.
//
// User-interface thread only.
#include "dialog.h"
#include "sensorref.h"
#include "wsensorobserver.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class CPXDriveBox;
class CPXExplorerCtrl;
class CVexaFileList;
class FileInfo;
class ISensorObject;
class QComboBox;
class QLineEdit;

class CVexaFileSelectDlg : public CDialog_ {
    Q_OBJECT
public:
    enum Side : int { kPcSide = 0, kInstrumentSide = 1 };
    // Timer 1 collects a burst of selection changes into one update of the name edit.
    static constexpr int kSelectionDelayMs = 250;

    // `filter` is "Description|pattern|..." (empty: all files); `title` empty keeps the template's;
    // `initialPath` is a PC path or an instrument name "@HOST:/folder/name". A reference on the
    // sensor is held for the dialog's life.
    CVexaFileSelectDlg(ISensorObject& sensor, uint32_t flags, const std::wstring& filter,
                       const std::wstring& title, const std::wstring& initialPath, QWidget* parent = nullptr);
    ~CVexaFileSelectDlg() override;

    // ---- set by the opener before the modal run ----
    // Where a side opens when the initial path does not name a folder on it.
    void SetDefaultFolders(const std::wstring& pcFolder, const std::wstring& instrumentFolder);
    // The folder kind that Manage Files (button 16823) opens with.
    void SetManageFilesKind(int kind) { m_manageFilesKind = kind; }
    // Given to a name typed without an extension when saving ("mth"; empty: none).
    void SetDefaultExtension(const std::wstring& extension) { m_defaultExtension = extension; }

    // The chosen full name after IDOK: a PC path, or "@HOST:/folder/name" on the instrument. With
    // several quoted names in the edit, each full name in double quotes, separated by blanks.
    const std::wstring& GetPathName() const { return m_pathName; }

    // ---- commands, as the controls run them ----
    // Shows a side at its current folder; false (and a message) when it cannot be listed.
    bool SwitchSide(int side);
    // Lists a folder of the checked side; false (and a message) when it cannot be read.
    bool OpenFolder(const std::wstring& folder);
    void UpOneFolder();
    void NewFolder();
    // A double click: a folder is entered, a file is accepted as with OK.
    void OpenEntry(int row);
    void ManageFiles();
    // Alt+H: lists every instrument entry from now on. False, and nothing changed, without level 1.
    bool ShowAllEntries();
    void SelectFilter(int index);

    // ---- state, for tests ----
    int CheckedSide() const { return m_side; }
    bool IsInstrumentOnline() const { return m_online; }
    // The instrument dropped off line by itself after the dialog had it: the dialog says so, keeps the
    // instrument folder and reads it again when the instrument comes back.
    bool IsInstrumentAway() const { return m_away; }
    // The checked side's folder: a PC path, or an instrument path ("/Data") on the instrument.
    std::wstring CurrentFolder() const;
    CVexaFileList* Listing(int side) const;
    CPXExplorerCtrl* List() const { return m_list; }
    const std::wstring& CurrentPattern() const { return m_pattern; }
    // How often the name edit was updated from the selection (timer 1 ticks).
    int SelectionUpdateCount() const { return m_selectionUpdates; }

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCommand(int id) override;
    void timerEvent(QTimerEvent* event) override;
    void customEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void CreateList();
    void SplitInitialPath();
    void FillFilters();
    void FillDriveBox();
    bool OpenStartSide();
    void SetRadios(int side);
    // Reads `folder` into the side's listing; on failure the listing keeps `folder` and is empty.
    bool ReadSide(int side, const std::wstring& folder);
    // Why the side's last listing failed: the listing's error, else the link's.
    int ListingError(int side) const;
    // The instrument's listing with a fall-back to "/"; false when neither can be read.
    bool ReadInstrument(const std::wstring& folder);
    void FillList();
    // Shows the checked side's drive (or the instrument) in the drive box.
    void SyncDriveBox();
    void ShowSelection();
    void OnItemStateChanged(bool selected);
    void OnDriveChanged();
    void OnNameChanged();
    void SortList(int column);
    // A listing of the instrument failed after opening: says why, and leaves the instrument when it
    // went off line.
    void InstrumentFailed(const std::wstring& folder, int error);
    // The sensor's on-line state changed (a posted notification).
    void OnInstrumentState();
    // Enables what needs the instrument on its side, or disables it while it is away.
    void EnableInstrumentCommands(bool on);
    std::wstring FolderMessage(int textId, const std::wstring& folder, int error) const;
    std::wstring SideFolder(int side) const;
    std::wstring FullName(const std::wstring& folder, const std::wstring& name, bool instrument) const;
    std::wstring ChosenNames() const;
    // Save mode: the full name of the typed text, and whether it names an existing file.
    bool SaveTarget(std::wstring* fullName, std::wstring* displayName, bool* exists) const;
    const FileInfo* EntryAtRow(int row) const;

    SensorRef<> m_sensor;
    WSensorObserver m_observer;
    bool m_away = false;
    std::wstring m_awayHost;
    uint32_t m_flags;
    std::wstring m_filter;
    std::wstring m_title;
    std::wstring m_initialPath;
    std::wstring m_defaultPcFolder;
    std::wstring m_defaultInstrumentFolder = L"/";
    std::wstring m_defaultExtension;
    int m_manageFilesKind = 0;

    std::wstring m_localFolder;
    std::wstring m_remoteFolder;
    std::wstring m_fileName;
    std::wstring m_folderText;
    bool m_startRemote = false;
    bool m_online = false;
    std::wstring m_host;
    int m_side = kPcSide;
    std::vector<std::wstring> m_patterns;
    std::wstring m_pattern;
    std::unique_ptr<CVexaFileList> m_lists[2];
    std::wstring m_pathName;

    int m_selectionTimer = 0;
    int m_selectionUpdates = 0;

    CPXExplorerCtrl* m_list = nullptr; // a child of the dialog, made by CreateList
    CPXDriveBox* m_driveBox = nullptr;
    QComboBox* m_filterBox = nullptr;
    QLineEdit* m_nameEdit = nullptr;
};
