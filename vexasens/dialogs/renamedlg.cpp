// SPDX-License-Identifier: Apache-2.0
#include "renamedlg.h"

#include "resource.h"
#include "ui_dialog1702.h"

#include <QLineEdit>

CRenameDlg::CRenameDlg(QWidget* parent) : CDialog_(IDD_RENAME, parent) {
    Ui::Dialog1702 form;
    SetupTemplate(form);
}

void CRenameDlg::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    DDX_Text(dx, IDC_RENAME_NEW_NAME, m_newName);
    DDX_Text(dx, IDC_RENAME_OLD_NAME, m_oldName);
}

bool CRenameDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    m_newName = m_oldName;
    UpdateData(false);
    if (QWidget* edit = GetDlgItem(IDC_RENAME_NEW_NAME))
        edit->setFocus();
    PlaceCaretAtEnd();
    return true;
}

void CRenameDlg::setVisible(bool visible) {
    CDialog_::setVisible(visible);
    // Showing a dialog selects the whole text of the edit that gets the focus; undo that here.
    if (visible)
        PlaceCaretAtEnd();
}

void CRenameDlg::PlaceCaretAtEnd() {
    // No selection, the caret at the end of the name and scrolled into view.
    if (auto* edit = qobject_cast<QLineEdit*>(GetDlgItem(IDC_RENAME_NEW_NAME))) {
        edit->deselect();
        edit->end(false);
    }
}
