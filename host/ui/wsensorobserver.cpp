// SPDX-License-Identifier: Apache-2.0
#include "wsensorobserver.h"

#include "sensornotifyevent.h"

#include <QCoreApplication>

WSensorObserver::~WSensorObserver() {
    // Stop receiving before the target pointer goes.
    SetSensor(nullptr);
    std::lock_guard lock(m_mutex);
    m_target = nullptr;
}

void WSensorObserver::SetWnd(QObject* target, int eventType) {
    std::lock_guard lock(m_mutex);
    m_target = target;
    m_eventType = eventType;
}

QObject* WSensorObserver::GetWnd() const {
    std::lock_guard lock(m_mutex);
    return m_target.data();
}

void WSensorObserver::OnSensorEvent(const ISensorEvent& event) {
    std::lock_guard lock(m_mutex);
    if (m_target)
        QCoreApplication::postEvent(m_target.data(), new CSensorNotifyEvent(m_eventType, event));
}
