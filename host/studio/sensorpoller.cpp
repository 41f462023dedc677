// SPDX-License-Identifier: Apache-2.0
#include "sensorpoller.h"

#include <QTimer>

namespace {
// Threads are made as polls need them and end when idle; beyond this many instruments, polls queue.
constexpr int kMaxPollThreads = 128;
} // namespace

SensorPoller::SensorPoller(QObject* parent) : QObject(parent) {
    m_pool.setMaxThreadCount(kMaxPollThreads);
}

SensorPoller::~SensorPoller() {
    Finish();
}

bool SensorPoller::Start(ISensorObject* sensor, qint64 now) {
    if (!sensor || m_running.contains(sensor))
        return false;
    m_running.emplace(sensor, SensorRef<>::Share(sensor));
    // `this` outlives the task: Finish waits for the pool before the poller goes.
    PoolHandOver::Start(m_pool, [this, sensor, now] {
        sensor->OnTimer(now);
        // Queued by name: the call is then Qt's own event, and the sensor travels under our lock.
        if (m_finished.Push(sensor))
            QMetaObject::invokeMethod(this, "TakeFinished", Qt::QueuedConnection);
    });
    return true;
}

bool SensorPoller::IsPolling(const ISensorObject* sensor) const {
    return m_running.contains(const_cast<ISensorObject*>(sensor));
}

void SensorPoller::Finish() {
    PoolHandOver::WaitForDone(m_pool);
    // The queued endings of these polls are dropped with the poller or find nothing to release.
    m_running.clear();
}

void SensorPoller::TakeFinished() {
    for (ISensorObject* sensor : m_finished.TakeAll())
        Done(sensor);
}

void SensorPoller::Done(ISensorObject* sensor) {
    if (m_running.erase(sensor) == 0)
        return; // released by Finish already
    emit sensorPolled(sensor);
    if (m_signalQueued)
        return;
    m_signalQueued = true;
    QTimer::singleShot(0, this, [this] {
        m_signalQueued = false;
        emit polled();
    });
}
