// SPDX-License-Identifier: Apache-2.0
#pragma once
// The Status tool's window for one instrument: its status sections live, the ready flag, its active
// alarms and those of this session, and the trends of the readings the operator picks. Follows the
// instrument while it is in the manager's list and closes when it is removed. GUI thread only.
#include <QPointer>
#include <QWidget>

class ManagedInstrument;
class QLabel;
class QListWidget;
class QTreeWidget;
class SensorManager;
class StatusPanel;
class TrendPlot;

class StatusWindow : public QWidget {
    Q_OBJECT
public:
    StatusWindow(SensorManager& sensors, ManagedInstrument& instrument, QWidget* parent = nullptr);

    ManagedInstrument* Instrument() const { return m_instrument; }
    StatusPanel* Panel() const { return m_panel; }
    QLabel* ReadyLabel() const { return m_ready; }
    QTreeWidget* ActiveAlarms() const { return m_active; }
    QListWidget* AlarmHistory() const { return m_history; }
    QListWidget* ReadingPicker() const { return m_picker; }
    TrendPlot* Plot() const { return m_plot; }

    // Reads everything afresh from the instrument.
    void Refresh();

private:
    void RefreshReady();
    void RefreshAlarms();
    void RefreshPicker();
    void PickedChanged();

    SensorManager& m_sensors;
    QPointer<ManagedInstrument> m_instrument;
    StatusPanel* m_panel;
    QLabel* m_state;
    QLabel* m_ready;
    QTreeWidget* m_active;
    QListWidget* m_history;
    QListWidget* m_picker;
    TrendPlot* m_plot;
    int m_shownChanges = 0;
};
