// SPDX-License-Identifier: Apache-2.0
#include "mkdirdlg.h"

#include "ui_mkdirdlg.h"

#include <QLineEdit>

#include <algorithm>

CMkdirDlg::CMkdirDlg(QWidget* parent) : CDialog_(IDD_PX_MKDIR, parent) {
    Ui::MkdirDlg form;
    SetupTemplate(form);
    if (auto* edit = qobject_cast<QLineEdit*>(GetDlgItem(IDC_PX_MKDIR_NAME)))
        connect(edit, &QLineEdit::textChanged, this, &CMkdirDlg::Revalidate);
}

bool CMkdirDlg::IsValidFolderName(const std::wstring& name, QString* reason) {
    const QString text = QString::fromStdWString(name).trimmed();
    QString why;
    if (text.isEmpty())
        why = QStringLiteral("Enter a name for the folder.");
    else if (text == QLatin1String(".") || text == QLatin1String(".."))
        why = QStringLiteral("\"%1\" cannot be used as a folder name.").arg(text);
    else if (text.contains(QLatin1Char('/')) || text.contains(QLatin1Char('\\')))
        why = QStringLiteral("A folder name cannot contain / or \\.");
    else if (std::any_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x20; }))
        why = QStringLiteral("A folder name cannot contain control characters.");
    if (reason)
        *reason = why;
    return why.isEmpty();
}

void CMkdirDlg::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    DDX_Text(dx, IDC_PX_MKDIR_NAME, m_name);
}

bool CMkdirDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    Revalidate();
    if (QWidget* edit = GetDlgItem(IDC_PX_MKDIR_NAME))
        edit->setFocus();
    return false;
}

void CMkdirDlg::OnOK() {
    if (!UpdateData(true))
        return;
    if (!IsValidFolderName(m_name)) {
        Revalidate();
        return;
    }
    m_name = QString::fromStdWString(m_name).trimmed().toStdWString();
    EndDialog(IDOK);
}

void CMkdirDlg::Revalidate() {
    QString reason;
    const bool valid = IsValidFolderName(GetDlgItemText(IDC_PX_MKDIR_NAME), &reason);
    EnableControl(IDOK, valid);
    // An empty edit needs no explanation; the disabled OK says enough.
    const bool blank = QString::fromStdWString(GetDlgItemText(IDC_PX_MKDIR_NAME)).trimmed().isEmpty();
    SetDlgItemText(IDC_PX_MKDIR_HINT, blank ? std::wstring() : reason.toStdWString());
}
