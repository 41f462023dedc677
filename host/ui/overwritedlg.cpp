#include "overwritedlg.h"

#include "fileinfo.h"
#include "filetext.h"
#include "prompt.h"
#include "ui_overwritedlg.h"

#include <QLabel>
#include <QStyle>

namespace {

QString DescribeOne(const FileInfo& entry) {
    const QString time = FormatFileTime(entry.GetTime());
    const QString size = QStringLiteral("%1 bytes").arg(FormatFileSize(entry.size));
    return time.isEmpty() ? size : QStringLiteral("%1, modified %2").arg(size, time);
}

} // namespace

COverwriteDlg::COverwriteDlg(const std::wstring& name, const std::wstring& description, QWidget* parent)
    : CDialog_(IDD_PX_OVERWRITE, parent), m_name(name), m_description(description) {
    Ui::OverwriteDlg form;
    SetupTemplate(form);
}

int COverwriteDlg::PromptUser(const std::wstring& name, const std::wstring& description, QWidget* parent) {
    return Prompt().AskOverwrite(name, description, parent);
}

int COverwriteDlg::PromptUser(const std::wstring& name, const FileInfo& existing, const FileInfo& replacement,
                              QWidget* parent) {
    return PromptUser(name, DescribeFiles(existing, replacement), parent);
}

std::wstring COverwriteDlg::DescribeFiles(const FileInfo& existing, const FileInfo& replacement) {
    return QStringLiteral("Existing file: %1\nReplace with: %2")
        .arg(DescribeOne(existing), DescribeOne(replacement))
        .toStdWString();
}

int COverwriteDlg::Ask() {
    switch (DoModal()) {
    case IDYES:
        return kYes;
    case IDNO:
        return kNo;
    case IDC_PX_OVERWRITE_YES_ALL:
        return kYesToAll;
    case IDC_PX_OVERWRITE_NO_ALL:
        return kNoToAll;
    default:
        return kCancel;
    }
}

bool COverwriteDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    if (auto* icon = qobject_cast<QLabel*>(GetDlgItem(IDC_PX_OVERWRITE_ICON))) {
        const int extent = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
        icon->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxQuestion, nullptr, this).pixmap(extent));
    }
    SetDlgItemText(IDC_PX_OVERWRITE_QUESTION,
                   QStringLiteral("The file \"%1\" already exists.\nDo you want to replace it?")
                       .arg(QString::fromStdWString(m_name))
                       .toStdWString());
    SetDlgItemText(IDC_PX_OVERWRITE_DESCRIPTION, m_description);
    ShowControl(IDC_PX_OVERWRITE_DESCRIPTION, !m_description.empty());
    return true;
}

void COverwriteDlg::OnCommand(int id) {
    switch (id) {
    case IDYES:
    case IDNO:
    case IDC_PX_OVERWRITE_YES_ALL:
    case IDC_PX_OVERWRITE_NO_ALL:
        EndDialog(id);
        break;
    default:
        CDialog_::OnCommand(id);
    }
}
