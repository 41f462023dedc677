#pragma once
// The studio's instruments and the sensor types behind them: loads the plug-in folder, makes a sensor
// object per instrument, takes sensors on and off line, drives their timers, and reports what happens
// as log lines. GUI thread only.
//
// Going on line runs on the GUI thread; the link's pumping wait dispatches events meanwhile, so these
// operations can be re-entered from the window. An instrument that is connecting is therefore never
// removed or replaced. The timer's polls run on pool threads (SensorPoller), one per instrument.
#include "alarmevaluator.h"
#include "instrumentconfig.h"
#include "plugincatalog.h"
#include "sensorpoller.h"

#include <QList>
#include <QObject>

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
    // Replaces the configuration of a row; a new address or type makes a new sensor object.
    bool Replace(int row, const InstrumentConfig& config);
    // False while the instrument is connecting.
    bool Remove(int row);
    bool GoOnline(int row);
    void GoOffline(int row);

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
    void instrumentAboutToBeAdded(int row);
    void instrumentAdded(int row);
    void instrumentAboutToBeRemoved(int row);
    void instrumentRemoved(int row);
    void instrumentChanged(int row);
    // An instrument's alarms began or ended (after the log lines).
    void alarmsChanged(int row);
    // When polls have ended and the sensors' status may have changed.
    void ticked();

private:
    void OnSensorEvent(ManagedInstrument* instrument, quint32 code, const QString& text);
    void EmitChanged(const ManagedInstrument* instrument);
    void OnPolled(ISensorObject* sensor);
    void ApplyAlarmSettings(ManagedInstrument* instrument);
    // Logs the changes, keeps them with the instrument and tells the views.
    void ReportAlarms(ManagedInstrument* instrument, const std::vector<AlarmChange>& changes);

    PluginCatalog m_plugins;
    QList<ManagedInstrument*> m_instruments;
    SensorPoller m_poller;
    AlarmLimits m_alarmLimits;
    int m_alarmIntervalMs = 0; // 0: the sensors' own
};
