// SPDX-License-Identifier: Apache-2.0
// The restore list: rows with their checks, the columns, the red warning, and what OK reads back.
#include "gridctrl.h"
#include "resource.h"
#include "restoredlg.h"

#include <QPushButton>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

std::vector<CRestoreDlg::Row> ThreeRows() {
    return {{true, L"GCMS Default.dmth", L"2026-11-02 10:15"},
            {false, L"Survey.dmth", L""},
            {true, L"Air Sampler.dmth", L"2026-10-30 08:00"}};
}

} // namespace

TEST(RestoreDlg, ShowsEveryRowAndOkTakesTheChecksAsLeft) {
    CRestoreDlg dialog(ThreeRows());
    QTimer::singleShot(0, &dialog, [&] {
        CPXGridCtrl* grid = dialog.Grid();
        EXPECT_TRUE(grid->HasCheckColumn());
        ASSERT_EQ(grid->GetColumnCount(), 2);
        EXPECT_EQ(grid->GetColumnTitle(0), L"Name");
        EXPECT_EQ(grid->GetColumnTitle(1), L"Changed");
        ASSERT_EQ(grid->GetRowCount(), 3);
        EXPECT_EQ(grid->GetCellText(2, 0), L"Air Sampler.dmth");
        EXPECT_EQ(grid->GetCellText(0, 1), L"2026-11-02 10:15");
        EXPECT_TRUE(grid->GetCheck(0));
        EXPECT_FALSE(grid->GetCheck(1));
        grid->SetCheck(0, false);
        grid->SetCheck(1, true);
        dialog.PressButton(IDOK);
    });
    ASSERT_EQ(dialog.DoModal(), IDOK);
    std::vector<bool> checks;
    for (const CRestoreDlg::Row& row : dialog.Rows())
        checks.push_back(row.checked);
    EXPECT_EQ(checks, (std::vector<bool>{false, true, true}));
}

TEST(RestoreDlg, CancelKeepsTheRowsAsBuilt) {
    CRestoreDlg dialog(ThreeRows());
    QTimer::singleShot(0, &dialog, [&] {
        dialog.Grid()->SetCheck(2, false);
        dialog.PressButton(IDCANCEL);
    });
    ASSERT_EQ(dialog.DoModal(), IDCANCEL);
    EXPECT_TRUE(dialog.Rows()[2].checked);
}

TEST(RestoreDlg, OnlyTheWarningIsRed) {
    CRestoreDlg dialog(ThreeRows());
    dialog.open();
    const QColor red(255, 0, 0);
    QWidget* warning = dialog.GetDlgItem(IDC_RESTORE_WARNING);
    ASSERT_NE(warning, nullptr);
    EXPECT_EQ(warning->palette().color(QPalette::WindowText), red);
    EXPECT_NE(dialog.GetDlgItem(IDOK)->palette().color(QPalette::ButtonText), red);
    EXPECT_NE(dialog.palette().color(QPalette::WindowText), red);
    EXPECT_EQ(dialog.windowTitle(), "Restore Default Methods");
    dialog.EndDialog(IDCANCEL);
}
