// SPDX-License-Identifier: Apache-2.0
#pragma once
// "Restore Default Methods": the default methods that would be restored, each with a check box, its
// name and when it was changed, over a warning in red. The caller builds the rows and, after IDOK,
// reads back which ones stay checked.
#include "dialog.h"

#include <cstdint>
#include <string>
#include <vector>

class CPXGridCtrl;

class CRestoreDlg : public CDialog_ {
    Q_OBJECT
public:
    struct Row {
        bool checked = false;
        std::wstring name;
        std::wstring changed;
    };

    explicit CRestoreDlg(std::vector<Row> rows, QWidget* parent = nullptr);

    int GetRowCount() const { return static_cast<int>(m_rows.size()); }
    // The rows with their check flags: as built until OK takes the user's choice.
    const std::vector<Row>& Rows() const { return m_rows; }
    CPXGridCtrl* Grid() const { return m_grid; }

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    std::vector<Row> m_rows;
    std::vector<uint8_t> m_checks; // bound to the grid's check column
    CPXGridCtrl* m_grid = nullptr;
};
