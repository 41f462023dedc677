// SPDX-License-Identifier: Apache-2.0
#include "newesttunereport.h"

#include <QApplication>
#include <QDialog>
#include <QEvent>
#include <QListWidget>

namespace {
constexpr int kReportListControl = 10470;
} // namespace

NewestTuneReport::NewestTuneReport() {
    QCoreApplication::instance()->installEventFilter(this);
}

NewestTuneReport::~NewestTuneReport() {
    QCoreApplication::instance()->removeEventFilter(this);
}

bool NewestTuneReport::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) {
        if (auto* dialog = qobject_cast<QDialog*>(watched)) {
            for (QListWidget* list : dialog->findChildren<QListWidget*>()) {
                if (list->property("ctrlId").toInt() == kReportListControl && list->count() > 0) {
                    list->setCurrentRow(list->count() - 1);
                    list->scrollToItem(list->currentItem());
                    ++m_selected;
                }
            }
        }
    }
    return QObject::eventFilter(watched, event);
}
