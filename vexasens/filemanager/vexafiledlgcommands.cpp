// SPDX-License-Identifier: Apache-2.0
// The Manage Files dialog's commands: copy between the sides, delete, rename (by button, menu and in
// place), new folder, open, the text editor and replay. The backup is in vexafiledlgbackup.cpp.
//
// A back-end call that fails inside Delete, Rename, New folder or Copy is not reported on its own: the
// pane is read again and shows what is really there.
#include "vexafiledlg.h"

#include "copyjob.h"
#include "explorerctrl.h"
#include "filecopydlg.h"
#include "fileinfo.h"
#include "instrumenttexteditor.h"
#include "mkdirdlg.h"
#include "overwritedlg.h"
#include "paths.h"
#include "prompt.h"
#include "pxformat.h"
#include "remotename.h"
#include "renamedlg.h"
#include "resource.h"
#include "sensorobject.h"
#include "systemaccess.h"
#include "vexadevice.h"
#include "vexafilekinds.h"
#include "vexafilelist.h"
#include "winsockerror.h"

#include <QMetaObject>
#include <QSlider>

#include <utility>

namespace {

OverwriteAnswer ToOverwriteAnswer(int answer) {
    switch (answer) {
    case COverwriteDlg::kYes:
        return OverwriteAnswer::kYes;
    case COverwriteDlg::kYesToAll:
        return OverwriteAnswer::kYesToAll;
    case COverwriteDlg::kNoToAll:
        return OverwriteAnswer::kNoToAll;
    case COverwriteDlg::kCancel:
        return OverwriteAnswer::kCancel;
    default:
        return OverwriteAnswer::kNo;
    }
}

} // namespace

// ---- copy ----

void CVexaFileDlg::CopyToRemote() {
    Copy(kLocalPane);
}

void CVexaFileDlg::CopyToLocal() {
    Copy(kRemotePane);
}

void CVexaFileDlg::Copy(int fromPane) {
    const int toPane = fromPane == kLocalPane ? kRemotePane : kLocalPane;
    CVexaFileList* source = List(fromPane);
    CVexaFileList* destination = List(toPane);
    if (!source || !destination || !m_online)
        return;
    const std::vector<FileInfo> selection = SelectedEntries(fromPane);
    if (selection.empty())
        return;
    const bool mayCopyDataFiles = MayCopyDataFiles();
    if (fromPane == kLocalPane && !mayCopyDataFiles) {
        // The same rule that disables Copy -->, for a drop on the instrument pane.
        for (const FileInfo& entry : selection)
            if (IsWorkstationDataFileName(entry.name))
                return;
    }

    CopyJob job(*source, *destination);
    job.SetRetry({.retries = TransferRetry::RetriesFromSettings(), .wait = {}});
    const OverwriteQuestion ask = [this](const OverwriteCase& overwrite) {
        OverwriteSubject subject;
        subject.name = overwrite.replacement.name;
        subject.folder = overwrite.replacement.IsFolder();
        subject.description = FormatString(subject.folder ? IDS_OVERWRITE_INTO_FOLDER : IDS_OVERWRITE_TARGET,
                                           overwrite.target.c_str());
        subject.existing = overwrite.existing;
        subject.replacement = overwrite.replacement;
        return ToOverwriteAnswer(COverwriteDlg::PromptUser(subject, this));
    };
    if (job.Build(selection, mayCopyDataFiles, ask) != CopyJob::BuildResult::kReady)
        return; // nothing to copy, or cancelled before anything was written

    CFileCopyDlg progress(this);
    m_copying = true;
    progress.Run([&job](ICopyProgress& state) {
        state.SetTotal(job.TotalBytes(), job.FileCount());
        job.Run(&state);
        return 1;
    });
    m_copying = false;
    RefreshPane(toPane);
    // What the instrument said meanwhile (it may have gone off line) is handled now, in order.
    const auto held = std::exchange(m_heldNotifications, {});
    for (const auto& [code, text] : held)
        OnSensorNotification(code, text);
}

// ---- delete ----

void CVexaFileDlg::DeleteInPane(int pane) {
    CVexaFileList* list = List(pane);
    if (!list || !CSystemAccess::Accessible(1))
        return;
    std::vector<std::wstring> folders, files;
    for (const FileInfo& entry : SelectedEntries(pane))
        (IsFolderEntry(entry) ? folders : files).push_back(entry.name);
    if (folders.empty() && files.empty())
        return;

    const bool onInstrument = pane == kRemotePane;
    const std::wstring caption = windowTitle().toStdWString();
    if (!folders.empty() && AskYesNo(BuildDeleteQuestion(true, folders, onInstrument), caption) == IDYES) {
        for (auto name = folders.rbegin(); name != folders.rend(); ++name)
            list->RemoveFolder(*name, true);
    }
    if (!files.empty() && AskYesNo(BuildDeleteQuestion(false, files, onInstrument), caption) == IDYES) {
        for (const std::wstring& name : files)
            list->DeleteFile(name);
    }
    RefreshPane(pane);
}

// ---- rename ----

bool CVexaFileDlg::RenameEntry(int pane, const std::wstring& oldName, const std::wstring& newName) {
    CVexaFileList* list = List(pane);
    if (!list || newName.empty() || newName == oldName)
        return false;
    QString reason;
    if (!CMkdirDlg::IsValidFolderName(newName, &reason)) {
        ShowMessage(FormatString(IDS_INVALID_NAME, newName.c_str(), reason.toStdWString().c_str()));
        return false;
    }
    list->Rename(oldName, newName);
    return true;
}

void CVexaFileDlg::RenameInPane(int pane) {
    if (!List(pane) || !CSystemAccess::Accessible(1))
        return;
    const std::vector<FileInfo> selection = SelectedEntries(pane);
    if (selection.empty())
        return;
    CRenameDlg dialog(this);
    dialog.SetOldName(selection.front().name);
    if (dialog.DoModal() != IDOK)
        return;
    if (RenameEntry(pane, selection.front().name, dialog.GetNewName()))
        RefreshPane(pane);
}

bool CVexaFileDlg::OnLabelEditBegin(int pane, int row) {
    const FileInfo* entry = EntryAtRow(pane, row);
    if (!entry || entry->name == L".." || !CSystemAccess::Accessible(1))
        return false;
    if (pane == kRemotePane && !m_online)
        return false;
    m_labelOldName = entry->name;
    return true;
}

bool CVexaFileDlg::OnLabelEditEnded(int pane, const std::optional<std::wstring>& text) {
    const std::wstring oldName = std::move(m_labelOldName);
    m_labelOldName.clear();
    // Escape ends the edit without a text: nothing changes.
    if (!text || oldName.empty())
        return false;
    if (RenameEntry(pane, oldName, *text)) {
        // The row keeps its old text; the refill, once the editor has closed, shows the truth.
        QMetaObject::invokeMethod(
            this, [this, pane] { RefreshPane(pane); }, Qt::QueuedConnection);
    }
    return false;
}

// ---- new folder, open ----

void CVexaFileDlg::NewFolder(int pane) {
    CVexaFileList* list = List(pane);
    if (!list || (pane == kRemotePane && !m_online))
        return;
    CMkdirDlg dialog(this);
    if (dialog.DoModal() != IDOK || dialog.GetName().empty())
        return;
    list->MakeFolder(dialog.GetName());
    RefreshPane(pane);
}

void CVexaFileDlg::OpenEntry(int pane, int row) {
    const CVexaFilePane* found = PaneAt(pane);
    const FileInfo* entry = found ? found->EntryAtRow(row) : nullptr;
    if (!entry)
        return;
    if (IsFolderEntry(*entry)) {
        ShowPane(pane, found->ChildFolder(entry->name));
        return;
    }
    m_selectedFile = found->OpenName(*entry);
    EndDialog(IDOK);
}

// ---- text editor, replay ----

void CVexaFileDlg::EditTextFile(int row) {
    const FileInfo* found = EntryAtRow(kRemotePane, row);
    if (!found || IsFolderEntry(*found) || !IsVexaTextOrConfigFile(found->name) ||
        !CSystemAccess::Accessible(0))
        return;
    const FileInfo entry = *found;
    if (EditInstrumentTextFile(RemoteList()->FullName(entry), windowTitle().toStdWString(), this))
        RefreshRemotePane();
}

void CVexaFileDlg::StartReplay(int row) {
    const FileInfo* entry = EntryAtRow(kRemotePane, row);
    if (!entry || IsFolderEntry(*entry) || !IsVexaReplayFile(entry->name) || !CSystemAccess::Accessible(0))
        return;
    const int speed = m_speed ? m_speed->value() : kDefaultReplaySpeed;
    const std::wstring path = MakeFilename(RemoteList()->Folder(), entry->name, L"");
    const std::wstring command = BuildReplayCommand(path, speed);
    EndDialog(IDCANCEL);

    VexaDevice device(m_sensor->GetDevice(L"VEXA"));
    if (!device.runMethod(command))
        Prompt().Message(
            FormatString(IDS_REPLAY_FAILED, path.c_str(), DescribeError(device.getLastError()).c_str()),
            windowTitle().toStdWString(), PromptIcon::Error, parentWidget());
}
