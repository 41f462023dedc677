// SPDX-License-Identifier: Apache-2.0
#include "instrumentlistmodel.h"

#include "managedinstrument.h"
#include "sensormanager.h"

#include <QDateTime>
#include <QPainter>
#include <QPixmap>
#include <QTimer>

#include <limits>

namespace {
constexpr int kAgeRefreshMs = 1000;

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
    connect(&sensors, &SensorManager::ticked, this, &InstrumentListModel::RefreshLiveColumns);
    // The ages grow without a poll (an instrument off line is polled no more).
    auto* ageTimer = new QTimer(this);
    connect(ageTimer, &QTimer::timeout, this, [this] {
        if (rowCount() > 0)
            emit dataChanged(index(0, kColumnStatusAge), index(rowCount() - 1, kColumnStatusAge));
    });
    ageTimer->start(kAgeRefreshMs);
}

void InstrumentListModel::RefreshLiveColumns() {
    if (rowCount() > 0)
        emit dataChanged(index(0, kColumnState), index(rowCount() - 1, kColumnCount - 1));
}

int InstrumentListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_sensors.Count();
}

int InstrumentListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : kColumnCount;
}

QString InstrumentListModel::FormatAge(qint64 ms) {
    if (ms < 0)
        return QStringLiteral("-");
    const qint64 seconds = ms / 1000;
    if (seconds < 120)
        return tr("%1 s").arg(seconds);
    if (seconds < 7200)
        return tr("%1 min").arg(seconds / 60);
    return tr("%1 h").arg(seconds / 3600);
}

QVariant InstrumentListModel::DisplayText(int row, int column) const {
    const ManagedInstrument* instrument = m_sensors.At(row);
    const InstrumentConfig& config = instrument->Config();
    const InstrumentActivity& activity = instrument->Activity();
    switch (column) {
    case kColumnName:
        return instrument->IsTransient() ? tr("%1 (this run)").arg(config.name) : config.name;
    case kColumnAddress:
        return config.address;
    case kColumnType:
        return config.sensorType;
    case kColumnState:
        return instrument->BusyNote().isEmpty()
                   ? instrument->StateText()
                   : QStringLiteral("%1 - %2").arg(instrument->StateText(), instrument->BusyNote());
    case kColumnRun: {
        if (!activity.IsRunning())
            return activity.hasStatus ? tr("idle") : QString();
        const QString name = QString::fromStdWString(activity.ProcessName());
        if (activity.PercentDone() < 0)
            return name;
        return tr("%1  %2 %  (%3 / %4)")
            .arg(name)
            .arg(activity.PercentDone())
            .arg(QString::fromStdWString(FormatRunTime(activity.elapsed)),
                 QString::fromStdWString(FormatRunTime(activity.total)));
    }
    case kColumnReady:
        if (!activity.hasStatus || !activity.readyKnown)
            return QString();
        return activity.ready ? tr("ready") : tr("not ready");
    case kColumnAlarms:
        return instrument->AlarmCount() > 0 ? QString::number(instrument->AlarmCount()) : QString();
    case kColumnStatusAge:
        return instrument->LastStatusTime() == 0
                   ? QStringLiteral("-")
                   : FormatAge(QDateTime::currentMSecsSinceEpoch() - instrument->LastStatusTime());
    default:
        return {};
    }
}

QVariant InstrumentListModel::SortKey(int row, int column) const {
    const ManagedInstrument* instrument = m_sensors.At(row);
    const InstrumentActivity& activity = instrument->Activity();
    switch (column) {
    case kColumnState:
        return int(instrument->GetState());
    case kColumnRun:
        // Idle first, then by how far the run is.
        return activity.IsRunning() ? 1 + qMax(0, activity.PercentDone()) : 0;
    case kColumnReady:
        return !activity.readyKnown ? -1 : activity.ready ? 1 : 0;
    case kColumnAlarms:
        return instrument->AlarmCount();
    case kColumnStatusAge:
        // Never: the oldest of all.
        return instrument->LastStatusTime() == 0
                   ? std::numeric_limits<qint64>::max()
                   : QDateTime::currentMSecsSinceEpoch() - instrument->LastStatusTime();
    default:
        return DisplayText(row, column).toString().toLower();
    }
}

QVariant InstrumentListModel::data(const QModelIndex& index, int role) const {
    const ManagedInstrument* instrument = m_sensors.At(index.row());
    if (!instrument)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return DisplayText(index.row(), index.column());
    case kSortRole:
        return SortKey(index.row(), index.column());
    case kProgressRole:
        return index.column() == kColumnRun ? instrument->Activity().PercentDone() : -1;
    case Qt::ToolTipRole:
        if (index.column() == kColumnRun && instrument->Activity().IsRunning())
            return QString::fromStdWString(instrument->Activity().process);
        return QStringLiteral("%1\n%2").arg(instrument->Title(), instrument->StateText());
    case Qt::TextAlignmentRole:
        return index.column() == kColumnAlarms || index.column() == kColumnStatusAge
                   ? QVariant(int(Qt::AlignRight | Qt::AlignVCenter))
                   : QVariant();
    case Qt::BackgroundRole:
        // A dropped instrument stands out from one taken off line on purpose.
        if (instrument->GetState() == ManagedInstrument::State::Reconnecting)
            return QColor(0xfd, 0xe0, 0xe0);
        return {};
    case Qt::ForegroundRole:
        if (instrument->GetState() == ManagedInstrument::State::Reconnecting)
            return QColor(0xb7, 0x1c, 0x1c);
        if (index.column() == kColumnAlarms && instrument->AlarmCount() > 0)
            return QColor(0xd3, 0x2f, 0x2f);
        return {};
    case Qt::DecorationRole:
        if (index.column() != kColumnState)
            return {};
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
        return {};
    default:
        return {};
    }
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
    case kColumnRun:
        return tr("Running");
    case kColumnReady:
        return tr("Ready");
    case kColumnAlarms:
        return tr("Alarms");
    case kColumnStatusAge:
        return tr("Last status");
    default:
        return {};
    }
}
