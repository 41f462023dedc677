// SPDX-License-Identifier: Apache-2.0
#pragma once
// Polls each on-line sensor's device (its OnTimer) on a pool thread, one poll per sensor at a time, so
// a slow or silent instrument delays neither the window nor the other instruments.
//
// Thread rule: Start, IsPolling and Finish are called on the GUI thread. OnTimer runs on a pool thread;
// the sensor's notifications still reach the window as posted events. A sensor holds an extra
// reference while it is polled, released on the GUI thread when its poll has ended.
#include "poolhandover.h"
#include "sensorref.h"

#include <QObject>
#include <QThreadPool>

#include <map>

class SensorPoller : public QObject {
    Q_OBJECT
public:
    explicit SensorPoller(QObject* parent = nullptr);
    ~SensorPoller() override;

    // Starts one poll of the sensor; false while its previous poll is still running.
    bool Start(ISensorObject* sensor, qint64 now);
    bool IsPolling(const ISensorObject* sensor) const;
    // Waits for the polls in flight and lets go of their sensors. Take the sensors off line first:
    // closing a channel ends its poll at once, where a poll on a silent instrument would otherwise
    // wait for the link's time limit.
    void Finish();

signals:
    // One sensor's poll has ended (GUI thread; its snapshot is the poll's).
    void sensorPolled(ISensorObject* sensor);
    // Polls have ended since the last signal (one signal per pass of the event loop).
    void polled();

private:
    Q_INVOKABLE void TakeFinished();
    void Done(ISensorObject* sensor);

    QThreadPool m_pool;
    std::map<ISensorObject*, SensorRef<>> m_running;
    ResultQueue<ISensorObject*> m_finished;
    bool m_signalQueued = false;
};
