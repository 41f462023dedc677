// SPDX-License-Identifier: Apache-2.0
#include "tooluserinterface.h"

#include "text.h"

#include <atomic>
#include <cstdio>

namespace {

class ConsoleToolUserInterface : public IVexaToolUserInterface {
public:
    void ShowMessage(const std::wstring& text) override {
        std::fprintf(stderr, "%s\n", ToUtf8(text).c_str());
    }
    bool AskForFile(const std::wstring&, const std::wstring&, const std::wstring&, std::wstring*) override {
        return false;
    }
    bool EditMethod(const VexaMethod&, const std::wstring& fileName, VexaWizardMode,
                    const std::wstring&) override {
        ShowMessage(L"This program has no method editor; cannot edit " + fileName + L".");
        return false;
    }
    bool EditSequence(const VexaMethodSequence&, const std::wstring& fileName) override {
        ShowMessage(L"This program has no method sequence editor; cannot edit " + fileName + L".");
        return false;
    }
    bool ManageDefaultMethods() override {
        ShowMessage(L"This program cannot show the default methods.");
        return false;
    }
};

ConsoleToolUserInterface g_console;
std::atomic<IVexaToolUserInterface*> g_installed{nullptr};

} // namespace

IVexaToolUserInterface& VexaToolUserInterface() {
    IVexaToolUserInterface* ui = g_installed.load();
    return ui != nullptr ? *ui : g_console;
}

IVexaToolUserInterface* SetVexaToolUserInterface(IVexaToolUserInterface* ui) {
    return g_installed.exchange(ui);
}
