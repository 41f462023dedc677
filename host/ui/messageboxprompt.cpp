// SPDX-License-Identifier: Apache-2.0
#include "messageboxprompt.h"

#include "hostresource.h"
#include "overwritedlg.h"

#include <QApplication>
#include <QMessageBox>

namespace {

QMessageBox::Icon ToBoxIcon(PromptIcon icon) {
    switch (icon) {
    case PromptIcon::Information:
        return QMessageBox::Information;
    case PromptIcon::Warning:
        return QMessageBox::Warning;
    case PromptIcon::Error:
        return QMessageBox::Critical;
    case PromptIcon::Question:
        return QMessageBox::Question;
    case PromptIcon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

// An empty caption shows the application's name, as the suite's message boxes do.
QString CaptionOrAppName(const std::wstring& caption) {
    return caption.empty() ? QApplication::applicationDisplayName() : QString::fromStdWString(caption);
}

} // namespace

int CMessageBoxPrompt::AskYesNo(const std::wstring& text, const std::wstring& caption, QWidget* parent) {
    QMessageBox box(QMessageBox::Question, CaptionOrAppName(caption), QString::fromStdWString(text),
                    QMessageBox::Yes | QMessageBox::No, parent);
    box.setDefaultButton(QMessageBox::Yes);
    return box.exec() == QMessageBox::Yes ? IDYES : IDNO;
}

void CMessageBoxPrompt::Message(const std::wstring& text, const std::wstring& caption, PromptIcon icon,
                                QWidget* parent) {
    QMessageBox box(ToBoxIcon(icon), CaptionOrAppName(caption), QString::fromStdWString(text),
                    QMessageBox::Ok, parent);
    box.exec();
}

int CMessageBoxPrompt::AskOverwrite(const OverwriteSubject& subject, QWidget* parent) {
    COverwriteDlg dialog(subject, parent);
    return dialog.Ask();
}
