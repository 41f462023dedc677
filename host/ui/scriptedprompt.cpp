// SPDX-License-Identifier: Apache-2.0
#include "scriptedprompt.h"

#include "dialog.h"
#include "overwritedlg.h"

namespace {

template <class T> bool PopFront(std::deque<T>& queue, T* value) {
    if (queue.empty())
        return false;
    *value = std::move(queue.front());
    queue.pop_front();
    return true;
}

} // namespace

ScriptedPrompt::ScriptedPrompt() : m_previous(SetPrompt(this)) {}

ScriptedPrompt::~ScriptedPrompt() {
    SetPrompt(m_previous);
}

void ScriptedPrompt::QueueYesNo(int answer) {
    m_yesNo.push_back(answer);
}

void ScriptedPrompt::QueueOverwrite(int answer) {
    m_overwrite.push_back(answer);
}

void ScriptedPrompt::QueueDialog(DialogScript script) {
    m_dialogs.push_back(std::move(script));
}

std::vector<ScriptedPrompt::Question> ScriptedPrompt::Asked(Kind kind) const {
    std::vector<Question> matching;
    for (const Question& question : m_asked) {
        if (question.kind == kind)
            matching.push_back(question);
    }
    return matching;
}

int ScriptedPrompt::AskYesNo(const std::wstring& text, const std::wstring& caption, QWidget*) {
    int answer = IDNO;
    PopFront(m_yesNo, &answer);
    m_asked.push_back({Kind::YesNo, text, caption, PromptIcon::Question, 0, answer});
    return answer;
}

void ScriptedPrompt::Message(const std::wstring& text, const std::wstring& caption, PromptIcon icon,
                             QWidget*) {
    m_asked.push_back({Kind::Message, text, caption, icon, 0, IDOK});
}

int ScriptedPrompt::AskOverwrite(const OverwriteSubject& subject, QWidget*) {
    int answer = COverwriteDlg::kCancel;
    PopFront(m_overwrite, &answer);
    m_asked.push_back(
        {Kind::Overwrite, subject.name, subject.description, PromptIcon::Question, 0, answer, subject});
    return answer;
}

std::optional<int> ScriptedPrompt::RunModal(CDialog_& dialog) {
    DialogScript script;
    if (!PopFront(m_dialogs, &script)) {
        if (m_passThrough)
            return std::nullopt;
        m_asked.push_back({Kind::Dialog,
                           dialog.windowTitle().toStdWString(),
                           {},
                           PromptIcon::None,
                           dialog.TemplateId(),
                           IDCANCEL});
        return IDCANCEL;
    }
    dialog.show();
    const int button = script(dialog);
    int result = -1;
    if (dialog.PressButton(button) && dialog.HasEnded())
        result = dialog.result();
    dialog.hide();
    m_asked.push_back({Kind::Dialog,
                       dialog.windowTitle().toStdWString(),
                       {},
                       PromptIcon::None,
                       dialog.TemplateId(),
                       result});
    return result;
}
