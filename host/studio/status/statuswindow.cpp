// SPDX-License-Identifier: Apache-2.0
#include "statuswindow.h"

#include "alarmtext.h"
#include "managedinstrument.h"
#include "sensormanager.h"
#include "statuspanel.h"
#include "trendplot.h"

#include <QDateTime>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {
// The readings shown at first: the vacuum and the column, what an operator watches most.
bool PickedAtFirst(const QString& key) {
    return key.contains(QStringLiteral("(Pa)")) || key.endsWith(QStringLiteral("/Column"));
}

QString TimeText(qint64 ms) {
    return QDateTime::fromMSecsSinceEpoch(ms).toString(QStringLiteral("HH:mm:ss"));
}
} // namespace

StatusWindow::StatusWindow(SensorManager& sensors, ManagedInstrument& instrument, QWidget* parent)
    : QWidget(parent, Qt::Window), m_sensors(sensors), m_instrument(&instrument) {
    setObjectName(QStringLiteral("statusWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Status of %1").arg(instrument.Title()));

    m_state = new QLabel(this);
    m_state->setObjectName(QStringLiteral("stateLabel"));
    m_ready = new QLabel(this);
    m_ready->setObjectName(QStringLiteral("readyLabel"));
    m_ready->setMargin(4);
    auto* header = new QHBoxLayout;
    header->addWidget(m_state, 1);
    header->addWidget(m_ready);

    m_panel = new StatusPanel(this);
    auto* sectionsBox = new QGroupBox(tr("Status"), this);
    (new QVBoxLayout(sectionsBox))->addWidget(m_panel);

    m_active = new QTreeWidget(this);
    m_active->setObjectName(QStringLiteral("activeAlarms"));
    m_active->setHeaderLabels({tr("Since"), tr("Alarm")});
    m_active->setRootIsDecorated(false);
    m_active->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_history = new QListWidget(this);
    m_history->setObjectName(QStringLiteral("alarmHistory"));
    auto* alarmBox = new QGroupBox(tr("Alarms"), this);
    auto* alarmLayout = new QVBoxLayout(alarmBox);
    alarmLayout->addWidget(m_active, 1);
    alarmLayout->addWidget(new QLabel(tr("This session:"), alarmBox));
    alarmLayout->addWidget(m_history, 1);

    auto* top = new QSplitter(Qt::Horizontal, this);
    top->addWidget(sectionsBox);
    top->addWidget(alarmBox);
    top->setStretchFactor(0, 1);
    top->setStretchFactor(1, 1);

    m_picker = new QListWidget(this);
    m_picker->setObjectName(QStringLiteral("readingPicker"));
    m_picker->setMaximumWidth(240);
    connect(m_picker, &QListWidget::itemChanged, this, &StatusWindow::PickedChanged);
    m_plot = new TrendPlot(this);
    auto* scroll = new QScrollArea(this);
    scroll->setWidget(m_plot);
    scroll->setWidgetResizable(true);
    auto* trendBox = new QGroupBox(tr("Trends (last hour)"), this);
    auto* trendLayout = new QHBoxLayout(trendBox);
    trendLayout->addWidget(m_picker);
    trendLayout->addWidget(scroll, 1);

    auto* body = new QSplitter(Qt::Vertical, this);
    body->addWidget(top);
    body->addWidget(trendBox);
    body->setStretchFactor(0, 2);
    body->setStretchFactor(1, 3);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(header);
    layout->addWidget(body, 1);
    resize(1000, 760);

    const auto follow = [this](int row) {
        if (m_instrument && m_sensors.At(row) == m_instrument)
            Refresh();
    };
    connect(&m_sensors, &SensorManager::instrumentChanged, this, follow);
    connect(&m_sensors, &SensorManager::ticked, this, &StatusWindow::Refresh);
    connect(&m_sensors, &SensorManager::instrumentRemoved, this, [this] {
        if (!m_instrument || m_sensors.IndexOf(m_instrument) < 0)
            close();
    });
    Refresh();
}

void StatusWindow::Refresh() {
    if (!m_instrument)
        return;
    setWindowTitle(tr("Status of %1").arg(m_instrument->Title()));
    m_state->setText(
        QStringLiteral("<b>%1</b> &mdash; %2")
            .arg(m_instrument->Title().toHtmlEscaped(), m_instrument->StateText().toHtmlEscaped()));
    m_panel->Refresh(m_instrument->Sensor(), m_instrument->Config().name);
    RefreshReady();
    RefreshAlarms();
    RefreshPicker();
    m_plot->update();
}

void StatusWindow::RefreshReady() {
    const StatusMonitor& monitor = m_instrument->Monitor();
    const bool online = m_instrument->GetState() == ManagedInstrument::State::Online;
    QString text = tr("Ready: unknown");
    QString style = QStringLiteral("QLabel { border: 1px solid palette(mid); }");
    if (online && monitor.ReadyKnown()) {
        text = monitor.Ready() ? tr("Ready") : tr("Not ready");
        style = monitor.Ready() ? QStringLiteral("QLabel { background: #d7f5d7; color: #145214; }")
                                : QStringLiteral("QLabel { background: #fff0c2; color: #5c4400; }");
    }
    m_ready->setText(text);
    m_ready->setStyleSheet(style);
}

void StatusWindow::RefreshAlarms() {
    const auto& active = m_instrument->Monitor().Alarms().Active();
    m_active->clear();
    for (const auto& [key, alarm] : active) {
        auto* item = new QTreeWidgetItem(m_active, {TimeText(alarm.sinceMs), AlarmText::Describe(alarm)});
        item->setData(0, Qt::UserRole, QString::fromStdString(key));
        item->setForeground(1, QColor(0xa0, 0x10, 0x10));
    }
    // The session's changes only grow (oldest dropped beyond the instrument's limit): add the new ones.
    const QList<AlarmChange>& changes = m_instrument->AlarmChanges();
    if (changes.size() < m_shownChanges || m_history->count() > ManagedInstrument::kMaxKept) {
        m_history->clear();
        m_shownChanges = 0;
    }
    for (qsizetype i = m_shownChanges; i < changes.size(); ++i)
        m_history->addItem(
            QStringLiteral("%1  %2").arg(TimeText(changes[i].timeMs), AlarmText::Change(changes[i])));
    if (changes.size() != m_shownChanges)
        m_history->scrollToBottom();
    m_shownChanges = static_cast<int>(changes.size());
}

// Readings appear in the picker as the instrument first reports them; the operator's picks stay.
void StatusWindow::RefreshPicker() {
    const StatusHistory& history = m_instrument->Monitor().History();
    QSignalBlocker block(m_picker);
    bool added = false;
    for (const StatusHistory::Channel& channel : history.Channels()) {
        const QString key = QString::fromStdString(channel.key);
        bool known = false;
        for (int i = 0; i < m_picker->count() && !known; ++i)
            known = m_picker->item(i)->data(Qt::UserRole).toString() == key;
        if (known)
            continue;
        auto* item = new QListWidgetItem(QString::fromStdWString(channel.name), m_picker);
        item->setData(Qt::UserRole, key);
        item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
        item->setCheckState(PickedAtFirst(key) ? Qt::Checked : Qt::Unchecked);
        item->setToolTip(key);
        added = true;
    }
    if (added || m_plot->Keys().isEmpty())
        PickedChanged();
}

void StatusWindow::PickedChanged() {
    QStringList keys;
    for (int i = 0; i < m_picker->count(); ++i) {
        if (m_picker->item(i)->checkState() == Qt::Checked)
            keys << m_picker->item(i)->data(Qt::UserRole).toString();
    }
    m_plot->SetSeries(m_instrument ? &m_instrument->Monitor().History() : nullptr, keys);
}
