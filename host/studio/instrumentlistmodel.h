// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instruments of a SensorManager as a table: name, address, sensor type and state.
#include <QAbstractTableModel>
#include <QIcon>

class SensorManager;

class InstrumentListModel : public QAbstractTableModel {
    Q_OBJECT
public:
    enum Column { kColumnName, kColumnAddress, kColumnType, kColumnState, kColumnCount };

    explicit InstrumentListModel(SensorManager& sensors, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    SensorManager& m_sensors;
    QIcon m_online, m_offline, m_connecting, m_unavailable, m_failed;
};
