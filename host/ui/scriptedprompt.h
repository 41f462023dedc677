// SPDX-License-Identifier: Apache-2.0
#pragma once
// A prompt for tests: answers come from queues, and every question is recorded. It installs itself for
// its lifetime (restoring the previous prompt on destruction), so a test only declares one.
//
// A question whose queue is empty gets the default answer (IDNO, overwrite Cancel). A dialog with no
// queued script ends at once with IDCANCEL (and is recorded), so a test never blocks on a modal run;
// SetDialogPassThrough(true) lets unscripted dialogs run for real instead.
#include "prompt.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

class ScriptedPrompt : public IPrompt {
public:
    enum class Kind { YesNo, Message, Overwrite, Dialog };
    struct Question {
        Kind kind;
        std::wstring text;    // the question or message; the name for Overwrite
        std::wstring caption; // the caption; the description for Overwrite
        PromptIcon icon = PromptIcon::None;
        int templateId = 0; // Dialog: the dialog's template
        int answer = 0;
        OverwriteSubject overwrite; // Overwrite: everything the question showed
    };
    // Acts on an initialised, shown dialog (fill controls, read texts) and returns the identifier of
    // the button to press (IDOK, IDCANCEL, IDYES...).
    using DialogScript = std::function<int(CDialog_&)>;

    ScriptedPrompt();
    ~ScriptedPrompt() override;
    ScriptedPrompt(const ScriptedPrompt&) = delete;
    ScriptedPrompt& operator=(const ScriptedPrompt&) = delete;

    void QueueYesNo(int answer);
    void QueueOverwrite(int answer);
    void QueueDialog(DialogScript script);
    void SetDialogPassThrough(bool passThrough) { m_passThrough = passThrough; }

    const std::vector<Question>& Asked() const { return m_asked; }
    // The recorded questions of one kind.
    std::vector<Question> Asked(Kind kind) const;
    void ClearAsked() { m_asked.clear(); }

    int AskYesNo(const std::wstring& text, const std::wstring& caption, QWidget* parent = nullptr) override;
    void Message(const std::wstring& text, const std::wstring& caption,
                 PromptIcon icon = PromptIcon::Information, QWidget* parent = nullptr) override;
    int AskOverwrite(const OverwriteSubject& subject, QWidget* parent = nullptr) override;
    std::optional<int> RunModal(CDialog_& dialog) override;

private:
    IPrompt* m_previous;
    bool m_passThrough = false;
    std::deque<int> m_yesNo;
    std::deque<int> m_overwrite;
    std::deque<DialogScript> m_dialogs;
    std::vector<Question> m_asked;
};
