// SPDX-License-Identifier: Apache-2.0
#pragma once
// The Runs window: a run panel per instrument that runs or has run something this session. Run
// Method comes here with the chosen file: the window asks "Run <method> on <instrument>?" and starts
// it. A run started elsewhere appears by itself from the instrument's status. GUI thread only.
#include <QMap>
#include <QWidget>

class ManagedInstrument;
class QLabel;
class QVBoxLayout;
class RunPanel;
class SensorManager;

class RunsWindow : public QWidget {
    Q_OBJECT
public:
    explicit RunsWindow(SensorManager& sensors, QWidget* parent = nullptr);

    // Asks, then runs the method or sequence `file` ("@HOST:/Method/x.mth") on the instrument. No
    // changes nothing. True when a run started.
    bool Run(ManagedInstrument& instrument, const QString& file);
    // The instrument's panel, null when it has none.
    RunPanel* Panel(const ManagedInstrument* instrument) const;
    int PanelCount() const { return int(m_panels.size()); }

signals:
    void logMessage(const QString& line);
    // The operator asked to review a data file (a full name, local or "@HOST:PATH").
    void reviewRequested(const QString& file);

private:
    RunPanel& PanelFor(ManagedInstrument& instrument);
    void OnTicked();
    void DropPanel(RunPanel* panel);
    void DropGonePanels();
    void UpdatePlaceholder();

    SensorManager& m_sensors;
    QMap<const ManagedInstrument*, RunPanel*> m_panels;
    QVBoxLayout* m_list;
    QLabel* m_placeholder;
};
