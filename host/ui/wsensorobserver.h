// SPDX-License-Identifier: Apache-2.0
#pragma once
// A sensor observer for a window: each notification is posted to the window's thread as a
// CSensorNotifyEvent, whatever thread raised it. The window takes it in its customEvent() through
// CSensorNotifyEvent::From. Detach before the window goes (SetWnd(nullptr) or destroy the observer first);
// events already posted to a destroyed window are dropped by Qt.
#include "sensorobserver.h"

#include <QEvent>
#include <QPointer>

#include <mutex>

class QObject;

class WSensorObserver : public ISensorObserver {
public:
    WSensorObserver() = default;
    ~WSensorObserver() override;

    void SetWnd(QObject* target, int eventType = QEvent::User + 1);
    QObject* GetWnd() const;

    // Any thread.
    void OnSensorEvent(const ISensorEvent& event) override;

private:
    mutable std::mutex m_mutex;
    QPointer<QObject> m_target;
    int m_eventType = QEvent::User + 1;
};
