#include "managedinstrument.h"

#include "sensorinfo.h"
#include "sensornotifyevent.h"
#include "sensorobject.h"
#include "winsockerror.h"
#include "wsensorobserver.h"

ManagedInstrument::ManagedInstrument(const InstrumentConfig& config, bool transient, QObject* parent)
    : QObject(parent), m_config(config), m_transient(transient) {}

ManagedInstrument::~ManagedInstrument() {
    Release();
}

void ManagedInstrument::Attach(const InstrumentConfig& config, ISensorInfo* sensorType) {
    Release();
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
    if (sensor->IsOnline(false))
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
        return State::Connecting;
    default:
        return State::Offline;
    }
}

QString ManagedInstrument::StateText() const {
    switch (GetState()) {
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

QString ManagedInstrument::Title() const {
    if (m_config.name == m_config.address)
        return m_config.name;
    return QStringLiteral("%1 (%2)").arg(m_config.name, m_config.address);
}

void ManagedInstrument::customEvent(QEvent* event) {
    if (event->type() != CSensorNotifyEvent::kDefaultType)
        return QObject::customEvent(event);
    const ISensorEvent& notification = static_cast<CSensorNotifyEvent*>(event)->SensorEvent();
    m_notifications.append(
        {QDateTime::currentDateTime(), notification.code, QString::fromStdWString(notification.text)});
    if (m_notifications.size() > kMaxKept)
        m_notifications.removeFirst();
    emit sensorEvent(notification.code, QString::fromStdWString(notification.text));
}

void ManagedInstrument::NoteAlarmChanges(const std::vector<AlarmChange>& changes) {
    for (const AlarmChange& change : changes)
        m_alarmChanges.append(change);
    while (m_alarmChanges.size() > kMaxKept)
        m_alarmChanges.removeFirst();
}
