#pragma once
// The tools' user interface in the loadable module: the host's message boxes and a file-open dialog.
// Installed for the module's lifetime when VexaSens.sdll is loaded. UI thread only.
#include "tooluserinterface.h"

class CVexaToolUserInterface : public IVexaToolUserInterface {
public:
    void ShowMessage(const std::wstring& text) override;
    bool AskForFile(const std::wstring& current, const std::wstring& filter, const std::wstring& folder,
                    std::wstring* chosen) override;
};
