// SPDX-License-Identifier: Apache-2.0
#include "sensorconnector.h"

#include "sensorobject.h"

namespace {
// A fleet that returns together connects this many at a time; the rest queue.
constexpr int kMaxConnectThreads = 16;
} // namespace

SensorConnector::SensorConnector(QObject* parent) : QObject(parent) {
    m_pool.setMaxThreadCount(kMaxConnectThreads);
}

SensorConnector::~SensorConnector() {
    Finish();
}

bool SensorConnector::Start(ISensorObject* sensor) {
    if (!sensor || m_running.contains(sensor))
        return false;
    m_running.emplace(sensor, SensorRef<>::Share(sensor));
    // `this` outlives the task: Finish waits for the pool before the connector goes.
    PoolHandOver::Start(m_pool, [this, sensor] {
        const bool online = sensor->GoOnline();
        const int error = online ? 0 : sensor->GetLastLinkError();
        // Queued by name: the call is then Qt's own event, and the outcome travels under our lock.
        if (m_finished.Push({sensor, online, error}))
            QMetaObject::invokeMethod(this, "TakeFinished", Qt::QueuedConnection);
    });
    return true;
}

bool SensorConnector::IsRunning(const ISensorObject* sensor) const {
    return m_running.contains(const_cast<ISensorObject*>(sensor));
}

void SensorConnector::Finish() {
    PoolHandOver::WaitForDone(m_pool);
    m_running.clear();
}

void SensorConnector::TakeFinished() {
    for (const Attempt& attempt : m_finished.TakeAll())
        Done(attempt.sensor, attempt.online, attempt.error);
}

void SensorConnector::Done(ISensorObject* sensor, bool online, int error) {
    auto it = m_running.find(sensor);
    if (it == m_running.end())
        return; // released by Finish already
    // Kept alive until the receivers have seen it.
    const SensorRef<> hold = std::move(it->second);
    m_running.erase(it);
    emit finished(sensor, online, error);
}
