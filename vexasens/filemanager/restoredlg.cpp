// SPDX-License-Identifier: Apache-2.0
#include "restoredlg.h"

#include "gridctrl.h"
#include "resource.h"
#include "ui_dialog1736.h"

#include <QLabel>

namespace {

constexpr int kColumnWidthChars = 16;

} // namespace

CRestoreDlg::CRestoreDlg(std::vector<Row> rows, QWidget* parent)
    : CDialog_(IDD_RESTORE, parent), m_rows(std::move(rows)) {
    Ui::Dialog1736 form;
    SetupTemplate(form);
    m_grid = qobject_cast<CPXGridCtrl*>(GetDlgItem(IDC_RESTORE_LIST));
    // Only the warning is red; every other control keeps its colours.
    if (QWidget* warning = GetDlgItem(IDC_RESTORE_WARNING)) {
        QPalette red = warning->palette();
        red.setColor(QPalette::WindowText, QColor(255, 0, 0));
        warning->setPalette(red);
    }
}

bool CRestoreDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    m_checks.clear();
    for (const Row& row : m_rows)
        m_checks.push_back(row.checked ? 1 : 0);
    m_grid->DeleteAllColumns();
    m_grid->MapDataToChecks(&m_checks);
    m_grid->AddSubColumn(LoadString(IDS_COLUMN_NAME), kColumnWidthChars);
    m_grid->AddSubColumn(LoadString(IDS_COLUMN_CHANGED), kColumnWidthChars);
    m_grid->SetGridSize(GetRowCount());
    for (int row = 0; row < GetRowCount(); ++row) {
        m_grid->SetCellText(row, 0, m_rows[row].name);
        m_grid->SetCellText(row, 1, m_rows[row].changed);
    }
    m_grid->AutoSizeColumns();
    return true;
}

void CRestoreDlg::OnOK() {
    for (std::size_t i = 0; i < m_rows.size() && i < m_checks.size(); ++i)
        m_rows[i].checked = m_checks[i] != 0;
    CDialog_::OnOK();
}
