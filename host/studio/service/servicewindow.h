// SPDX-License-Identifier: Apache-2.0
#pragma once
// The Service Module of one instrument: its identity and configuration files (read-only, "Edit..."
// through the sensor type's text editor and its access level), serial and firmware from the status,
// the alarms and notifications of this session, the tails of its logs (/Log/*.log), and "Save service
// report..." that writes all of it as one text file. Files are read over the link on the GUI thread
// (its waits dispatch events). Closes when the instrument is removed.
#include "servicereport.h"

#include <QPointer>
#include <QWidget>

class ManagedInstrument;
class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;
class QTreeWidget;
class SensorManager;

class ServiceWindow : public QWidget {
    Q_OBJECT
public:
    // Lines kept of each log.
    static constexpr int kLogTailLines = 200;

    ServiceWindow(SensorManager& sensors, ManagedInstrument& instrument, QWidget* parent = nullptr);

    ManagedInstrument* Instrument() const { return m_instrument; }

    // Reads the configuration files and the logs' tails afresh.
    void RefreshFiles();
    void RefreshLogs();
    // Identity, alarms and notifications (no network).
    void RefreshSession();

    const ServiceData& Data() const { return m_data; }
    // Writes the report; false with a message shown when it could not be written.
    bool SaveReport(const QString& path);

    QListWidget* ConfigurationList() const { return m_configList; }
    QPushButton* EditButton() const { return m_editButton; }
    QTreeWidget* NotificationList() const { return m_notifications; }
    QPlainTextEdit* LogView() const { return m_logView; }

private:
    QString RemoteName(const QString& path) const;
    ServiceFile ReadFile(const QString& path, bool tail) const;
    void ShowConfigFile();
    void EditConfigFile();
    void ShowLogs();
    void AskAndSaveReport();

    SensorManager& m_sensors;
    QPointer<ManagedInstrument> m_instrument;
    ServiceData m_data;
    QLabel* m_identity;
    QListWidget* m_configList;
    QPlainTextEdit* m_configView;
    QPushButton* m_editButton;
    QTreeWidget* m_alarms;
    QTreeWidget* m_notifications;
    QPlainTextEdit* m_logView;
};
