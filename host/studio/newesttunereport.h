// SPDX-License-Identifier: Apache-2.0
#pragma once
// For its lifetime, opens any tune reports window that appears on its newest report: the reports are
// listed oldest first, and after a tune the operator wants the report it just made. The window is
// known by its report list (control 10470). GUI thread only; scoped.
#include <QObject>

class NewestTuneReport : public QObject {
    Q_OBJECT
public:
    NewestTuneReport();
    ~NewestTuneReport() override;

    // How many reports windows were moved to their newest report.
    int Selected() const { return m_selected; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int m_selected = 0;
};
