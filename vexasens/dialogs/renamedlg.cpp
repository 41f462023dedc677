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
    if (auto* edit = qobject_cast<QLineEdit*>(GetDlgItem(IDC_RENAME_NEW_NAME))) {
        // No selection, caret at the end of the name and scrolled into view.
        edit->deselect();
        edit->end(false);
        edit->setFocus();
    }
    return true;
}
