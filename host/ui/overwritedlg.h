#pragma once
// "A file of that name exists: replace it?" with Yes, Yes to All, No, No to All and Cancel. The dialog
// only answers; remembering a "to all" answer for the rest of a job is the caller's business.
#include "dialog.h"

#include <string>

class FileInfo;

class COverwriteDlg : public CDialog_ {
    Q_OBJECT
public:
    // PromptUser's answers. Cancel (2) abandons the whole operation.
    enum Answer { kNo = 0, kYes = 1, kCancel = 2, kYesToAll = 3, kNoToAll = 4 };

    COverwriteDlg(const std::wstring& name, const std::wstring& description, QWidget* parent = nullptr);

    // Asks through the installed prompt (the dialog itself, or a test's script).
    static int PromptUser(const std::wstring& name, const std::wstring& description,
                          QWidget* parent = nullptr);
    // The description shows both files' sizes and times.
    static int PromptUser(const std::wstring& name, const FileInfo& existing, const FileInfo& replacement,
                          QWidget* parent = nullptr);
    static std::wstring DescribeFiles(const FileInfo& existing, const FileInfo& replacement);

    // Runs this dialog modally and returns its answer.
    int Ask();

protected:
    bool OnInitDialog() override;
    void OnCommand(int id) override;

private:
    std::wstring m_name;
    std::wstring m_description;
};
