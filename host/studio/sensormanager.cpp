// SPDX-License-Identifier: Apache-2.0
#include "sensormanager.h"

#include "eventwords.h"
#include "alarmtext.h"
#include "managedinstrument.h"
#include "movefolder.h"
#include "paths.h"
#include "remotename.h"
#include "sensorevent.h"
#include "sensorinfo.h"
#include "sensorref.h"
#include "timeformat.h"
#include "winsockerror.h"

#include <QDateTime>
#include <QRegularExpression>

namespace {
constexpr int kDefaultTimerMs = 1000;
constexpr int kMinimumTimerMs = 100;

QString ErrorText(int error) {
    return QString::fromStdWString(DescribeError(error));
}

} // namespace

SensorManager::SensorManager(QObject* parent) : QObject(parent) {
    connect(&m_poller, &SensorPoller::polled, this, [this] {
        const qint64 now = QDateTime::currentMSecsSinceEpoch();
        for (ManagedInstrument* instrument : std::as_const(m_instruments))
            instrument->RefreshActivity(now);
        emit ticked();
    });
    connect(&m_poller, &SensorPoller::sensorPolled, this, &SensorManager::OnPolled);
    connect(&m_connector, &SensorConnector::finished, this, &SensorManager::OnRetryFinished);
    m_reconnectTimer.setInterval(kReconnectCheckMs);
    connect(&m_reconnectTimer, &QTimer::timeout, this, &SensorManager::StartDueRetries);
}

SensorManager::~SensorManager() {
    // Sensors go off line and are released before the modules' objects could be touched by anyone;
    // off line first, so polls in flight end at once, then the polls' own references.
    m_reconnectTimer.stop();
    qDeleteAll(m_instruments);
    m_instruments.clear();
    m_poller.Finish();
    m_connector.Finish();
}

bool SensorManager::LoadPlugins(const QString& folder) {
    const QStringList lines = m_plugins.LoadFolder(folder);
    for (const QString& line : lines)
        emit logMessage(line);
    const QString problem = m_plugins.Problem();
    if (!problem.isEmpty())
        emit logMessage(problem);
    return problem.isEmpty();
}

ManagedInstrument* SensorManager::At(int row) const {
    return row >= 0 && row < Count() ? m_instruments[row] : nullptr;
}

int SensorManager::IndexOf(const ManagedInstrument* instrument) const {
    for (int row = 0; row < Count(); ++row) {
        if (m_instruments[row] == instrument)
            return row;
    }
    return -1;
}

int SensorManager::FindAddress(const QString& address) const {
    for (int row = 0; row < Count(); ++row) {
        if (m_instruments[row]->Config().address.compare(address.trimmed(), Qt::CaseInsensitive) == 0)
            return row;
    }
    return -1;
}

QList<InstrumentConfig> SensorManager::SavedConfigs() const {
    QList<InstrumentConfig> configs;
    for (const ManagedInstrument* instrument : m_instruments) {
        if (!instrument->IsTransient())
            configs.append(instrument->Config());
    }
    return configs;
}

InstrumentProblem SensorManager::Validate(const InstrumentConfig& config, int editedRow) const {
    using Field = InstrumentProblem::Field;
    const QString name = config.name.trimmed();
    const QString address = config.address.trimmed();
    if (name.isEmpty())
        return {tr("Enter a name for the instrument."), Field::Name};
    // The name becomes the sensor's data folder, so it must be a valid file name everywhere.
    static const QRegularExpression badNameChars(QStringLiteral(R"([\\/:*?"<>|]|^\.)"));
    if (name.contains(badNameChars))
        return {tr("The name \"%1\" cannot be used: it may not start with a dot or contain any of "
                   "\\ / : * ? \" < > |.")
                    .arg(name),
                Field::Name};
    for (int row = 0; row < Count(); ++row) {
        if (row == editedRow)
            continue;
        if (m_instruments[row]->Config().name.compare(name, Qt::CaseInsensitive) == 0)
            return {tr("An instrument named \"%1\" already exists. Choose another name.").arg(name),
                    Field::Name};
    }
    if (address.isEmpty())
        return {tr("Enter the instrument's address (an IPv4 address such as 192.168.0.20, or a host name).")};
    ISensorInfo* type = m_plugins.FindSensorType(config.sensorType);
    if (!type)
        return {tr("The sensor type %1 is not loaded: no module in the plug-in folder provides it.")
                    .arg(config.sensorType),
                Field::Type};
    if (!type->MakeSensorAddress(address.toStdWString(), false).IsValid())
        return {
            tr("\"%1\" is not a valid instrument address. Enter an IPv4 address such as 192.168.0.20 or a "
               "host name, without spaces or any of : @ / \\.")
                .arg(address)};
    for (int row = 0; row < Count(); ++row) {
        if (row == editedRow)
            continue;
        if (m_instruments[row]->Config().address.compare(address, Qt::CaseInsensitive) == 0)
            return {tr("The instrument \"%1\" already has the address %2.")
                        .arg(m_instruments[row]->Config().name, address)};
    }
    return {};
}

QString SensorManager::UnusedName(const QString& sensorType) const {
    for (int n = 1;; ++n) {
        const QString name = QStringLiteral("%1-%2").arg(sensorType).arg(n);
        bool used = false;
        for (const ManagedInstrument* instrument : m_instruments)
            used = used || instrument->Config().name.compare(name, Qt::CaseInsensitive) == 0;
        if (!used)
            return name;
    }
}

int SensorManager::Add(const InstrumentConfig& config, bool transient) {
    const int row = Count();
    auto* instrument = new ManagedInstrument(config, transient, this);
    instrument->Attach(config, m_plugins.FindSensorType(config.sensorType));
    ApplyAlarmSettings(instrument);
    connect(instrument, &ManagedInstrument::sensorEvent, this,
            [this, instrument](quint32 code, const QString& text) { OnSensorEvent(instrument, code, text); });
    emit instrumentAboutToBeAdded(row);
    m_instruments.append(instrument);
    emit instrumentAdded(row);
    emit logMessage(
        tr("Added instrument %1, sensor type %2%3.")
            .arg(instrument->Title(), config.sensorType, transient ? tr(" (for this run only)") : QString()));
    if (!instrument->Problem().isEmpty())
        emit logMessage(tr("%1 cannot be used: %2.").arg(instrument->Title(), instrument->Problem()));
    return row;
}

bool SensorManager::Replace(int row, const InstrumentConfig& config) {
    ManagedInstrument* instrument = At(row);
    if (!instrument || instrument->IsConnecting())
        return false;
    const InstrumentConfig old = instrument->Config();
    if (old == config)
        return true;
    if (old.name != config.name)
        MoveSensorFolder(old.name, config.name);
    if (old.address == config.address && old.sensorType == config.sensorType && instrument->Sensor()) {
        // A new name only: the sensor keeps its connection.
        instrument->Rename(config.name);
        emit logMessage(tr("Renamed instrument %1 to %2.").arg(old.name, config.name));
        emit instrumentChanged(row);
        return true;
    }
    const bool wasOnline = instrument->GetState() == ManagedInstrument::State::Online;
    ReportAlarms(instrument, instrument->Monitor().Alarms().ClearAll(QDateTime::currentMSecsSinceEpoch()));
    emit linkForgotten(LinkKey(instrument));
    instrument->Attach(config, m_plugins.FindSensorType(config.sensorType));
    ApplyAlarmSettings(instrument);
    emit logMessage(tr("Changed instrument %1 to %2, sensor type %3.")
                        .arg(old.name, instrument->Title(), config.sensorType));
    if (!instrument->Problem().isEmpty())
        emit logMessage(tr("%1 cannot be used: %2.").arg(instrument->Title(), instrument->Problem()));
    emit instrumentChanged(row);
    if (wasOnline)
        GoOnline(row);
    return true;
}

QString SensorManager::SensorFolder(const QString& name) {
    return QString::fromStdWString(JoinPath(PXGetRootDir(), name.toStdWString(), kNativeSeparator));
}

void SensorManager::MoveSensorFolder(const QString& from, const QString& to) {
    const QString source = SensorFolder(from);
    const QString target = SensorFolder(to);
    if (!IsDirectory(source.toStdWString()))
        return;
    std::vector<std::wstring> kept;
    int error = 0;
    if (!MoveFolderInto(source.toStdWString(), target.toStdWString(), &kept, &error)) {
        emit logMessage(tr("Could not move the files of %1 from %2 to %3: error %4.")
                            .arg(from, source, target, QString::fromStdWString(DescribeError(error))));
        return;
    }
    emit logMessage(tr("Moved the files of %1 from %2 to %3.").arg(from, source, target));
    if (!kept.empty()) {
        QStringList names;
        for (const std::wstring& name : kept)
            names << QString::fromStdWString(name);
        emit logMessage(tr("%1 already held %2: those stay in %3.").arg(target, names.join(", "), source));
    }
}

bool SensorManager::Remove(int row) {
    ManagedInstrument* instrument = At(row);
    if (!instrument || instrument->IsConnecting())
        return false;
    const QString title = instrument->Title();
    emit linkForgotten(LinkKey(instrument));
    emit instrumentAboutToBeRemoved(row);
    m_instruments.removeAt(row);
    emit instrumentRemoved(row);
    // A retry still running holds its sensor; the sensor is kept off line for it (see Release).
    delete instrument;
    emit logMessage(tr("Removed instrument %1.").arg(title));
    return true;
}

bool SensorManager::GoOnline(int row) {
    ManagedInstrument* instrument = At(row);
    if (!instrument || instrument->IsConnecting())
        return false;
    ISensorObject* sensor = instrument->Sensor();
    if (!sensor) {
        emit logMessage(tr("%1 cannot go on line: %2.").arg(instrument->Title(), instrument->Problem()));
        return false;
    }
    if (sensor->IsOnline(true))
        return true;
    sensor->SetKeepOffline(false);
    if (instrument->IsReconnecting() || instrument->IsRetrying()) {
        // Try now, as the schedule would: in the background, without making the window wait.
        instrument->Schedule().DueNow(ManagedInstrument::SteadyNowMs());
        StartDueRetries();
        return false;
    }
    instrument->SetConnecting(true);
    instrument->SetLastError(0);
    EmitChanged(instrument);
    emit logMessage(tr("Connecting to %1 ...").arg(instrument->Title()));

    // Events are dispatched while this waits; the instrument cannot be removed meanwhile (see Remove).
    const bool online = sensor->GoOnline();

    instrument->SetConnecting(false);
    if (online) {
        emit logMessage(tr("%1 is on line.").arg(instrument->Title()));
    } else {
        const int error = sensor->GetLastLinkError();
        instrument->SetLastError(error);
        if (error != 0)
            emit logMessage(
                tr("%1 could not be taken on line: error %2.").arg(instrument->Title(), ErrorText(error)));
        else
            emit logMessage(
                tr("%1 could not be taken on line (the sensor refused).").arg(instrument->Title()));
    }
    EmitChanged(instrument);
    return online;
}

void SensorManager::GoOffline(int row) {
    ManagedInstrument* instrument = At(row);
    if (!instrument || !instrument->Sensor() || instrument->IsConnecting())
        return;
    if (instrument->IsReconnecting())
        emit linkForgotten(LinkKey(instrument));
    instrument->StopReconnecting();
    // Kept off line until the operator says otherwise: a retry still running, or a copy waiting for
    // the instrument, does not bring it back.
    instrument->Sensor()->SetKeepOffline(true);
    instrument->SetExpectsOffline(instrument->Sensor()->IsOnline(false));
    instrument->SetLastError(0);
    instrument->Sensor()->Disconnect(0);
    emit logMessage(tr("%1 was taken off line.").arg(instrument->Title()));
    ReportAlarms(instrument, instrument->Monitor().Alarms().ClearAll(QDateTime::currentMSecsSinceEpoch()));
    EmitChanged(instrument);
}

int SensorManager::TimerInterval() const {
    int interval = 0;
    for (const ManagedInstrument* instrument : m_instruments) {
        if (const ISensorObject* sensor = instrument->Sensor()) {
            const int alarm = sensor->GetAlarmInterval();
            if (alarm > 0 && (interval == 0 || alarm < interval))
                interval = alarm;
        }
    }
    return interval == 0 ? kDefaultTimerMs : qMax(interval, kMinimumTimerMs);
}

void SensorManager::Tick() {
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    // Each poll runs on its own thread and holds its sensor, so an instrument may be removed while its
    // poll is still waiting on the network. One still waiting from the last tick is not started twice.
    for (ManagedInstrument* instrument : std::as_const(m_instruments)) {
        if (instrument->IsConnecting() || instrument->IsRetrying())
            continue;
        ISensorObject* sensor = instrument->Sensor();
        if (sensor && sensor->IsOnline(false))
            m_poller.Start(sensor, now);
    }
}

void SensorManager::OnSensorEvent(ManagedInstrument* instrument, quint32 code, const QString& text) {
    const EventWords words = DescribeSensorEvent(code, text);
    emit eventLogged(tr("%1: %2").arg(instrument->Config().name, words.text), words.detail);

    if (code == kSensorEventOffline) {
        if (instrument->ExpectsOffline())
            instrument->SetExpectsOffline(false);
        else
            OnDropped(instrument, text);
    } else if (code == kSensorEventOnline) {
        OnReturned(instrument);
        ReportAlarms(instrument,
                     instrument->Monitor().Alarms().LinkBack(QDateTime::currentMSecsSinceEpoch()));
    }
    EmitChanged(instrument);
}

QString SensorManager::LinkKey(const ManagedInstrument* instrument) {
    return QString::number(reinterpret_cast<quintptr>(instrument), 16);
}

// Not the operator's doing: the link dropped or timed out.
void SensorManager::OnDropped(ManagedInstrument* instrument, const QString& text) {
    ISensorObject* sensor = instrument->Sensor();
    if (!sensor || sensor->KeepOffline())
        return;
    // The link's error says why; a drop noticed elsewhere (the command channel) may carry its error
    // number as the text, or leave it with the channel.
    bool isNumber = false;
    const int reason = text.toInt(&isNumber);
    const ICommSensor* comm = sensor->GetCommSensor();
    const int error = sensor->GetLastLinkError() != 0 ? sensor->GetLastLinkError()
                      : isNumber && reason != 0       ? reason
                      : comm                          ? comm->LastError()
                                                      : 0;
    instrument->SetLastError(error);
    ReportAlarms(instrument,
                 instrument->Monitor().Alarms().LinkLost(QDateTime::currentMSecsSinceEpoch(), error));
    const qint64 now = ManagedInstrument::SteadyNowMs();
    const QString why = error != 0 ? tr("error %1").arg(ErrorText(error)) : tr("no answer");
    if (instrument->LostAt().isValid() && instrument->ReturnedAtMs() != 0 &&
        now - instrument->ReturnedAtMs() < kSettleMs) {
        // Back only for a moment (it answers the connect, then closes): the same outage goes on, and
        // the retries go on backing off.
        instrument->Schedule().Start(now);
        for (int attempt = 1; attempt < instrument->ReturnAttempt(); ++attempt)
            instrument->Schedule().AttemptFailed(now);
        emit logMessage(
            tr("%1 dropped again at once (%2); still reconnecting.").arg(instrument->Title(), why));
    } else {
        instrument->BeginReconnecting(now);
        const QString line =
            tr("%1 stopped answering at %2: %3; reconnecting.")
                .arg(instrument->Title(), instrument->LostAt().toString(QStringLiteral("HH:mm:ss")), why);
        emit logMessage(line);
        emit linkLost(LinkKey(instrument), line);
    }
    m_reconnectTimer.start();
}

void SensorManager::OnReturned(ManagedInstrument* instrument) {
    ISensorObject* sensor = instrument->Sensor();
    if (sensor && sensor->KeepOffline()) {
        // A retry that ended after the operator chose off line.
        instrument->SetExpectsOffline(true);
        instrument->StopReconnecting();
        sensor->Disconnect(0);
        return;
    }
    if (!instrument->IsReconnecting())
        return;
    const QDateTime lostAt = instrument->LostAt();
    const qint64 now = ManagedInstrument::SteadyNowMs();
    if (instrument->ReturnedAtMs() != 0 && now - instrument->ReturnedAtMs() < kSettleMs) {
        instrument->Schedule().Stop(); // told already; keeps LostAt for another quick drop
    } else {
        const qint64 awaySeconds = lostAt.isValid() ? lostAt.secsTo(QDateTime::currentDateTime()) : 0;
        const QString line =
            tr("%1 back on line after %2.")
                .arg(instrument->Title(), QString::fromStdWString(FormatElapsed(awaySeconds)));
        instrument->SetReturnAttempt(instrument->Schedule().Attempt());
        instrument->Schedule().Stop();
        emit logMessage(line);
        emit linkReturned(LinkKey(instrument), line);
    }
    instrument->SetReturnedAtMs(now);
    instrument->SetLastError(0);
}

void SensorManager::StartDueRetries() {
    const qint64 now = ManagedInstrument::SteadyNowMs();
    bool pending = false;
    for (ManagedInstrument* instrument : std::as_const(m_instruments)) {
        if (!instrument->IsReconnecting())
            continue;
        pending = true;
        ISensorObject* sensor = instrument->Sensor();
        if (sensor && !instrument->IsRetrying() && !instrument->IsConnecting() &&
            instrument->Schedule().IsDue(now) && !m_poller.IsPolling(sensor) && m_connector.Start(sensor))
            instrument->SetRetrying(true);
        EmitChanged(instrument); // the countdown
    }
    if (!pending)
        m_reconnectTimer.stop();
}

void SensorManager::OnRetryFinished(ISensorObject* sensor, bool online, int error) {
    ManagedInstrument* instrument = nullptr;
    for (ManagedInstrument* candidate : std::as_const(m_instruments))
        instrument = candidate->Sensor() == sensor ? candidate : instrument;
    if (!instrument)
        return; // removed or changed meanwhile: its sensor was kept off line
    instrument->SetRetrying(false);
    if (!online && instrument->IsReconnecting()) {
        instrument->Schedule().AttemptFailed(ManagedInstrument::SteadyNowMs());
        if (error != 0)
            instrument->SetLastError(error);
    }
    EmitChanged(instrument);
}

void SensorManager::SetAlarmSettings(const AlarmLimits& limits, int intervalMs) {
    m_alarmLimits = limits;
    m_alarmIntervalMs = intervalMs;
    for (ManagedInstrument* instrument : std::as_const(m_instruments))
        ApplyAlarmSettings(instrument);
}

void SensorManager::ApplyAlarmSettings(ManagedInstrument* instrument) {
    instrument->Monitor().Alarms().SetLimits(m_alarmLimits);
    if (m_alarmIntervalMs > 0 && instrument->Sensor())
        instrument->Sensor()->SetAlarmInterval(m_alarmIntervalMs);
}

int SensorManager::ActiveAlarmCount(int row) const {
    const ManagedInstrument* instrument = At(row);
    return instrument ? instrument->ActiveAlarmCount() : 0;
}

int SensorManager::InstrumentsInAlarm() const {
    int count = 0;
    for (const ManagedInstrument* instrument : m_instruments)
        count += instrument->ActiveAlarmCount() > 0 ? 1 : 0;
    return count;
}

// One point of the trends and one judgement of the alarms per poll, from the snapshot that poll took.
void SensorManager::OnPolled(ISensorObject* sensor) {
    for (ManagedInstrument* instrument : std::as_const(m_instruments)) {
        if (instrument->Sensor() != sensor)
            continue;
        if (sensor->IsOnline(false) && sensor->GetDevice(L"VEXA").HasSnapshot())
            ReportAlarms(instrument,
                         instrument->Monitor().Sample(*sensor, QDateTime::currentMSecsSinceEpoch()));
        return;
    }
}

void SensorManager::ReportAlarms(ManagedInstrument* instrument, const std::vector<AlarmChange>& changes) {
    if (changes.empty())
        return;
    instrument->NoteAlarmChanges(changes);
    for (const AlarmChange& change : changes)
        emit logMessage(QStringLiteral("%1: %2").arg(instrument->Config().name, AlarmText::Change(change)));
    const int row = IndexOf(instrument);
    if (row >= 0) {
        emit alarmsChanged(row);
        emit instrumentChanged(row);
    }
}

void SensorManager::EmitChanged(ManagedInstrument* instrument) {
    instrument->RefreshActivity(QDateTime::currentMSecsSinceEpoch());
    const int row = IndexOf(instrument);
    if (row >= 0)
        emit instrumentChanged(row);
}
