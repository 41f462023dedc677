#include "vexadialoglauncher.h"

#include "paths.h"
#include "prompt.h"
#include "pxresource.h"
#include "remotename.h"
#include "resource.h"
#include "tunereportsdlg.h"
#include "vexafiledlg.h"
#include "vexasensorobject.h"

#include <QApplication>

namespace {

void SayNotAvailable(int textId) {
    Prompt().Message(PXLoadCString(textId), PXLoadCString(IDS_LOCATION_INSTRUMENT), PromptIcon::Information,
                     CVexaDialogLauncher::DialogParent());
}

} // namespace

QWidget* CVexaDialogLauncher::DialogParent() {
    return QApplication::activeWindow();
}

bool CVexaDialogLauncher::ManageFiles(VEXASensorObject& sensor, const std::wstring& /*argument*/, int kind,
                                      uint32_t /*flags*/, std::wstring* result) {
    std::wstring localFolder;
    if (kind < 0 || !sensor.GetFolderInfo(unsigned(kind), &localFolder, nullptr, nullptr, nullptr))
        return false;
    // The sensor's folders belong to the suite: a first visit makes them.
    if (!localFolder.empty() && !IsDirectory(localFolder))
        FullDirCreate(localFolder);

    CVexaFileDlg dialog(sensor, DialogParent());
    dialog.SetTitle(PXLoadCString(IDS_TOOL_MANAGE_FILES));
    dialog.SetLocalStartFolder(localFolder);
    dialog.SetRemoteStartFolder(L"/");
    if (dialog.DoModal() != IDOK)
        return false;
    if (result)
        *result = dialog.GetSelectedFile();
    return true;
}

bool CVexaDialogLauncher::SelectFile(VEXASensorObject&, int, const std::wstring&, uint32_t,
                                     const std::wstring&, const std::wstring&, const std::wstring&,
                                     std::wstring*) {
    SayNotAvailable(IDS_SELECT_FILE_NOT_AVAILABLE);
    return false;
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
