// SPDX-License-Identifier: Apache-2.0
#include "methodfiledialog.h"

#include "methodresource.h"
#include "remotename.h"
#include "systemaccess.h"
#include "vexafileref.h"

CMethodFileDialog::CMethodFileDialog(int templateId, const std::wstring& fileName,
                                     const std::wstring& extension, const std::wstring& noun,
                                     const QString& caption, const QString& untitled, QWidget* parent)
    : CDialog_(templateId, parent), m_fileName(fileName), m_extension(extension), m_noun(noun),
      m_caption(caption), m_untitled(untitled) {}

bool CMethodFileDialog::Save() {
    return m_fileName.empty() ? SaveAs() : SaveTo(m_fileName);
}

bool CMethodFileDialog::SaveAs() {
    std::wstring chosen;
    if (!m_chooser || !m_chooser(m_fileName, m_extension, &chosen) || chosen.empty())
        return false;
    return SaveTo(chosen);
}

bool CMethodFileDialog::SaveTo(const std::wstring& name) {
    // Changing the instrument's methods is a level-1 command.
    if (IsRemoteFilename(name) && !CSystemAccess::Accessible(1)) {
        ShowMessage(L"Saving the " + m_noun + L" on the instrument needs access level 1. Save it on the PC.",
                    {}, PromptIcon::Warning);
        return false;
    }
    if (!WriteTo(name))
        return false;
    if (name != m_fileName)
        m_title.clear();
    m_fileName = name;
    UpdateTitle();
    return true;
}

bool CMethodFileDialog::SaveChecked(const std::vector<std::wstring>& problems,
                                    const std::function<bool(VexaFileRef&)>& write) {
    if (!problems.empty()) {
        std::wstring text = L"The " + m_noun + L" cannot be saved:";
        for (const std::wstring& problem : problems)
            text += L"\n- " + problem;
        ShowMessage(text, {}, PromptIcon::Warning);
        return false;
    }
    VexaFileRef file;
    if (!write(file)) {
        ShowMessage(file.GetLastErrorText(), {}, PromptIcon::Error);
        return false;
    }
    return true;
}

void CMethodFileDialog::OnCommand(int id) {
    if (id == IDC_VM_SAVE)
        Save();
    else if (id == IDC_VM_SAVE_AS)
        SaveAs();
    else
        CDialog_::OnCommand(id);
}

void CMethodFileDialog::OnCancel() {
    if (HasChanges() &&
        AskYesNo(L"The " + m_noun + L" has changes that are not saved. Close without saving?") != IDYES)
        return;
    CDialog_::OnCancel();
}

void CMethodFileDialog::SetTitle(const std::wstring& title) {
    m_title = title;
    UpdateTitle();
}

void CMethodFileDialog::UpdateTitle() {
    if (!m_title.empty()) {
        setWindowTitle(QString::fromStdWString(m_title));
        return;
    }
    const QString name = m_fileName.empty() ? m_untitled : QString::fromStdWString(m_fileName);
    setWindowTitle(m_caption + QStringLiteral(" - ") + name);
}
