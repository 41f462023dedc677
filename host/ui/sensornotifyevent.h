// SPDX-License-Identifier: Apache-2.0
#pragma once
// A sensor notification delivered to a window's thread as a posted event (the WM_USER+1 path).
#include "sensorevent.h"

#include <QEvent>

class QObject;

class CSensorNotifyEvent : public QEvent {
public:
    // The type windows receive unless they ask for another: QEvent::User + 1.
    static constexpr int kDefaultType = QEvent::User + 1;

    CSensorNotifyEvent(int type, ISensorEvent event)
        : QEvent(static_cast<QEvent::Type>(type)), m_event(std::move(event)) {}

    // Posts `event` to `target`'s thread; any thread.
    static void Post(QObject* target, int type, const ISensorEvent& event);
    // In the receiver's event handler, before it looks at the event: the notification when `event` is
    // one of `type`, else null.
    static const ISensorEvent* From(QEvent* event, int type = kDefaultType);

    const ISensorEvent& SensorEvent() const { return m_event; }

private:
    ISensorEvent m_event;
};
