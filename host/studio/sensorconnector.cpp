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
    m_pool.start([this, sensor] {
        const bool online = sensor->GoOnline();
        const int error = online ? 0 : sensor->GetLastLinkError();
        QMetaObject::invokeMethod(
            this, [this, sensor, online, error] { Done(sensor, online, error); }, Qt::QueuedConnection);
    });
    return true;
}

bool SensorConnector::IsRunning(const ISensorObject* sensor) const {
    return m_running.contains(const_cast<ISensorObject*>(sensor));
}

void SensorConnector::Finish() {
    m_pool.waitForDone();
    m_running.clear();
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
