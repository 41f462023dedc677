// SPDX-License-Identifier: Apache-2.0
#pragma once
// For its lifetime, passes every question and message on to the prompt that was installed before it
// and keeps the warnings and errors shown meanwhile. The studio learns this way whether a module's
// tool failed: the module tells the operator, and returns nothing. GUI thread only; scoped.
#include "messageboxprompt.h"
#include "prompt.h"

#include <QStringList>

class WarningTap : public IPrompt {
public:
    WarningTap();
    ~WarningTap() override;
    WarningTap(const WarningTap&) = delete;
    WarningTap& operator=(const WarningTap&) = delete;

    const QStringList& Warnings() const { return m_warnings; }

    int AskYesNo(const std::wstring& text, const std::wstring& caption, QWidget* parent = nullptr) override;
    void Message(const std::wstring& text, const std::wstring& caption,
                 PromptIcon icon = PromptIcon::Information, QWidget* parent = nullptr) override;
    int AskOverwrite(const OverwriteSubject& subject, QWidget* parent = nullptr) override;
    std::optional<int> RunModal(CDialog_& dialog) override;

private:
    IPrompt& Previous();

    IPrompt* m_previous;
    CMessageBoxPrompt m_boxes; // when no prompt was installed
    QStringList m_warnings;
};
