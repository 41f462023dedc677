#pragma once
// The studio's instruments and the sensor types behind them: loads the plug-in folder, makes a sensor
// object per instrument, takes sensors on and off line, drives their timers, and reports what happens
// as log lines. GUI thread only.
//
// Going on line runs on the GUI thread; the link's pumping wait dispatches events meanwhile, so these
// operations can be re-entered from the window. An instrument that is connecting is therefore never
// removed or replaced. The timer's polls run on pool threads (SensorPoller), one per instrument.
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
    // Replaces the configuration of a row; a new address or type makes a new sensor object. A new name
    // moves the instrument's PC folder with it (into the new name's folder when that exists already,
    // keeping what is there) and says so in the log.
    bool Replace(int row, const InstrumentConfig& config);
    // The PC folder of the instrument called `name`: downloads, backups and saved methods.
    static QString SensorFolder(const QString& name);
    // False while the instrument is connecting.
    bool Remove(int row);
    bool GoOnline(int row);
    void GoOffline(int row);

    // The interval at which Tick should run: the smallest alarm interval of the sensors (1 s default).
    int TimerInterval() const;

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
    // When polls have ended and the sensors' status may have changed.
    void ticked();

private:
    void OnSensorEvent(ManagedInstrument* instrument, quint32 code, const QString& text);
    void EmitChanged(const ManagedInstrument* instrument);
    void MoveSensorFolder(const QString& from, const QString& to);

    PluginCatalog m_plugins;
    QList<ManagedInstrument*> m_instruments;
    SensorPoller m_poller;
};
