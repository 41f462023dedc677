// SPDX-License-Identifier: Apache-2.0
#include "managedinstrument.h"

#include "sensorinfo.h"
#include "sensornotifyevent.h"
#include "sensorobject.h"
#include "winsockerror.h"
#include "wsensorobserver.h"

#include <QRandomGenerator>

#include <chrono>

ManagedInstrument::ManagedInstrument(const InstrumentConfig& config, bool transient, QObject* parent)
    : QObject(parent), m_config(config), m_transient(transient),
      m_schedule(QRandomGenerator::global()->generate()) {}

ManagedInstrument::~ManagedInstrument() {
    Release();
}

void ManagedInstrument::Attach(const InstrumentConfig& config, ISensorInfo* sensorType) {
    Release();
    StopReconnecting();
    m_config = config;
    m_lastError = 0;
    m_problem.clear();
    if (!sensorType) {
        m_problem = tr("the sensor type %1 is not loaded").arg(config.sensorType);
        return;
    }
    const ISensorAddress address = sensorType->MakeSensorAddress(config.address.toStdWString(), false);
    if (address.IsValid())
        m_sensor.Reset(sensorType->CreateSensorObject(nullptr, address));
    if (!m_sensor) {
        m_problem = tr("the sensor type %1 refused the address %2").arg(config.sensorType, config.address);
        return;
    }
    m_sensor->SetName(config.name.toStdWString());
    m_observer = std::make_unique<WSensorObserver>();
    m_observer->SetWnd(this, CSensorNotifyEvent::kDefaultType);
    m_observer->SetSensor(m_sensor.get());
}

void ManagedInstrument::Rename(const QString& name) {
    m_config.name = name;
    if (m_sensor)
        m_sensor->SetName(name.toStdWString());
}

void ManagedInstrument::Release() {
    if (!m_sensor)
        return;
    SensorRef<> sensor = std::move(m_sensor);
    // Unsubscribe first: the off-line notification of a sensor being dropped is of no interest.
    m_observer.reset();
    // A retry still running on a pool thread must not take it on line again.
    sensor->SetKeepOffline(true);
    if (sensor->IsOnline(false) || sensor->GetSensorState() == kSensorConnecting)
        sensor->Disconnect(0);
}

ManagedInstrument::State ManagedInstrument::GetState() const {
    if (!m_sensor)
        return State::Unavailable;
    if (m_connecting)
        return State::Connecting;
    switch (m_sensor->GetSensorState()) {
    case kSensorOnline:
        return State::Online;
    case kSensorConnecting:
        return m_schedule.IsActive() ? State::Reconnecting : State::Connecting;
    default:
        return m_schedule.IsActive() ? State::Reconnecting : State::Offline;
    }
}

void ManagedInstrument::BeginReconnecting(qint64 nowMs) {
    m_schedule.Start(nowMs);
    m_lostAt = QDateTime::currentDateTime();
}

void ManagedInstrument::StopReconnecting() {
    m_schedule.Stop();
    m_lostAt = QDateTime();
}

qint64 ManagedInstrument::SteadyNowMs() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

QString ManagedInstrument::StateText() const {
    return StateText(SteadyNowMs());
}

QString ManagedInstrument::StateText(qint64 nowMs) const {
    switch (GetState()) {
    case State::Reconnecting: {
        const QString why = m_lastError != 0
                                ? tr(": error %1").arg(QString::fromStdWString(DescribeError(m_lastError)))
                                : QString();
        if (m_retrying || m_schedule.IsDue(nowMs))
            return tr("Reconnecting now (attempt %1)%2").arg(m_schedule.Attempt()).arg(why);
        return tr("Reconnecting in %1 s (attempt %2)%3")
            .arg(m_schedule.SecondsLeft(nowMs))
            .arg(m_schedule.Attempt())
            .arg(why);
    }
    case State::Unavailable:
        return tr("Not available: %1").arg(m_problem);
    case State::Connecting:
        return tr("Connecting ...");
    case State::Online:
        return tr("On line");
    case State::Offline:
        break;
    }
    if (m_lastError != 0)
        return tr("Off line: error %1").arg(QString::fromStdWString(DescribeError(m_lastError)));
    return tr("Off line");
}

bool ManagedInstrument::RefreshActivity(qint64 nowMs) {
    if (!m_sensor || !m_sensor->IsOnline(false)) {
        m_activity = {};
        return false;
    }
    const IDevice& device = m_sensor->GetDevice(L"VEXA");
    const uint64_t serial = device.SnapshotSerial();
    if (serial == m_statusSerial)
        return false;
    m_statusSerial = serial;
    m_activity = InstrumentActivity::FromDevice(device);
    if (m_activity.hasStatus)
        m_lastStatusTime = nowMs;
    return m_activity.hasStatus;
}

QString ManagedInstrument::Title() const {
    if (m_config.name == m_config.address)
        return m_config.name;
    return QStringLiteral("%1 (%2)").arg(m_config.name, m_config.address);
}

void ManagedInstrument::customEvent(QEvent* event) {
    const ISensorEvent* notification = CSensorNotifyEvent::From(event);
    if (!notification)
        return QObject::customEvent(event);
    m_notifications.append(
        {QDateTime::currentDateTime(), notification->code, QString::fromStdWString(notification->text)});
    if (m_notifications.size() > kMaxKept)
        m_notifications.removeFirst();
    emit sensorEvent(notification->code, QString::fromStdWString(notification->text));
}

void ManagedInstrument::NoteAlarmChanges(const std::vector<AlarmChange>& changes) {
    for (const AlarmChange& change : changes)
        m_alarmChanges.append(change);
    while (m_alarmChanges.size() > kMaxKept)
        m_alarmChanges.removeFirst();
}
