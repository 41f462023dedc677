// SPDX-License-Identifier: Apache-2.0
// The file selection dialog's commands: the location radios and the drive box, folders (enter, up,
// new), Manage Files, and OK with its checks in save mode.
#include "vexafileselectdlg.h"

#include "drivebox.h"
#include "explorerctrl.h"
#include "fileinfo.h"
#include "fileselectrules.h"
#include "filetype.h"
#include "mkdirdlg.h"
#include "paths.h"
#include "remotename.h"
#include "resource.h"
#include "sensorobject.h"
#include "vexafilekinds.h"
#include "vexafilelist.h"
#include "winsockerror.h"

#include <QComboBox>
#include <QLineEdit>

void CVexaFileSelectDlg::OnCommand(int id) {
    switch (id) {
    case IDC_SELECT_PC:
        SwitchSide(kPcSide);
        break;
    case IDC_SELECT_INSTRUMENT:
        SwitchSide(kInstrumentSide);
        break;
    case IDC_SELECT_UP:
        UpOneFolder();
        break;
    case IDC_SELECT_NEW_FOLDER:
        NewFolder();
        break;
    case IDC_SELECT_MANAGE_FILES:
        ManageFiles();
        break;
    default:
        CDialog_::OnCommand(id);
        break;
    }
}

// ---- location ----

bool CVexaFileSelectDlg::SwitchSide(int side) {
    if (side != kPcSide && side != kInstrumentSide)
        return false;
    if (side == kInstrumentSide) {
        if (!m_online || !GetDlgItem(IDC_SELECT_INSTRUMENT)->isEnabled()) {
            SetRadios(m_side);
            SyncDriveBox();
            return false;
        }
        if (!ReadInstrument(m_remoteFolder)) {
            InstrumentFailed(m_remoteFolder, ListingError(kInstrumentSide));
            return false;
        }
    } else if (!ReadSide(kPcSide, m_localFolder)) {
        ShowMessage(
            FolderMessage(IDS_UNABLE_OPEN_LOCAL_FOLDER, m_localFolder, Listing(kPcSide)->LastError()));
        SetRadios(m_side);
        return false;
    }
    m_side = side;
    SetRadios(side);
    FillList();
    return true;
}

void CVexaFileSelectDlg::OnDriveChanged() {
    if (m_driveBox->IsInstrumentSelected()) {
        SwitchSide(kInstrumentSide);
        return;
    }
    const std::wstring drive = m_driveBox->GetCurDrive();
    if (drive.empty())
        return;
    if (!GetDlgItem(IDC_SELECT_PC)->isEnabled()) {
        SyncDriveBox();
        return;
    }
    const int previousSide = m_side;
    m_side = kPcSide;
    SetRadios(kPcSide);
    if (!OpenFolder(drive) && previousSide != kPcSide)
        SwitchSide(previousSide);
}

void CVexaFileSelectDlg::InstrumentFailed(const std::wstring& folder, int error) {
    ShowMessage(FolderMessage(IDS_UNABLE_OPEN_REMOTE_FOLDER, MakeFilename(folder, L"", m_host), error));
    if (m_sensor->IsOnline()) {
        // Only this folder is unreadable: the list shows where the user was.
        ReadSide(kInstrumentSide, m_remoteFolder);
        if (m_side == kInstrumentSide)
            FillList();
        return;
    }
    // The instrument has gone: the PC side carries on alone.
    m_online = false;
    m_driveBox->RemoveInstrument();
    EnableControl(IDC_SELECT_INSTRUMENT, false);
    EnableControl(IDC_SELECT_PC, true);
    m_side = kPcSide;
    SetRadios(kPcSide);
    ReadSide(kPcSide, m_localFolder);
    FillList();
}

// ---- folders ----

bool CVexaFileSelectDlg::OpenFolder(const std::wstring& folder) {
    const std::wstring previous = SideFolder(m_side);
    if (m_side == kInstrumentSide) {
        if (!ReadSide(kInstrumentSide, folder)) {
            InstrumentFailed(folder, ListingError(kInstrumentSide));
            return false;
        }
    } else if (!ReadSide(kPcSide, GetFullPath(folder))) {
        ShowMessage(FolderMessage(IDS_UNABLE_OPEN_LOCAL_FOLDER, folder, Listing(kPcSide)->LastError()));
        ReadSide(kPcSide, previous);
        FillList();
        return false;
    }
    FillList();
    return true;
}

void CVexaFileSelectDlg::UpOneFolder() {
    const std::wstring folder = SideFolder(m_side);
    if (m_side == kInstrumentSide) {
        if (folder != L"/")
            OpenFolder(JoinInstrumentPath(folder, L".."));
    } else if (folder != GetFullPath(JoinPath(folder, L"..", kNativeSeparator))) {
        OpenFolder(JoinPath(folder, L"..", kNativeSeparator));
    }
}

void CVexaFileSelectDlg::OpenEntry(int row) {
    const FileInfo* entry = EntryAtRow(row);
    if (!entry)
        return;
    if (entry->name == L"..") {
        UpOneFolder();
    } else if (IsFolderEntry(*entry)) {
        const std::wstring folder = SideFolder(m_side);
        OpenFolder(m_side == kInstrumentSide ? JoinInstrumentPath(folder, entry->name)
                                             : JoinPath(folder, entry->name, kNativeSeparator));
    } else {
        m_nameEdit->setText(QString::fromStdWString(entry->name));
        OnOK();
    }
}

void CVexaFileSelectDlg::NewFolder() {
    if (m_side == kInstrumentSide && !m_online)
        return;
    CMkdirDlg dialog(this);
    if (dialog.DoModal() != IDOK || dialog.GetName().empty())
        return;
    CVexaFileList* list = Listing(m_side);
    if (!list->MakeFolder(dialog.GetName())) {
        const std::wstring name = list->FullName(dialog.GetName());
        std::wstring text = FormatString(IDS_SELECT_MKDIR_FAILED, name.c_str());
        text += L"\n\n" + FormatString(IDS_SELECT_ERROR_DETAIL, DescribeError(list->LastError()).c_str());
        ShowMessage(text);
    }
    if (!ReadSide(m_side, SideFolder(m_side)) && m_side == kInstrumentSide) {
        InstrumentFailed(m_remoteFolder, ListingError(kInstrumentSide));
        return;
    }
    FillList();
}

// ---- Manage Files ----

void CVexaFileSelectDlg::ManageFiles() {
    const std::wstring chosen =
        m_sensor->ManageFiles(LoadString(IDS_TOOL_MANAGE_FILES), m_manageFilesKind, 0);
    if (!chosen.empty()) {
        std::wstring folder, name, host;
        const bool remote = ParseFilename(chosen, &folder, &name, &host);
        (remote ? m_remoteFolder : m_localFolder) = folder;
        m_side = remote ? kInstrumentSide : kPcSide;
        m_pathName = chosen;
        EndDialog(IDOK);
        return;
    }
    // Files may have come and gone in Manage Files: both sides are read again.
    ReadSide(kPcSide, m_localFolder);
    m_online = m_online && m_sensor->IsOnline();
    if (m_online)
        ReadSide(kInstrumentSide, m_remoteFolder);
    else if (m_side == kInstrumentSide)
        InstrumentFailed(m_remoteFolder, kWsaNotConn);
    FillList();
}

// ---- OK ----

std::wstring CVexaFileSelectDlg::FullName(const std::wstring& folder, const std::wstring& name,
                                          bool instrument) const {
    if (instrument)
        return MakeFilename(folder, name, m_host);
    return JoinPath(folder, name, kNativeSeparator);
}

// The edit holds one name, or several each in double quotes (flag 0x2).
std::wstring CVexaFileSelectDlg::ChosenNames() const {
    const bool instrument = m_side == kInstrumentSide;
    const std::wstring folder = SideFolder(m_side);
    if (m_fileName.size() < 2 || m_fileName.front() != L'"' || m_fileName.back() != L'"') {
        // A full name typed by the user is taken as it stands.
        const bool absolute =
            !m_fileName.empty() && (m_fileName.front() == L'/' || m_fileName.front() == kNativeSeparator);
        if (IsRemoteFilename(m_fileName) || (absolute && !instrument))
            return m_fileName;
        if (absolute)
            return MakeFilename(JoinInstrumentPath(m_fileName, L".."),
                                m_fileName.substr(m_fileName.rfind(L'/') + 1), m_host);
        return FullName(folder, m_fileName, instrument);
    }
    std::wstring result;
    size_t start = 0;
    while ((start = m_fileName.find(L'"', start)) != std::wstring::npos) {
        const size_t end = m_fileName.find(L'"', start + 1);
        if (end == std::wstring::npos)
            break;
        const std::wstring name = m_fileName.substr(start + 1, end - start - 1);
        if (!name.empty())
            result += (result.empty() ? L"\"" : L" \"") + FullName(folder, name, instrument) + L"\"";
        start = end + 1;
    }
    return result;
}

bool CVexaFileSelectDlg::SaveTarget(std::wstring* fullName, std::wstring* displayName, bool* exists) const {
    std::wstring folder, name, host;
    const bool remote = ParseFilename(m_fileName, &folder, &name, &host);
    const std::wstring type = GetFileType(name);
    if ((type.empty() ? name : name.substr(0, name.size() - type.size() - 1)).empty())
        return false;
    if (type.empty() && !m_defaultExtension.empty())
        name += L"." + m_defaultExtension;

    // A typed folder is taken on the side that is shown, relative to its folder unless absolute.
    const bool instrument = remote || m_side == kInstrumentSide;
    const bool absolute = !folder.empty() && (folder.front() == L'/' || folder.front() == kNativeSeparator);
    const std::wstring shown = SideFolder(m_side);
    if (remote)
        folder = JoinInstrumentPath(L"/", folder);
    else if (instrument)
        folder = JoinInstrumentPath(absolute ? std::wstring(L"/") : shown, folder);
    else
        folder = folder.empty() ? shown
                                : GetFullPath(absolute ? folder : JoinPath(shown, folder, kNativeSeparator));
    const std::wstring targetHost = remote ? host : instrument ? m_host : std::wstring();
    *fullName =
        instrument ? MakeFilename(folder, name, targetHost) : JoinPath(folder, name, kNativeSeparator);
    *displayName = SelectDisplayName(folder, name, targetHost);

    const CVexaFileList* list = Listing(m_side);
    const bool shownFolder = (instrument == (m_side == kInstrumentSide)) && folder == SideFolder(m_side) &&
                             (!instrument || targetHost == m_host);
    FileInfo entry;
    *exists = shownFolder ? list->Find(name) != nullptr
                          : FileInfo::GetFileInfo(*fullName, &entry, nullptr, nullptr);
    return true;
}

void CVexaFileSelectDlg::OnOK() {
    if (!UpdateData(true))
        return;
    if (!(m_flags & kSelectSave)) {
        m_pathName = ChosenNames();
        EndDialog(IDOK);
        return;
    }
    std::wstring fullName, displayName;
    bool exists = false;
    if (!SaveTarget(&fullName, &displayName, &exists)) {
        ShowMessage(LoadString(IDS_SPECIFY_FILENAME));
        return;
    }
    if (exists && AskYesNo(PXFormat(LoadString(IDS_REPLACE_EXISTING).c_str(), displayName.c_str())) != IDYES)
        return;
    m_pathName = fullName;
    EndDialog(IDOK);
}
