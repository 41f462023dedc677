// SPDX-License-Identifier: Apache-2.0
#include "sensornotifyevent.h"

#include "threadhandover.h"

#include <QCoreApplication>

namespace {
// One for every notification: each is fully written before the post that follows its release.
char g_handOverToken;
} // namespace

void CSensorNotifyEvent::Post(QObject* target, int type, const ISensorEvent& event) {
    auto* posted = new CSensorNotifyEvent(type, event);
    ThreadHandOver::Release(&g_handOverToken);
    QCoreApplication::postEvent(target, posted);
}

const ISensorEvent* CSensorNotifyEvent::From(QEvent* event, int type) {
    ThreadHandOver::Acquire(&g_handOverToken);
    if (event->type() != static_cast<QEvent::Type>(type))
        return nullptr;
    return &static_cast<CSensorNotifyEvent*>(event)->m_event;
}
