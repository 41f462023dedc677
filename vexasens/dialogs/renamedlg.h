// SPDX-License-Identifier: Apache-2.0
#pragma once
// Asks for a new name of a file or folder. The edit starts with the old name, caret at its end and
// nothing selected, so the user edits the name rather than retyping it. Renaming is the caller's job;
// OK without a change returns the old name.
#include "dialog.h"

#include <string>

class CRenameDlg : public CDialog_ {
    Q_OBJECT
public:
    explicit CRenameDlg(QWidget* parent = nullptr);

    void SetOldName(const std::wstring& name) { m_oldName = name; }
    const std::wstring& GetOldName() const { return m_oldName; }
    // Valid after IDOK.
    const std::wstring& GetNewName() const { return m_newName; }

    void setVisible(bool visible) override;

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;

private:
    void PlaceCaretAtEnd();

    std::wstring m_newName;
    std::wstring m_oldName;
};
