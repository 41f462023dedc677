// SPDX-License-Identifier: Apache-2.0
#pragma once
// Questions and messages to the user. Everything that asks the user goes through the installed
// prompt, so that tests answer from a script (ScriptedPrompt) and never block on a real box.
// UI thread only.
#include "overwritesubject.h"

#include <optional>
#include <string>

class CDialog_;
class QWidget;

enum class PromptIcon { None, Information, Warning, Error, Question };

class IPrompt {
public:
    virtual ~IPrompt();
    // A question with Yes and No; returns IDYES (6) or IDNO (7).
    virtual int AskYesNo(const std::wstring& text, const std::wstring& caption,
                         QWidget* parent = nullptr) = 0;
    // An empty caption shows the application's name.
    virtual void Message(const std::wstring& text, const std::wstring& caption,
                         PromptIcon icon = PromptIcon::Information, QWidget* parent = nullptr) = 0;
    // "File exists: overwrite?" with COverwriteDlg's answers (see overwritedlg.h).
    virtual int AskOverwrite(const OverwriteSubject& subject, QWidget* parent = nullptr) = 0;
    // Called by CDialog_::DoModal for every dialog that asks the user something. An answer replaces the
    // modal run (the dialog's result); none lets the dialog run for real.
    virtual std::optional<int> RunModal(CDialog_& dialog);
};

// The installed prompt, or the message-box prompt when none is installed.
IPrompt& Prompt();
// Installs a prompt (null: back to the message boxes); returns the previous one. Not owned.
IPrompt* SetPrompt(IPrompt* prompt);
