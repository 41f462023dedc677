// SPDX-License-Identifier: Apache-2.0
#pragma once
// Notices, for its lifetime, whether a dialog that did not exist when it started receives any event
// (it is built, shown, or answered by a scripted prompt). The studio uses it to tell a dialog the
// operator closed without a choice from a module entry point that has no dialog at all: both answer
// with an empty result. GUI thread only.
#include <QObject>
#include <QSet>

class DialogWatcher : public QObject {
    Q_OBJECT
public:
    DialogWatcher();
    ~DialogWatcher() override;

    bool SawDialog() const { return m_sawDialog; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QSet<const QObject*> m_existing;
    bool m_sawDialog = false;
};
