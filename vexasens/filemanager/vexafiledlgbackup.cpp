// SPDX-License-Identifier: Apache-2.0
// The Manage Files dialog's backup: the question, the instrument's backup started with the selected
// entries or everything, the progress window while it packs, and the archive fetched to a PC file the
// user picks once the instrument's notification names it.
#include "vexafiledlg.h"

#include "backupdlg.h"
#include "filecopydlg.h"
#include "fileinfo.h"
#include "remotename.h"
#include "resource.h"
#include "sensorevent.h"
#include "sensornotifyevent.h"
#include "sensorobject.h"
#include "vexabackup.h"
#include "vexadevice.h"
#include "vexafilelist.h"
#include "winsockerror.h"

#include <QCoreApplication>

#include <ctime>
#include <utility>

namespace {

// What the save question passes besides title, filter and extension (the host's own flag set).
constexpr uint32_t kSaveArchiveFlags = 17;
constexpr wchar_t kArchiveExtension[] = L"tgz";

} // namespace

void CVexaFileDlg::Backup(bool all) {
    if (!RemoteList() || !m_online || !BackupAllowed())
        return;
    std::wstring argument;
    if (!all) {
        std::vector<std::wstring> names;
        for (const FileInfo& entry : SelectedEntries(kRemotePane))
            names.push_back(entry.name);
        if (names.empty())
            return;
        argument = VexaBackup::ItemArgument(m_remotePane.Host(), RemoteList()->Folder(), names);
    }
    if (AskYesNo(LoadString(IDS_BACKUP_CONFIRM), LoadString(IDS_BACKUP_TITLE)) != IDYES)
        return;
    // The instrument's notifications are one queue for every client: what it holds now belongs to an
    // earlier backup and is handled as such before this one starts. (A poll already under way on the
    // timer's thread takes them instead; an archive they name is then refused by its time.)
    m_sensor->OnTimer(0);
    QCoreApplication::sendPostedEvents(this, CSensorNotifyEvent::kDefaultType);
    IDevice& device = m_sensor->GetDevice(L"VEXA");
    VexaDevice instrument(device);
    m_backupSince = std::time(nullptr);
    // Running from before the start: the outcome may arrive while the start's own wait pumps events.
    m_backupRunning = true;
    // A backup that did not start sends no notification: no window would ever be ended.
    if (!instrument.runBackup(argument)) {
        m_backupRunning = false;
        ShowMessage(FormatString(IDS_BACKUP_START_FAILED, DescribeError(instrument.getLastError()).c_str(),
                                 instrument.getLastErrorText().c_str()),
                    LoadString(IDS_BACKUP_TITLE), PromptIcon::Error);
        return;
    }
    if (m_backupRunning) { // else its outcome has been handled already
        m_backupDlg->SetDevice(&device);
        m_backupDlg->DoModal();
    }
    m_backupRunning = false;
}

bool CVexaFileDlg::IsOwnBackupOutcome(const std::wstring& text) const {
    if (!m_backupRunning)
        return false;
    if (VexaBackup::Classify(kSensorEventBackup, text) != VexaBackup::Notification::ArchiveReady)
        return true; // "aborted" ends the backup that runs
    bool newer = true;
    // An archive that cannot be described is taken: the fetch then says what is wrong with it.
    VexaBackup::IsArchiveSince(m_remotePane.Host(), text, m_backupSince, &newer);
    return newer;
}

void CVexaFileDlg::EndBackupWindow() {
    if (m_backupDlg && m_backupDlg->isVisible())
        m_backupDlg->EndDialog(IDOK);
}

// The archive is ready on the instrument; `archive` is its instrument path.
void CVexaFileDlg::FetchBackup(const std::wstring& archive) {
    EndBackupWindow();
    RefreshRemotePane();
    const std::wstring proposed =
        MakeFilename(m_sensor->GetSensorDir(L"", true), m_sensor->GetName() + L"." + kArchiveExtension, L"");
    const std::wstring chosen =
        m_sensor->SelectFile(-1, proposed, kSaveArchiveFlags, LoadString(IDS_BACKUP_TITLE),
                             LoadString(IDS_FILTER_BACKUP), kArchiveExtension);
    if (chosen.empty() || chosen == L"Cancel")
        return; // the archive stays on the instrument
    std::wstring archiveFolder, archiveName, targetFolder, targetName;
    ParseFilename(archive, &archiveFolder, &archiveName, nullptr);
    ParseFilename(chosen, &targetFolder, &targetName, nullptr);
    CVexaFileList source(m_sensor.get(), CVexaFileList::FolderArgument(m_remotePane.Host(), archiveFolder));
    CVexaFileList target(nullptr, CVexaFileList::FolderArgument(L"", targetFolder), false);
    const FileInfo* entry = source.Find(archiveName);
    bool copied = false;
    bool cancelled = false;
    if (entry != nullptr) {
        CFileCopyDlg progress(this);
        m_copying = true;
        progress.Run([&](ICopyProgress& state) {
            state.SetTotal(entry->size, 1);
            copied = target.CopyIn(*entry, source, &state, targetName);
            state.SetDone();
            return 1;
        });
        m_copying = false;
        cancelled = progress.WasCancelled();
    }
    // What the instrument said during the copy (it may have gone off line) is handled now, in order.
    for (const auto& [code, text] : std::exchange(m_heldNotifications, {}))
        OnSensorNotification(code, text);
    if (!copied && !cancelled) {
        const int error = entry == nullptr ? source.LastError() : target.LastError();
        ShowMessage(FormatString(IDS_BACKUP_COPY_FAILED, archive.c_str(), chosen.c_str(),
                                 DescribeError(error).c_str()),
                    LoadString(IDS_BACKUP_TITLE), PromptIcon::Error);
    }
    EnableControl(IDC_FILEMGR_BACKUP, false);
}
