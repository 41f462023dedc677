// SPDX-License-Identifier: Apache-2.0
#pragma once
// The studio's instruments and the sensor types behind them: loads the plug-in folder, makes a sensor
// object per instrument, takes sensors on and off line, drives their timers, and reports what happens
// as log lines. GUI thread only.
//
// Going on line runs on the GUI thread; the link's pumping wait dispatches events meanwhile, so these
// operations can be re-entered from the window. An instrument that is connecting is therefore never
// removed or replaced. The timer's polls run on pool threads (SensorPoller), one per instrument.
//
// An instrument that went off line by itself (not through GoOffline) is retried on its back-off
// schedule; the retries run on pool threads (SensorConnector), so the window never waits for them,
// and such an instrument may be taken off line or removed while a retry runs.
#include "alarmevaluator.h"
#include "instrumentconfig.h"
#include "plugincatalog.h"
#include "sensorconnector.h"
#include "sensorpoller.h"

#include <QList>
#include <QObject>
#include <QTimer>

class ManagedInstrument;
class ISensorInfo;

class SensorManager : public QObject {
    Q_OBJECT
public:
    explicit SensorManager(QObject* parent = nullptr);
    ~SensorManager() override;

    // Loads the modules of the folder; the outcome goes to the log. False when no sensor type is
    // available afterwards (Plugins().Problem() says why).
    bool LoadPlugins(const QString& folder);
    const PluginCatalog& Plugins() const { return m_plugins; }
    QList<ISensorInfo*> SensorTypes() const { return m_plugins.SensorTypes(); }
    ISensorInfo* FindSensorType(const QString& shortName) const {
        return m_plugins.FindSensorType(shortName);
    }

    int Count() const { return static_cast<int>(m_instruments.size()); }
    ManagedInstrument* At(int row) const;
    int IndexOf(const ManagedInstrument* instrument) const;
    // The row of the instrument with that address (case-insensitive), -1 when none.
    int FindAddress(const QString& address) const;
    // The configurations to save (instruments given for this run only are left out).
    QList<InstrumentConfig> SavedConfigs() const;

    // Checks an entry before it is added or replaces row `editedRow` (-1 for a new one).
    InstrumentProblem Validate(const InstrumentConfig& config, int editedRow = -1) const;
    // A name not used yet: "<type>-1", "<type>-2", ...
    QString UnusedName(const QString& sensorType) const;

    // Adds an instrument at the end; returns its row. The entry should have passed Validate.
    int Add(const InstrumentConfig& config, bool transient);
    // Replaces the configuration of a row; a new address or type makes a new sensor object. A new name
    // moves the instrument's PC folder with it (into the new name's folder when that exists already,
    // keeping what is there) and says so in the log.
    bool Replace(int row, const InstrumentConfig& config);
    // The PC folder of the instrument called `name`: downloads, backups and saved methods.
    static QString SensorFolder(const QString& name);
    // False while the instrument is connecting.
    bool Remove(int row);
    // On a reconnecting instrument: the retry starts at once, in the background (false then).
    bool GoOnline(int row);
    // Also ends the retries of a dropped instrument.
    void GoOffline(int row);

    // How often due retries are looked for and the countdowns redrawn.
    static constexpr int kReconnectCheckMs = 250;
    // An instrument that drops again this soon after it came back is still the same outage.
    static constexpr qint64 kSettleMs = 10000;

    // The interval at which Tick should run: the smallest alarm interval of the sensors (1 s default).
    int TimerInterval() const;

    // The limits every instrument's alarms are judged by, and the interval each sensor is polled at
    // (new sensors get them too).
    void SetAlarmSettings(const AlarmLimits& limits, int intervalMs);
    // Active alarms of one instrument (0 for a bad row), and how many instruments have any.
    int ActiveAlarmCount(int row) const;
    int InstrumentsInAlarm() const;

public slots:
    // The alarm timer: starts OnTimer for every on-line sensor whose previous poll has ended, and
    // returns at once.
    void Tick();

signals:
    void logMessage(const QString& line);
    // A notification of an instrument, in words, with its number as the detail.
    void eventLogged(const QString& line, const QString& detail);
    void instrumentAboutToBeAdded(int row);
    void instrumentAdded(int row);
    void instrumentAboutToBeRemoved(int row);
    void instrumentRemoved(int row);
    void instrumentChanged(int row);
    // An instrument's alarms began or ended (after the log lines).
    void alarmsChanged(int row);
    // When polls have ended and the sensors' status may have changed (each instrument's Activity has
    // been read again).
    void ticked();
    // An instrument stopped answering, or came back: told once each, in words. `key` stays the same
    // for one instrument; linkForgotten says that its notices are moot (off line by choice, removed).
    void linkLost(const QString& key, const QString& text);
    void linkReturned(const QString& key, const QString& text);
    void linkForgotten(const QString& key);

private:
    void OnSensorEvent(ManagedInstrument* instrument, quint32 code, const QString& text);
    void OnDropped(ManagedInstrument* instrument, const QString& text);
    void OnReturned(ManagedInstrument* instrument);
    void StartDueRetries();
    void OnRetryFinished(ISensorObject* sensor, bool online, int error);
    static QString LinkKey(const ManagedInstrument* instrument);
    void EmitChanged(ManagedInstrument* instrument);
    void OnPolled(ISensorObject* sensor);
    void ApplyAlarmSettings(ManagedInstrument* instrument);
    // Logs the changes, keeps them with the instrument and tells the views.
    void ReportAlarms(ManagedInstrument* instrument, const std::vector<AlarmChange>& changes);
    void MoveSensorFolder(const QString& from, const QString& to);

    PluginCatalog m_plugins;
    QList<ManagedInstrument*> m_instruments;
    SensorPoller m_poller;
    AlarmLimits m_alarmLimits;
    int m_alarmIntervalMs = 0; // 0: the sensors' own
    SensorConnector m_connector;
    QTimer m_reconnectTimer;
};
