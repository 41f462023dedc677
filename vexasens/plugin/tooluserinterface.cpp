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
