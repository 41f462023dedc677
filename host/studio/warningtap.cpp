// SPDX-License-Identifier: Apache-2.0
#include "warningtap.h"

WarningTap::WarningTap() : m_previous(SetPrompt(this)) {}

WarningTap::~WarningTap() {
    SetPrompt(m_previous);
}

IPrompt& WarningTap::Previous() {
    return m_previous ? *m_previous : m_boxes;
}

int WarningTap::AskYesNo(const std::wstring& text, const std::wstring& caption, QWidget* parent) {
    return Previous().AskYesNo(text, caption, parent);
}

void WarningTap::Message(const std::wstring& text, const std::wstring& caption, PromptIcon icon,
                         QWidget* parent) {
    if (icon == PromptIcon::Warning || icon == PromptIcon::Error)
        m_warnings << QString::fromStdWString(text);
    Previous().Message(text, caption, icon, parent);
}

int WarningTap::AskOverwrite(const OverwriteSubject& subject, QWidget* parent) {
    return Previous().AskOverwrite(subject, parent);
}

std::optional<int> WarningTap::RunModal(CDialog_& dialog) {
    return Previous().RunModal(dialog);
}
