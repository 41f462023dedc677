// SPDX-License-Identifier: Apache-2.0
#pragma once
// One instrument of the studio's list: its configuration, the sensor object its sensor type made for
// it (the studio holds the first reference), and what the studio knows about its connection.
// Sensor notifications arrive here as posted events on the GUI thread and leave as a signal.
#include "instrumentactivity.h"
#include "instrumentconfig.h"
#include "reconnectschedule.h"
#include "sensorref.h"
#include "statusmonitor.h"

#include <QDateTime>
#include <QList>
#include <QObject>

#include <memory>

class ISensorInfo;
class WSensorObserver;

class ManagedInstrument : public QObject {
    Q_OBJECT
public:
    // Reconnecting: the sensor went off line by itself and is being tried again on a back-off.
    enum class State { Unavailable, Offline, Connecting, Online, Reconnecting };

    ManagedInstrument(const InstrumentConfig& config, bool transient, QObject* parent = nullptr);
    ~ManagedInstrument() override;

    const InstrumentConfig& Config() const { return m_config; }
    // Given with --instrument for this run: never saved.
    bool IsTransient() const { return m_transient; }

    // Makes the sensor object with the sensor type (null: the type is not loaded) and subscribes to
    // its notifications. A previous sensor is taken off line and released first.
    void Attach(const InstrumentConfig& config, ISensorInfo* sensorType);
    // A new name for the same instrument; the sensor keeps its connection.
    void Rename(const QString& name);
    // Takes the sensor off line and releases it.
    void Release();

    ISensorObject* Sensor() const { return m_sensor.get(); }
    State GetState() const;
    // Why there is no sensor object (unknown type, address refused); empty when there is one.
    const QString& Problem() const { return m_problem; }

    // The connection error noted when going on line failed or the link dropped; 0 when none.
    int LastError() const { return m_lastError; }
    void SetLastError(int error) { m_lastError = error; }
    bool IsConnecting() const { return m_connecting; }
    void SetConnecting(bool connecting) { m_connecting = connecting; }
    // Set while the operator takes the sensor off line, so its off-line notification is not a drop.
    bool ExpectsOffline() const { return m_expectOffline; }
    void SetExpectsOffline(bool expect) { m_expectOffline = expect; }

    // What the instrument is doing, from its last status (idle and without status while off line).
    const InstrumentActivity& Activity() const { return m_activity; }
    // Reads the sensor's last status; true when it is one not read before. Records when it came.
    bool RefreshActivity(qint64 nowMs);
    // When the last new status was read (ms since 1970), 0 when none has been.
    qint64 LastStatusTime() const { return m_lastStatusTime; }
    // What the studio keeps the instrument busy with ("Tuning ..."), shown with its state; empty when
    // nothing.
    const QString& BusyNote() const { return m_busyNote; }
    void SetBusyNote(const QString& note) { m_busyNote = note; }
    // Alarms active on the instrument now.
    int AlarmCount() const { return ActiveAlarmCount(); }

    // Trends and alarms of this session.
    StatusMonitor& Monitor() { return m_monitor; }
    const StatusMonitor& Monitor() const { return m_monitor; }
    int ActiveAlarmCount() const { return m_monitor.Alarms().ActiveCount(); }
    // The alarms begun and ended this session, oldest first (the latest kMaxKept).
    const QList<AlarmChange>& AlarmChanges() const { return m_alarmChanges; }
    void NoteAlarmChanges(const std::vector<AlarmChange>& changes);

    struct Notification {
        QDateTime time;
        quint32 code = 0;
        QString text;
    };
    // The sensor's notifications received this session, oldest first (the latest kMaxKept).
    const QList<Notification>& Notifications() const { return m_notifications; }
    static constexpr int kMaxKept = 1000;

    // ---- a drop the operator did not ask for ----
    // The sensor went off line by itself at `nowMs` (a steady clock): the first retry is scheduled.
    void BeginReconnecting(qint64 nowMs);
    // Back on line, or the operator took it off line or changed it: no more retries, no loss noted.
    void StopReconnecting();
    bool IsReconnecting() const { return m_schedule.IsActive(); }
    ReconnectSchedule& Schedule() { return m_schedule; }
    // When the drop was noticed (wall clock; invalid when no drop is pending).
    const QDateTime& LostAt() const { return m_lostAt; }
    // A retry of this instrument is running on a pool thread.
    bool IsRetrying() const { return m_retrying; }
    void SetRetrying(bool retrying) { m_retrying = retrying; }
    // When it last came back after a drop (steady clock), 0 when never.
    qint64 ReturnedAtMs() const { return m_returnedAtMs; }
    void SetReturnedAtMs(qint64 ms) { m_returnedAtMs = ms; }
    // The attempt that brought it back, so a drop right after resumes the back-off from there.
    int ReturnAttempt() const { return m_returnAttempt; }
    void SetReturnAttempt(int attempt) { m_returnAttempt = attempt; }

    // "On line", "Off line: 10061 (connection refused)", "Reconnecting in 4 s (attempt 3): ...".
    QString StateText() const;
    QString StateText(qint64 nowMs) const;
    // The steady clock the schedule runs on, in milliseconds.
    static qint64 SteadyNowMs();
    // "VEXA-1 (127.0.0.1)"
    QString Title() const;

signals:
    void sensorEvent(quint32 code, const QString& text);

protected:
    void customEvent(QEvent* event) override;

private:
    InstrumentConfig m_config;
    bool m_transient;
    SensorRef<> m_sensor;
    std::unique_ptr<WSensorObserver> m_observer;
    QString m_problem;
    int m_lastError = 0;
    bool m_connecting = false;
    bool m_expectOffline = false;
    InstrumentActivity m_activity;
    uint64_t m_statusSerial = 0;
    qint64 m_lastStatusTime = 0;
    QString m_busyNote;

    StatusMonitor m_monitor;
    QList<AlarmChange> m_alarmChanges;
    QList<Notification> m_notifications;
    ReconnectSchedule m_schedule;
    QDateTime m_lostAt;
    bool m_retrying = false;
    qint64 m_returnedAtMs = 0;
    int m_returnAttempt = 1;
};
