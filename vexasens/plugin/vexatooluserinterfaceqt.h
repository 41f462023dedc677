// SPDX-License-Identifier: Apache-2.0
#pragma once
// The tools' user interface in the loadable module: the host's message boxes and a file-open dialog.
// Installed for the module's lifetime when VexaSens.sdll is loaded. UI thread only.
#include "tooluserinterface.h"

class CVexaToolUserInterface : public IVexaToolUserInterface {
public:
    void ShowMessage(const std::wstring& text) override;
    bool AskForFile(const std::wstring& current, const std::wstring& filter, const std::wstring& folder,
                    std::wstring* chosen) override;
    // The host's method editors, saving through the file selection dialog of the instrument the file
    // lies on (or of the first VEXARON sensor), so methods go to the PC or the instrument.
    bool EditMethod(const VexaMethod& method, const std::wstring& fileName, VexaWizardMode mode,
                    const std::wstring& extension) override;
    bool EditSequence(const VexaMethodSequence& sequence, const std::wstring& fileName) override;
    // The default-methods dialog, for the model of the first VEXARON sensor (on line preferred).
    bool ManageDefaultMethods() override;
};
