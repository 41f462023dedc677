#include "vexatooluserinterfaceqt.h"

#include "filetext.h"
#include "prompt.h"

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
