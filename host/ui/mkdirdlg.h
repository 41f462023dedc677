// SPDX-License-Identifier: Apache-2.0
#pragma once
// Asks for the name of a new folder. OK stays disabled while the name cannot be a folder name, and a
// line under the edit says why.
#include "dialog.h"

#include <string>

class CMkdirDlg : public CDialog_ {
    Q_OBJECT
public:
    explicit CMkdirDlg(QWidget* parent = nullptr);

    // The entered name without surrounding blanks, after IDOK. SetName proposes one.
    const std::wstring& GetName() const { return m_name; }
    void SetName(const std::wstring& name) { m_name = name; }

    // A single folder name: not empty or blank, no "/" or "\", no control characters, not "." or "..".
    // `reason` receives why not.
    static bool IsValidFolderName(const std::wstring& name, QString* reason = nullptr);

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;
    void OnOK() override;

private:
    void Revalidate();

    std::wstring m_name;
};
