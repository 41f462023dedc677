// SPDX-License-Identifier: Apache-2.0
#include "edittextdialog.h"

#include "resource.h"
#include "ui_dialog1741.h"

#include <QPlainTextEdit>

CEditTextDialog::CEditTextDialog(QWidget* parent) : CDialog_(IDD_EDIT_TEXT, parent) {
    Ui::Dialog1741 form;
    SetupTemplate(form);
}

void CEditTextDialog::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    DDX_Control(dx, IDC_EDIT_TEXT, m_edit);
    DDX_Text(dx, IDC_EDIT_TEXT, m_text);
}

bool CEditTextDialog::OnInitDialog() {
    CDialog_::OnInitDialog();
    // 10-point Courier New; where the family is missing the platform's fixed-pitch font stands in.
    m_font = QFont(QStringLiteral("Courier New"));
    m_font.setPointSize(10);
    m_font.setStyleHint(QFont::TypeWriter);
    m_font.setFixedPitch(true);
    if (m_edit) {
        m_edit->setFont(m_font);
        m_editChanged = false;
        connect(m_edit->document(), &QTextDocument::modificationChanged, this,
                &CEditTextDialog::OnEditModificationChanged, Qt::UniqueConnection);
        m_edit->setFocus();
    }
    return true;
}

void CEditTextDialog::OnEditModificationChanged(bool changed) {
    if (changed)
        m_editChanged = true;
}

void CEditTextDialog::OnOK() {
    if (m_edit)
        m_modified = m_edit->document()->isModified() || m_editChanged;
    CDialog_::OnOK();
}
