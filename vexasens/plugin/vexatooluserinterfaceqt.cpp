// SPDX-License-Identifier: Apache-2.0
#include "vexatooluserinterfaceqt.h"

#include "defaultmethoddlg.h"
#include "filetext.h"
#include "prompt.h"
#include "pxresource.h"
#include "remotename.h"
#include "resource.h"
#include "stringtable.h"
#include "systemaccess.h"
#include "vexamethodlistdlg.h"
#include "vexamethodwizard.h"
#include "vexasensorobject.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QStringList>

namespace {

// The module's objects are linked into VexaSens.sdll whole, so this registration runs when the module
// is loaded; programs that link the dialogs' library without the module never run it.
class ToolUserInterfaceRegistration {
public:
    ToolUserInterfaceRegistration() { m_previous = SetVexaToolUserInterface(&m_ui); }
    ~ToolUserInterfaceRegistration() {
        if (&VexaToolUserInterface() == &m_ui)
            SetVexaToolUserInterface(m_previous);
    }
    ToolUserInterfaceRegistration(const ToolUserInterfaceRegistration&) = delete;
    ToolUserInterfaceRegistration& operator=(const ToolUserInterfaceRegistration&) = delete;

private:
    CVexaToolUserInterface m_ui;
    IVexaToolUserInterface* m_previous = nullptr;
};

ToolUserInterfaceRegistration g_registration;

constexpr int kMethodFolderKind = 1;
constexpr uint32_t kSelectSave = 0x1;
constexpr uint32_t kSelectPcOnly = 0x10;
constexpr uint32_t kSelectCancelText = 0x40;

// The sensor whose file selection dialog saves `fileName`: the one serving its host, else the first
// VEXARON sensor (on line preferred). Null when there is none.
VEXASensorObject* SensorFor(const std::wstring& fileName) {
    std::wstring host;
    if (SplitRemoteName(fileName, &host, nullptr)) {
        if (auto* sensor = dynamic_cast<VEXASensorObject*>(ISensorObject::Select(ISensorAddress(host))))
            return sensor;
    }
    VEXASensorObject* first = nullptr;
    for (ISensorObject* candidate : ISensorObject::AllSensors()) {
        auto* sensor = dynamic_cast<VEXASensorObject*>(candidate);
        if (sensor && sensor->IsOnline(false))
            return sensor;
        if (sensor && !first)
            first = sensor;
    }
    return first;
}

bool ChooseMethodSaveName(const std::wstring& current, const std::wstring& extension, std::wstring* chosen) {
    VEXASensorObject* sensor = SensorFor(current);
    if (!sensor)
        return ChooseLocalSaveName(current, extension, chosen);
    PXResourceScope scope(VexaResourceModule());
    // Without level 1 the instrument's methods cannot be changed: its side is not offered.
    const uint32_t side = CSystemAccess::Accessible(1) ? 0 : kSelectPcOnly;
    const std::wstring name =
        sensor->SelectFile(kMethodFolderKind, current, kSelectSave | kSelectCancelText | side, L"",
                           PXLoadCString(IDS_FILTER_METHOD), extension);
    if (name.empty() || name == L"Cancel")
        return false;
    *chosen = name;
    return true;
}

bool ChooseMethod(const std::wstring& current, std::wstring* chosen) {
    VEXASensorObject* sensor = SensorFor(current);
    if (!sensor)
        return false;
    PXResourceScope scope(VexaResourceModule());
    const std::wstring name = sensor->SelectFile(kMethodFolderKind, current, kSelectCancelText, L"",
                                                 PXLoadCString(IDS_FILTER_METHOD), L"mth");
    if (name.empty() || name == L"Cancel")
        return false;
    *chosen = name;
    return true;
}

} // namespace

void CVexaToolUserInterface::ShowMessage(const std::wstring& text) {
    Prompt().Message(text, L"VEXARON", PromptIcon::Warning, QApplication::activeWindow());
}

bool CVexaToolUserInterface::AskForFile(const std::wstring& current, const std::wstring& filter,
                                        const std::wstring& folder, std::wstring* chosen) {
    // The current name is preset where its folder exists; otherwise the dialog starts in `folder`.
    const QFileInfo preset(QString::fromStdWString(current));
    const QString start = preset.dir().exists() ? preset.absoluteFilePath()
                                                : QString::fromStdWString(folder) + "/" + preset.fileName();
    const QString path =
        QFileDialog::getOpenFileName(QApplication::activeWindow(), QString(), start, QtFileFilter(filter));
    if (path.isEmpty())
        return false;
    *chosen = path.toStdWString();
    return true;
}

bool CVexaToolUserInterface::EditMethod(const VexaMethod& method, const std::wstring& fileName,
                                        VexaWizardMode mode, const std::wstring& extension) {
    CVexaMethodWizard wizard(method, fileName, mode, QApplication::activeWindow(), extension);
    wizard.SetSaveNameChooser(ChooseMethodSaveName);
    wizard.DoModal();
    return true;
}

bool CVexaToolUserInterface::EditSequence(const VexaMethodSequence& sequence, const std::wstring& fileName) {
    CVexaMethodListDlg dialog(sequence, fileName, QApplication::activeWindow());
    dialog.SetSaveNameChooser(ChooseMethodSaveName);
    dialog.SetMethodChooser(ChooseMethod);
    dialog.DoModal();
    return true;
}

bool CVexaToolUserInterface::ManageDefaultMethods() {
    // The instrument's model decides which models' methods are ticked at first.
    CDefaultMethodDlg dialog(SensorFor(L""), QApplication::activeWindow());
    return dialog.DoModal() == IDOK;
}
