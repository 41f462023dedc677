// SPDX-License-Identifier: Apache-2.0
#include "dialogwatcher.h"

#include <QApplication>
#include <QDialog>

DialogWatcher::DialogWatcher() {
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (qobject_cast<const QDialog*>(window))
            m_existing.insert(window);
    }
    QCoreApplication::instance()->installEventFilter(this);
}

DialogWatcher::~DialogWatcher() {
    QCoreApplication::instance()->removeEventFilter(this);
}

bool DialogWatcher::eventFilter(QObject* watched, QEvent* event) {
    if (!m_sawDialog && qobject_cast<QDialog*>(watched) && !m_existing.contains(watched))
        m_sawDialog = true;
    return QObject::eventFilter(watched, event);
}
