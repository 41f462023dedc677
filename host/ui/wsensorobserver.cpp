// SPDX-License-Identifier: Apache-2.0
#include "wsensorobserver.h"

#include "sensornotifyevent.h"

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
        CSensorNotifyEvent::Post(m_target.data(), m_eventType, event);
}
