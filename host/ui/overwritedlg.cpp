// SPDX-License-Identifier: Apache-2.0
#include "overwritedlg.h"

#include "filetext.h"
#include "prompt.h"
#include "ui_overwritedlg.h"

#include <QLabel>
#include <QStyle>

namespace {

// Two lines for one side of the comparison; the newer side says so and is drawn bold.
QString DescribeSide(const FileInfo& entry, bool newer) {
    const QString size = entry.IsFolder() ? QStringLiteral("Folder")
                                          : QStringLiteral("%1 bytes").arg(FormatFileSize(entry.size));
    QString time = FormatFileTime(entry.GetTime());
    if (time.isEmpty())
        time = QStringLiteral("time unknown");
    else
        time = QStringLiteral("modified %1").arg(time);
    if (newer)
        time += QStringLiteral(" (newer)");
    return size + QLatin1Char('\n') + time;
}

void SetBold(QWidget* widget, bool bold) {
    QFont font = widget->font();
    font.setBold(bold);
    widget->setFont(font);
}

} // namespace

COverwriteDlg::COverwriteDlg(const OverwriteSubject& subject, QWidget* parent)
    : CDialog_(IDD_PX_OVERWRITE, parent), m_subject(subject) {
    Ui::OverwriteDlg form;
    SetupTemplate(form);
}

int COverwriteDlg::PromptUser(const std::wstring& name, const std::wstring& description, QWidget* parent) {
    OverwriteSubject subject;
    subject.name = name;
    subject.description = description;
    return PromptUser(subject, parent);
}

int COverwriteDlg::PromptUser(const OverwriteSubject& subject, QWidget* parent) {
    return Prompt().AskOverwrite(subject, parent);
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
    const QString name = QString::fromStdWString(m_subject.name);
    const QString question =
        m_subject.folder
            ? QStringLiteral("The folder \"%1\" already exists.\nDo you want to copy into it?").arg(name)
            : QStringLiteral("The file \"%1\" already exists.\nDo you want to replace it?").arg(name);
    SetDlgItemText(IDC_PX_OVERWRITE_QUESTION, question.toStdWString());
    if (m_subject.folder) {
        setWindowTitle(QStringLiteral("Confirm Folder Copy"));
        SetDlgItemText(IDC_PX_OVERWRITE_REPLACEMENT_HEADING, L"Copied into it");
    }
    ShowComparison();
    SetDlgItemText(IDC_PX_OVERWRITE_DESCRIPTION, m_subject.description);
    ShowControl(IDC_PX_OVERWRITE_DESCRIPTION, !m_subject.description.empty());
    return true;
}

void COverwriteDlg::ShowComparison() {
    const bool known = m_subject.existing && m_subject.replacement;
    ShowControl(IDC_PX_OVERWRITE_COMPARISON, known);
    if (!known)
        return;
    const int newer = CompareModified(*m_subject.existing, *m_subject.replacement);
    SetDlgItemText(IDC_PX_OVERWRITE_EXISTING, DescribeSide(*m_subject.existing, newer < 0).toStdWString());
    SetDlgItemText(IDC_PX_OVERWRITE_REPLACEMENT,
                   DescribeSide(*m_subject.replacement, newer > 0).toStdWString());
    SetBold(GetDlgItem(IDC_PX_OVERWRITE_EXISTING), newer < 0);
    SetBold(GetDlgItem(IDC_PX_OVERWRITE_REPLACEMENT), newer > 0);
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
