// SPDX-License-Identifier: Apache-2.0
#include "vexadialoglauncher.h"

#include "instrumenttexteditor.h"
#include "paths.h"
#include "pxresource.h"
#include "remotename.h"
#include "resource.h"
#include "tunereportsdlg.h"
#include "vexafiledlg.h"
#include "vexafileselectdlg.h"
#include "vexasensorobject.h"

#include <QApplication>

QWidget* CVexaDialogLauncher::DialogParent() {
    return QApplication::activeWindow();
}

bool CVexaDialogLauncher::ManageFiles(VEXASensorObject& sensor, const std::wstring& argument, int kind,
                                      uint32_t flags, std::wstring* result) {
    std::wstring localFolder;
    if (kind < 0 || !sensor.GetFolderInfo(unsigned(kind), &localFolder, nullptr, nullptr, nullptr))
        return false;
    // The sensor's folders belong to the suite: a first visit makes them.
    if (!localFolder.empty() && !IsDirectory(localFolder))
        FullDirCreate(localFolder);

    CVexaFileDlg dialog(sensor, DialogParent());
    // The opener's argument is the caption; without one the tool's own name.
    dialog.SetTitle(argument.empty() ? PXLoadCString(IDS_TOOL_MANAGE_FILES) : argument);
    dialog.SetFlags(flags);
    dialog.SetLocalStartFolder(localFolder);
    if (dialog.DoModal() != IDOK)
        return false;
    if (result)
        *result = dialog.GetSelectedFile();
    return true;
}

bool CVexaDialogLauncher::SelectFile(VEXASensorObject& sensor, int kind, const std::wstring& start,
                                     uint32_t flags, const std::wstring& title, const std::wstring& filter,
                                     const std::wstring& defaultExtension, std::wstring* result) {
    // The kind's folders are where each side opens when the start name does not say.
    std::wstring localFolder, remoteFolder;
    if (kind >= 0 && sensor.GetFolderInfo(unsigned(kind), &localFolder, &remoteFolder, nullptr, nullptr) &&
        !localFolder.empty() && !IsDirectory(localFolder))
        FullDirCreate(localFolder);

    CVexaFileSelectDlg dialog(sensor, flags, filter, title, start, DialogParent());
    dialog.SetDefaultFolders(localFolder, remoteFolder);
    dialog.SetManageFilesKind(kind < 0 ? 0 : kind);
    dialog.SetDefaultExtension(defaultExtension);
    if (dialog.DoModal() != IDOK)
        return false;
    if (result)
        *result = dialog.GetPathName();
    return true;
}

void CVexaDialogLauncher::ShowTuneReports(VEXASensorObject& sensor, const std::wstring& title) {
    constexpr int kTuneKind = 2;
    std::wstring localFolder, remoteFolder;
    sensor.GetFolderInfo(kTuneKind, &localFolder, &remoteFolder, nullptr, nullptr);
    // The instrument's tune files when it is on line, else the workstation's.
    const std::wstring start = sensor.IsOnline(true)
                                   ? MakeFilename(remoteFolder, L"", sensor.GetSensorAddress().GetHostname())
                                   : localFolder;
    const std::wstring tuneFile =
        sensor.SelectFile(kTuneKind, start, 0, title, PXLoadCString(IDS_FILTER_TUNE), L"tun");
    if (tuneFile.empty() || tuneFile == L"Cancel")
        return;
    CTuneReportsDlg dialog(&sensor, tuneFile, DialogParent());
    dialog.SetWindowText(title);
    dialog.DoModal();
}

bool CVexaDialogLauncher::EditTextFile(VEXASensorObject& /*sensor*/, const std::wstring& fullName) {
    QWidget* parent = DialogParent();
    return EditInstrumentTextFile(fullName, parent ? parent->windowTitle().toStdWString() : std::wstring(),
                                  parent);
}
