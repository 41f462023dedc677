#include "vexatooluserinterfaceqt.h"

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
        QFileDialog::getOpenFileName(QApplication::activeWindow(), QString(), start, QtFilter(filter));
    if (path.isEmpty())
        return false;
    *chosen = path.toStdWString();
    return true;
}

QString CVexaToolUserInterface::QtFilter(const std::wstring& filter) {
    const QStringList parts = QString::fromStdWString(filter).split('|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString description = parts[i].trimmed();
        const QString patterns = parts[i + 1].split(';', Qt::SkipEmptyParts).join(' ').simplified();
        if (description.isEmpty() || patterns.isEmpty())
            continue;
        // Qt reads the patterns from the last parentheses: replace the description's own list.
        const qsizetype open = description.lastIndexOf(" (");
        if (open > 0 && description.endsWith(')'))
            description.truncate(open);
        filters << description + " (" + patterns + ")";
    }
    return filters.join(";;");
}
