// SPDX-License-Identifier: Apache-2.0
#pragma once
// Takes sensors on line on pool threads, so that retries after a drop never hold up the window: the
// link's connect then waits without pumping the GUI thread's events.
//
// Thread rule: Start, IsRunning and Finish are called on the GUI thread; GoOnline runs on a pool
// thread; `finished` is emitted on the GUI thread. A sensor holds an extra reference while its attempt
// runs, so it may be removed from the studio meanwhile.
#include "poolhandover.h"
#include "sensorref.h"

#include <QObject>
#include <QThreadPool>

#include <map>

class SensorConnector : public QObject {
    Q_OBJECT
public:
    explicit SensorConnector(QObject* parent = nullptr);
    ~SensorConnector() override;

    // Starts one attempt; false while the sensor's previous attempt still runs.
    bool Start(ISensorObject* sensor);
    bool IsRunning(const ISensorObject* sensor) const;
    // Waits for the attempts in flight and lets go of their sensors.
    void Finish();

signals:
    // The attempt has ended: on line or not, and the link's error when not.
    void finished(ISensorObject* sensor, bool online, int error);

private:
    struct Attempt {
        ISensorObject* sensor;
        bool online;
        int error;
    };

    Q_INVOKABLE void TakeFinished();
    void Done(ISensorObject* sensor, bool online, int error);

    QThreadPool m_pool;
    std::map<ISensorObject*, SensorRef<>> m_running;
    ResultQueue<Attempt> m_finished;
};
