// SPDX-License-Identifier: Apache-2.0
#include "instrumentlistmodel.h"

#include "managedinstrument.h"
#include "sensormanager.h"

#include <QPainter>
#include <QPixmap>

namespace {
QIcon Dot(const QColor& color) {
    QIcon icon;
    for (int size : {12, 16, 24}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color.darker(140), 1.0));
        painter.setBrush(color);
        const qreal margin = size * 0.18;
        painter.drawEllipse(QRectF(margin, margin, size - 2 * margin, size - 2 * margin));
        icon.addPixmap(pixmap);
    }
    return icon;
}
} // namespace

InstrumentListModel::InstrumentListModel(SensorManager& sensors, QObject* parent)
    : QAbstractTableModel(parent), m_sensors(sensors), m_online(Dot(QColor(0x2e, 0xa0, 0x43))),
      m_offline(Dot(QColor(0x9e, 0x9e, 0x9e))), m_connecting(Dot(QColor(0xf9, 0xa8, 0x25))),
      m_unavailable(Dot(QColor(0x60, 0x60, 0x60))), m_failed(Dot(QColor(0xd3, 0x2f, 0x2f))) {
    connect(&sensors, &SensorManager::instrumentAboutToBeAdded, this,
            [this](int row) { beginInsertRows({}, row, row); });
    connect(&sensors, &SensorManager::instrumentAdded, this, [this] { endInsertRows(); });
    connect(&sensors, &SensorManager::instrumentAboutToBeRemoved, this,
            [this](int row) { beginRemoveRows({}, row, row); });
    connect(&sensors, &SensorManager::instrumentRemoved, this, [this] { endRemoveRows(); });
    connect(&sensors, &SensorManager::instrumentChanged, this,
            [this](int row) { emit dataChanged(index(row, 0), index(row, kColumnCount - 1)); });
}

int InstrumentListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_sensors.Count();
}

int InstrumentListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumnCount;
}

QVariant InstrumentListModel::data(const QModelIndex& index, int role) const {
    const ManagedInstrument* instrument = m_sensors.At(index.row());
    if (!instrument)
        return {};
    const InstrumentConfig& config = instrument->Config();
    if (role == Qt::DisplayRole) {
        switch (index.column()) {
        case kColumnName:
            return instrument->IsTransient() ? tr("%1 (this run)").arg(config.name) : config.name;
        case kColumnAddress:
            return config.address;
        case kColumnType:
            return config.sensorType;
        case kColumnState:
            return instrument->StateText();
        default:
            return {};
        }
    }
    if (role == Qt::ToolTipRole)
        return QStringLiteral("%1\n%2").arg(instrument->Title(), instrument->StateText());
    // A dropped instrument stands out from one taken off line on purpose.
    const bool dropped = instrument->GetState() == ManagedInstrument::State::Reconnecting;
    if (role == Qt::BackgroundRole && dropped)
        return QColor(0xfd, 0xe0, 0xe0);
    if (role == Qt::ForegroundRole && dropped)
        return QColor(0xb7, 0x1c, 0x1c);
    if (role == Qt::DecorationRole && index.column() == kColumnState) {
        switch (instrument->GetState()) {
        case ManagedInstrument::State::Online:
            return m_online;
        case ManagedInstrument::State::Connecting:
            return m_connecting;
        case ManagedInstrument::State::Reconnecting:
            return m_failed;
        case ManagedInstrument::State::Unavailable:
            return m_unavailable;
        case ManagedInstrument::State::Offline:
            return instrument->LastError() != 0 ? m_failed : m_offline;
        }
    }
    return {};
}

QVariant InstrumentListModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case kColumnName:
        return tr("Name");
    case kColumnAddress:
        return tr("Address");
    case kColumnType:
        return tr("Type");
    case kColumnState:
        return tr("State");
    default:
        return {};
    }
}
