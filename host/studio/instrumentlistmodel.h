// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instruments of a SensorManager as a table, the fleet at a glance: name, address, sensor type,
// state, the running method with its progress, ready, active alarms and the age of the last status.
// kSortRole gives each column's sort key (numbers where the column counts).
#include <QAbstractTableModel>
#include <QIcon>

class SensorManager;

class InstrumentListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column {
        kColumnName,
        kColumnAddress,
        kColumnType,
        kColumnState,
        kColumnRun,
        kColumnReady,
        kColumnAlarms,
        kColumnStatusAge,
        kColumnCount
    };
    static constexpr int kSortRole = Qt::UserRole;
    // The run column's percentage done (0..100), or -1 when nothing runs or its length is unknown.
    static constexpr int kProgressRole = Qt::UserRole + 1;

    explicit InstrumentListModel(SensorManager& sensors, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // "3 s", "2 min", "-" (never).
    static QString FormatAge(qint64 ms);

private:
    QVariant DisplayText(int row, int column) const;
    QVariant SortKey(int row, int column) const;
    void RefreshLiveColumns();

    SensorManager& m_sensors;
    QIcon m_online, m_offline, m_connecting, m_unavailable, m_failed;
};
