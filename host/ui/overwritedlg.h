// SPDX-License-Identifier: Apache-2.0
#pragma once
// "A file of that name exists: replace it?" with Yes, Yes to All, No, No to All and Cancel. When both
// entries are known, their sizes and modification times stand side by side, the newer one marked, so
// the user decides on what would be lost. For a folder it asks whether to copy into it. The dialog only
// answers; remembering a "to all" answer for the rest of a job is the caller's business.
#include "dialog.h"
#include "overwritesubject.h"

#include <string>

class COverwriteDlg : public CDialog_ {
    Q_OBJECT
public:
    // PromptUser's answers. Cancel (2) abandons the whole operation.
    enum Answer { kNo = 0, kYes = 1, kCancel = 2, kYesToAll = 3, kNoToAll = 4 };

    explicit COverwriteDlg(const OverwriteSubject& subject, QWidget* parent = nullptr);

    // Asks through the installed prompt (the dialog itself, or a test's script).
    static int PromptUser(const std::wstring& name, const std::wstring& description,
                          QWidget* parent = nullptr);
    static int PromptUser(const OverwriteSubject& subject, QWidget* parent = nullptr);

    // Runs this dialog modally and returns its answer.
    int Ask();

protected:
    bool OnInitDialog() override;
    void OnCommand(int id) override;

private:
    void ShowComparison();

    OverwriteSubject m_subject;
};
