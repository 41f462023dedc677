// SPDX-License-Identifier: Apache-2.0
#include "qtpumpdispatcher.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

void QtPumpDispatcher::WaitForEvents(int ms) {
    if (ms <= 0)
        return;
    QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance();
    if (!dispatcher)
        return;
    // The timer bounds the wait: its expiry is an event like any other.
    QTimer limit;
    limit.setSingleShot(true);
    limit.start(ms);
    dispatcher->processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
}

void QtPumpDispatcher::DispatchPending() {
    QCoreApplication::processEvents(QEventLoop::AllEvents);
}

void InstallQtPumpDispatcher() {
    thread_local QtPumpDispatcher dispatcher;
    if (ThreadPumpDispatcher() != &dispatcher)
        SetThreadPumpDispatcher(&dispatcher);
}
