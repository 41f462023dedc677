// SPDX-License-Identifier: Apache-2.0
#pragma once
// The real prompt: message boxes, and the overwrite dialog for overwrite questions.
#include "prompt.h"

class CMessageBoxPrompt : public IPrompt {
public:
    int AskYesNo(const std::wstring& text, const std::wstring& caption, QWidget* parent = nullptr) override;
    void Message(const std::wstring& text, const std::wstring& caption,
                 PromptIcon icon = PromptIcon::Information, QWidget* parent = nullptr) override;
    int AskOverwrite(const OverwriteSubject& subject, QWidget* parent = nullptr) override;
};
