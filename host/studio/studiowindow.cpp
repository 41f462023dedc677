// SPDX-License-Identifier: Apache-2.0
#include "studiowindow.h"

#include "datareviewwindow.h"
#include "hostresource.h"
#include "instrumenteditordialog.h"
#include "instrumentlistmodel.h"
#include "linkbanners.h"
#include "logpane.h"
#include "managedinstrument.h"
#include "prompt.h"
#include "registry.h"
#include "remotename.h"
#include "runswindow.h"
#include "sensorinfo.h"
#include "sensormanager.h"
#include "sensorref.h"
#include "servicewindow.h"
#include "settingsdialog.h"
#include "statuspanel.h"
#include "statuswindow.h"
#include "studiosettings.h"
#include "toollist.h"
#include "toolrunner.h"
#include "vexaversion.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QDir>
#include <QFileInfo>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSortFilterProxyModel>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

namespace {
const std::wstring kSettingsSection = L"Studio";
const QString kWindowTitle = QStringLiteral("VEXA Studio");
constexpr int kMessageTimeoutMs = 8000;
} // namespace

StudioWindow::StudioWindow(Startup startup, CPXRegistry& registry, QWidget* parent)
    : QMainWindow(parent), m_startup(std::move(startup)), m_registry(registry),
      m_sensors(new SensorManager(this)), m_store(registry),
      m_model(new InstrumentListModel(*m_sensors, this)), m_sortedModel(new QSortFilterProxyModel(this)) {
    m_sortedModel->setSourceModel(m_model);
    m_sortedModel->setSortRole(InstrumentListModel::kSortRole);
    m_runs = new RunsWindow(*m_sensors, this);
    setObjectName(QStringLiteral("studioWindow"));
    setWindowTitle(kWindowTitle);
    BuildActions();
    BuildMenus();
    setCentralWidget(BuildCentralWidget());
    m_summary = new QLabel(this);
    m_summary->setObjectName(QStringLiteral("summary"));
    statusBar()->addPermanentWidget(m_summary);

    connect(m_sensors, &SensorManager::logMessage, m_log, &LogPane::Append);
    connect(m_sensors, &SensorManager::eventLogged, m_log, &LogPane::AppendWithDetail);
    connect(m_runs, &RunsWindow::logMessage, m_log, &LogPane::Append);
    connect(m_runs, &RunsWindow::reviewRequested, this, &StudioWindow::ReviewDataFile);
    connect(m_sensors, &SensorManager::instrumentAdded, this, &StudioWindow::UpdateSummary);
    connect(m_sensors, &SensorManager::instrumentRemoved, this, &StudioWindow::UpdateSummary);
    connect(m_sensors, &SensorManager::instrumentChanged, this, [this](int row) {
        UpdateSummary();
        if (row == SelectedRow()) {
            UpdateSelectionState();
            RefreshStatus();
        }
    });
    connect(m_sensors, &SensorManager::ticked, this, [this] {
        UpdateSummary();
        RefreshStatus();
    });
    connect(m_sensors, &SensorManager::linkLost, m_linkBanners, &LinkBanners::ShowLoss);
    connect(m_sensors, &SensorManager::linkReturned, m_linkBanners, &LinkBanners::ShowReturn);
    connect(m_sensors, &SensorManager::linkForgotten, m_linkBanners, &LinkBanners::Forget);
    connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] {
        UpdateSelectionState();
        RefreshStatus();
    });
    connect(m_table, &QTableView::doubleClicked, this, &StudioWindow::EditInstrument);
    connect(m_tools, &ToolListWidget::toolActivated, this, &StudioWindow::RunTool);
    connect(&m_timer, &QTimer::timeout, m_sensors, &SensorManager::Tick);

    RestoreGeometry();
    UpdateSelectionState();
}

StudioWindow::~StudioWindow() {
    m_timer.stop();
    // Data Review holds a sensor: it goes before the sensors do.
    delete m_dataReview.data();
}

namespace {

// The sensor types the instrument editor offers, by short and display name.
QList<InstrumentEditorDialog::TypeChoice> TypeChoices(const QList<ISensorInfo*>& types) {
    QList<InstrumentEditorDialog::TypeChoice> choices;
    for (ISensorInfo* type : types)
        choices.append(
            {QString::fromStdWString(type->ShortName()), QString::fromStdWString(type->DisplayName())});
    return choices;
}

} // namespace

// ---- construction ----

void StudioWindow::BuildActions() {
    m_settingsAction = new QAction(tr("&Settings..."), this);
    m_settingsAction->setMenuRole(QAction::PreferencesRole);
    connect(m_settingsAction, &QAction::triggered, this, &StudioWindow::ShowSettings);
    m_quitAction = new QAction(tr("&Quit"), this);
    m_quitAction->setShortcut(QKeySequence::Quit);
    m_quitAction->setMenuRole(QAction::QuitRole);
    connect(m_quitAction, &QAction::triggered, this, &QWidget::close);

    m_addAction = new QAction(tr("&Add ..."), this);
    m_addAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_N));
    connect(m_addAction, &QAction::triggered, this, &StudioWindow::AddInstrument);
    m_editAction = new QAction(tr("&Edit ..."), this);
    m_editAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_E));
    connect(m_editAction, &QAction::triggered, this, &StudioWindow::EditInstrument);
    m_removeAction = new QAction(tr("&Remove"), this);
    m_removeAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Delete));
    connect(m_removeAction, &QAction::triggered, this, &StudioWindow::RemoveInstrument);
    m_onlineAction = new QAction(tr("Go &on line"), this);
    m_onlineAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_L));
    connect(m_onlineAction, &QAction::triggered, this, &StudioWindow::ToggleOnline);
    m_runsAction = new QAction(tr("&Runs"), this);
    m_runsAction->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_R));
    connect(m_runsAction, &QAction::triggered, this, [this] {
        m_runs->show();
        m_runs->raise();
    });
    m_stayOfflineAction = new QAction(tr("&Stay off line"), this);
    m_stayOfflineAction->setStatusTip(tr("Stop reconnecting the instrument that dropped"));
    connect(m_stayOfflineAction, &QAction::triggered, this, &StudioWindow::StayOffline);

    m_aboutAction = new QAction(tr("&About VEXA Studio"), this);
    m_aboutAction->setMenuRole(QAction::AboutRole);
    connect(m_aboutAction, &QAction::triggered, this, &StudioWindow::ShowAbout);
}

void StudioWindow::BuildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(m_settingsAction);
    file->addSeparator();
    file->addAction(m_quitAction);
    QMenu* instrument = menuBar()->addMenu(tr("&Instrument"));
    instrument->addAction(m_addAction);
    instrument->addAction(m_editAction);
    instrument->addAction(m_removeAction);
    instrument->addSeparator();
    instrument->addAction(m_onlineAction);
    instrument->addAction(m_stayOfflineAction);
    QMenu* window = menuBar()->addMenu(tr("&Window"));
    window->addAction(m_runsAction);
    QMenu* help = menuBar()->addMenu(tr("&Help"));
    help->addAction(m_aboutAction);
}

QGroupBox* StudioWindow::BuildInstrumentBox(QWidget* parent) {
    auto* instrumentBox = new QGroupBox(tr("Instruments"), parent);
    m_table = new QTableView(instrumentBox);
    m_table->setObjectName(QStringLiteral("instrumentList"));
    m_table->setModel(m_sortedModel);
    m_table->setSortingEnabled(true);
    m_table->sortByColumn(-1, Qt::AscendingOrder);
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setSelectionMode(QAbstractItemView::SingleSelection);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setAlternatingRowColors(true);
    m_table->setShowGrid(false);
    m_table->setWordWrap(false);
    m_table->verticalHeader()->hide();
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setSectionResizeMode(InstrumentListModel::kColumnName,
                                                      QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(InstrumentListModel::kColumnAddress,
                                                      QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setSectionResizeMode(InstrumentListModel::kColumnType,
                                                      QHeaderView::ResizeToContents);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->addAction(m_removeAction);

    m_addButton = new QPushButton(tr("Add ..."), instrumentBox);
    m_editButton = new QPushButton(tr("Edit ..."), instrumentBox);
    m_removeButton = new QPushButton(tr("Remove"), instrumentBox);
    m_onlineButton = new QPushButton(tr("Go on line"), instrumentBox);
    m_onlineButton->setObjectName(QStringLiteral("onlineButton"));
    connect(m_addButton, &QPushButton::clicked, this, &StudioWindow::AddInstrument);
    connect(m_editButton, &QPushButton::clicked, this, &StudioWindow::EditInstrument);
    connect(m_removeButton, &QPushButton::clicked, this, &StudioWindow::RemoveInstrument);
    connect(m_onlineButton, &QPushButton::clicked, this, &StudioWindow::ToggleOnline);
    m_stayOfflineButton = new QPushButton(tr("Stay off line"), instrumentBox);
    m_stayOfflineButton->setObjectName(QStringLiteral("stayOfflineButton"));
    m_stayOfflineButton->hide();
    connect(m_stayOfflineButton, &QPushButton::clicked, this, &StudioWindow::StayOffline);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(m_addButton);
    buttons->addWidget(m_editButton);
    buttons->addWidget(m_removeButton);
    buttons->addStretch(1);
    buttons->addWidget(m_stayOfflineButton);
    buttons->addWidget(m_onlineButton);
    auto* instrumentLayout = new QVBoxLayout(instrumentBox);
    instrumentLayout->addWidget(m_table, 1);
    instrumentLayout->addLayout(buttons);
    return instrumentBox;
}

void StudioWindow::BuildStatusAndTools(QWidget* parent) {
    m_statusBox = new QGroupBox(tr("Status"), parent);
    m_status = new StatusPanel(m_statusBox);
    connect(m_status, &StatusPanel::captionChanged, m_statusBox, &QGroupBox::setTitle);
    auto* statusLayout = new QVBoxLayout(m_statusBox);
    statusLayout->addWidget(m_status);

    m_toolBox = new QGroupBox(tr("Tools"), parent);
    m_tools = new ToolListWidget(m_toolBox);
    auto* toolLayout = new QVBoxLayout(m_toolBox);
    toolLayout->addWidget(m_tools);

    m_rightSplitter = new QSplitter(Qt::Vertical, parent);
    m_rightSplitter->setObjectName(QStringLiteral("rightSplitter"));
    m_rightSplitter->addWidget(m_statusBox);
    m_rightSplitter->addWidget(m_toolBox);
    m_rightSplitter->setStretchFactor(0, 1);
    m_rightSplitter->setStretchFactor(1, 0);
}

QWidget* StudioWindow::BuildCentralWidget() {
    auto* central = new QWidget(this);

    m_banner = new QLabel(central);
    m_banner->setObjectName(QStringLiteral("pluginBanner"));
    m_banner->setWordWrap(true);
    m_banner->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_banner->setStyleSheet(
        QStringLiteral("QLabel { background: #fff4ce; color: #5c4400; border: 1px solid #e0c36a;"
                       " border-radius: 3px; padding: 6px; }"));
    m_banner->hide();
    m_linkBanners = new LinkBanners(central);

    // Left the instruments and their buttons, right the status above the tools.
    QGroupBox* instrumentBox = BuildInstrumentBox(central);
    BuildStatusAndTools(central);
    m_topSplitter = new QSplitter(Qt::Horizontal, central);
    m_topSplitter->setObjectName(QStringLiteral("topSplitter"));
    m_topSplitter->addWidget(instrumentBox);
    m_topSplitter->addWidget(m_rightSplitter);
    m_topSplitter->setStretchFactor(0, 1);
    m_topSplitter->setStretchFactor(1, 1);

    m_log = new LogPane(central);
    auto* logBox = new QGroupBox(tr("Log"), central);
    auto* logLayout = new QVBoxLayout(logBox);
    logLayout->addWidget(m_log);

    m_mainSplitter = new QSplitter(Qt::Vertical, central);
    m_mainSplitter->setObjectName(QStringLiteral("mainSplitter"));
    m_mainSplitter->addWidget(m_topSplitter);
    m_mainSplitter->addWidget(logBox);
    m_mainSplitter->setStretchFactor(0, 1);
    m_mainSplitter->setStretchFactor(1, 0);
    m_mainSplitter->setChildrenCollapsible(false);

    auto* layout = new QVBoxLayout(central);
    layout->addWidget(m_banner);
    layout->addWidget(m_linkBanners);
    layout->addWidget(m_mainSplitter, 1);
    return central;
}

void StudioWindow::RestoreGeometry() {
    // A first start fills most of a laptop screen; later starts come back as the operator left them.
    QSize size(1200, 860);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        size = size.boundedTo(screen->availableGeometry().size() * 0.92);
    resize(size);
    m_topSplitter->setSizes({size.width() * 42 / 100, size.width() * 58 / 100});
    const int toolsHeight = m_toolBox->minimumSizeHint().height();
    m_rightSplitter->setSizes({size.height() * 72 / 100 - toolsHeight, toolsHeight});
    m_mainSplitter->setSizes({size.height() * 78 / 100, size.height() * 18 / 100});
    const auto read = [this](const wchar_t* key) {
        return QByteArray::fromBase64(
            QString::fromStdWString(m_registry.GetString(kSettingsSection, key, L"")).toLatin1());
    };
    if (const QByteArray geometry = read(L"Geometry"); !geometry.isEmpty())
        restoreGeometry(geometry);
    if (const QByteArray state = read(L"MainSplitter"); !state.isEmpty())
        m_mainSplitter->restoreState(state);
    if (const QByteArray state = read(L"TopSplitter"); !state.isEmpty())
        m_topSplitter->restoreState(state);
    if (const QByteArray state = read(L"RightSplitter"); !state.isEmpty())
        m_rightSplitter->restoreState(state);
}

void StudioWindow::SaveGeometry() {
    const auto write = [this](const wchar_t* key, const QByteArray& value) {
        m_registry.SetString(kSettingsSection, key, QString::fromLatin1(value.toBase64()).toStdWString());
    };
    write(L"Geometry", saveGeometry());
    write(L"MainSplitter", m_mainSplitter->saveState());
    write(L"TopSplitter", m_topSplitter->saveState());
    write(L"RightSplitter", m_rightSplitter->saveState());
}

// ---- start ----

void StudioWindow::Start() {
    const QString folder = m_startup.pluginDir;
    m_log->Append(tr("VEXA Studio started; plug-in folder %1.").arg(QDir::toNativeSeparators(folder)));
    m_sensors->LoadPlugins(folder);
    ApplySettings();
    ShowPluginProblem();
    UpdateSummary();

    const QList<InstrumentConfig> saved = m_store.Load();
    for (const InstrumentConfig& config : saved)
        m_sensors->Add(config, false);
    if (!saved.isEmpty())
        m_log->Append(tr("%n saved instrument(s) loaded from %1.", nullptr, static_cast<int>(saved.size()))
                          .arg(QString::fromStdString(m_registry.Path())));
    if (m_sensors->Count() > 0)
        SelectRow(0);
    UpdateSelectionState();
    RestartTimer();
    AddRunInstruments();
}

void StudioWindow::ShowPluginProblem() {
    const QString problem = m_sensors->Plugins().Problem();
    m_banner->setText(problem);
    m_banner->setVisible(!problem.isEmpty());
    if (!problem.isEmpty())
        statusBar()->showMessage(tr("No sensor type is available."));
}

void StudioWindow::AddRunInstruments() {
    const QString defaultType = QStringLiteral("VEXA");
    for (const QString& text : std::as_const(m_startup.instruments)) {
        const QString address = text.trimmed();
        int row = m_sensors->FindAddress(address);
        if (row < 0) {
            InstrumentConfig config;
            config.address = address;
            config.sensorType = defaultType;
            config.name = address;
            if (m_sensors->Validate(config).field == InstrumentProblem::Field::Name)
                config.name = m_sensors->UnusedName(defaultType);
            const InstrumentProblem problem = m_sensors->Validate(config);
            if (!problem.IsEmpty()) {
                m_log->Append(tr("--instrument %1 refused: %2").arg(address, problem.text));
                continue;
            }
            row = m_sensors->Add(config, true);
            RestartTimer();
        }
        SelectRow(row);
        m_sensors->GoOnline(row);
    }
}

// ---- selection ----

int StudioWindow::SelectedRow() const {
    const QModelIndex current = m_table->selectionModel()->currentIndex();
    if (!current.isValid() || !m_table->selectionModel()->isRowSelected(current.row(), {}))
        return -1;
    return m_sortedModel->mapToSource(current).row();
}

void StudioWindow::SelectRow(int row) {
    if (row < 0 || row >= m_model->rowCount())
        return;
    m_table->selectionModel()->setCurrentIndex(m_sortedModel->mapFromSource(m_model->index(row, 0)),
                                               QItemSelectionModel::ClearAndSelect |
                                                   QItemSelectionModel::Rows);
}

ISensorInfo* StudioWindow::ToolSensorType() const {
    if (const ManagedInstrument* instrument = m_sensors->At(SelectedRow())) {
        if (ISensorInfo* type = m_sensors->FindSensorType(instrument->Config().sensorType))
            return type;
    }
    const QList<ISensorInfo*> types = m_sensors->SensorTypes();
    return types.isEmpty() ? nullptr : types.first();
}

void StudioWindow::UpdateSelectionState() {
    const ManagedInstrument* instrument = m_sensors->At(SelectedRow());
    const bool selected = instrument != nullptr;
    const bool busy = selected && instrument->IsConnecting();
    const bool online = selected && instrument->GetState() == ManagedInstrument::State::Online;
    m_editAction->setEnabled(selected && !busy);
    m_removeAction->setEnabled(selected && !busy);
    m_editButton->setEnabled(m_editAction->isEnabled());
    m_removeButton->setEnabled(m_removeAction->isEnabled());

    const bool reconnecting = selected && instrument->IsReconnecting();
    const QString toggleText = online         ? tr("Go off line")
                               : busy         ? tr("Connecting ...")
                               : reconnecting ? tr("Retry now")
                                              : tr("Go on line");
    m_onlineAction->setText(online         ? tr("Go &off line")
                            : reconnecting ? tr("&Retry now")
                                           : tr("Go &on line"));
    m_onlineAction->setEnabled(selected && !busy && instrument->Sensor() != nullptr);
    m_onlineButton->setText(toggleText);
    m_onlineButton->setEnabled(m_onlineAction->isEnabled());
    m_stayOfflineAction->setEnabled(reconnecting);
    m_stayOfflineButton->setVisible(reconnecting);

    ISensorInfo* type = ToolSensorType();
    if (type != m_tools->SensorType()) {
        m_tools->SetSensorType(type);
        m_toolBox->setTitle(type ? tr("Tools of %1 (%2)")
                                       .arg(QString::fromStdWString(type->DisplayName()),
                                            QString::fromStdWString(type->ShortName()))
                                 : tr("Tools"));
    }
    if (!m_tools->SensorType())
        m_toolBox->setTitle(tr("Tools (no sensor type loaded)"));
}

void StudioWindow::UpdateSummary() {
    int online = 0, running = 0, alarmed = 0;
    for (int row = 0; row < m_sensors->Count(); ++row) {
        const ManagedInstrument* instrument = m_sensors->At(row);
        online += instrument->GetState() == ManagedInstrument::State::Online ? 1 : 0;
        running += instrument->Activity().IsRunning() ? 1 : 0;
        alarmed += instrument->AlarmCount() > 0 ? 1 : 0;
    }
    QStringList types;
    for (ISensorInfo* type : m_sensors->SensorTypes())
        types << QString::fromStdWString(type->ShortName());
    const QString counts = tr("%1 on line, %2 running, %3 in alarm").arg(online).arg(running).arg(alarmed);
    setWindowTitle(m_sensors->Count() > 0 ? QStringLiteral("%1 - %2").arg(kWindowTitle, counts)
                                          : kWindowTitle);
    m_summary->setText(tr("%1 instrument(s): %2  |  sensor types: %3")
                           .arg(m_sensors->Count())
                           .arg(counts)
                           .arg(types.isEmpty() ? tr("none") : types.join(QStringLiteral(", "))));
}

void StudioWindow::RefreshStatus() {
    const ManagedInstrument* instrument = m_sensors->At(SelectedRow());
    if (!instrument || !instrument->Sensor()) {
        m_status->Refresh(nullptr, {});
        return;
    }
    m_status->Refresh(instrument->Sensor(), instrument->Config().name,
                      instrument->IsReconnecting() ? instrument->StateText() : QString());
}

void StudioWindow::RestartTimer() {
    m_timer.start(m_sensors->TimerInterval());
}

// ---- commands ----

void StudioWindow::AddInstrument() {
    const QList<ISensorInfo*> types = m_sensors->SensorTypes();
    if (types.isEmpty()) {
        Message(tr("No sensor type is loaded, so no instrument can be added.\n\n%1")
                    .arg(m_sensors->Plugins().Problem()));
        return;
    }
    const QList<InstrumentEditorDialog::TypeChoice> choices = TypeChoices(types);
    InstrumentEditorDialog dialog(
        choices, [this](const InstrumentConfig& config) { return m_sensors->Validate(config, -1); }, this);
    dialog.setWindowTitle(tr("Add Instrument"));
    InstrumentConfig config;
    config.sensorType =
        m_sensors->FindSensorType(config.sensorType) ? config.sensorType : choices.first().shortName;
    config.name = m_sensors->UnusedName(config.sensorType);
    dialog.SetConfig(config);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const int row = m_sensors->Add(dialog.Config(), false);
    SaveInstruments();
    RestartTimer();
    SelectRow(row);
}

void StudioWindow::EditInstrument() {
    const int row = SelectedRow();
    const ManagedInstrument* instrument = m_sensors->At(row);
    if (!instrument || instrument->IsConnecting())
        return;
    InstrumentEditorDialog dialog(
        TypeChoices(m_sensors->SensorTypes()),
        [this, row](const InstrumentConfig& config) { return m_sensors->Validate(config, row); }, this);
    dialog.setWindowTitle(tr("Edit Instrument"));
    dialog.SetConfig(instrument->Config());
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QString oldName = instrument->Config().name;
    const QString newName = dialog.Config().name;
    if (newName != oldName && QFileInfo(SensorManager::SensorFolder(oldName)).isDir() &&
        QFileInfo::exists(SensorManager::SensorFolder(newName))) {
        const QString question =
            tr("The folder %1 already exists. Move the files of %2 into it? What it already holds is kept.")
                .arg(SensorManager::SensorFolder(newName), oldName);
        if (Prompt().AskYesNo(question.toStdWString(), kWindowTitle.toStdWString(), this) != IDYES)
            return;
    }
    // The row may have moved while the dialog ran (the timer can report a drop, nothing removes rows).
    if (!m_sensors->Replace(row, dialog.Config()))
        return;
    if (!m_sensors->At(row)->IsTransient())
        SaveInstruments();
    RestartTimer();
    UpdateSelectionState();
    RefreshStatus();
}

void StudioWindow::RemoveInstrument() {
    const int row = SelectedRow();
    const ManagedInstrument* instrument = m_sensors->At(row);
    if (!instrument || instrument->IsConnecting())
        return;
    const QString question = tr("Remove the instrument %1?").arg(instrument->Title());
    if (Prompt().AskYesNo(question.toStdWString(), kWindowTitle.toStdWString(), this) != IDYES)
        return;
    const bool transient = instrument->IsTransient();
    if (!m_sensors->Remove(row))
        return;
    if (!transient)
        SaveInstruments();
    SelectRow(qMin(row, m_sensors->Count() - 1));
    UpdateSelectionState();
    RefreshStatus();
}

void StudioWindow::ToggleOnline() {
    const int row = SelectedRow();
    const ManagedInstrument* instrument = m_sensors->At(row);
    if (!instrument || instrument->IsConnecting())
        return;
    if (instrument->GetState() == ManagedInstrument::State::Online)
        m_sensors->GoOffline(row);
    else
        m_sensors->GoOnline(row);
    UpdateSelectionState();
    RefreshStatus();
}

void StudioWindow::StayOffline() {
    const int row = SelectedRow();
    const ManagedInstrument* instrument = m_sensors->At(row);
    if (!instrument || !instrument->IsReconnecting())
        return;
    m_sensors->GoOffline(row);
    UpdateSelectionState();
    RefreshStatus();
}

void StudioWindow::RunTool(int toolIndex) {
    ISensorInfo* type = m_tools->SensorType();
    if (!type || toolIndex < 0 || toolIndex >= static_cast<int>(type->Tools().size()))
        return;
    const SensorTool tool = type->Tools()[static_cast<size_t>(toolIndex)];
    const int row = SelectedRow();
    ManagedInstrument* instrument = m_sensors->At(row);
    ISensorObject* sensor = instrument ? instrument->Sensor() : nullptr;

    // The tool may run a modal dialog that dispatches events: hold the sensor for its duration.
    const SensorRef<> held = SensorRef<>::Share(sensor);
    const QPointer<ManagedInstrument> busyInstrument = instrument;
    const ToolRunner::BusyNotice busy = [this, busyInstrument](const QString& text) {
        if (const int row = m_sensors->IndexOf(busyInstrument); row >= 0) {
            busyInstrument->SetBusyNote(text);
            emit m_sensors->instrumentChanged(row);
        }
        if (text.isEmpty()) {
            statusBar()->clearMessage();
            QApplication::restoreOverrideCursor();
        } else {
            statusBar()->showMessage(text);
            QApplication::setOverrideCursor(Qt::BusyCursor);
        }
    };
    const ToolRunner::Outcome outcome = ToolRunner::Run(*type, tool, held.get(), busy);

    if (!outcome.message.isEmpty())
        m_log->Append(outcome.message);
    using Kind = ToolRunner::Outcome::Kind;
    switch (outcome.kind) {
    case Kind::RanByModule:
    case Kind::ProgramFailed: // the module has told the operator why
    case Kind::ManageFilesClosed:
    case Kind::Tuned:
    case Kind::TuneDeclined:
    case Kind::FileChosen:
    case Kind::SelectionCancelled:
    case Kind::HandedToModule:
        break;
    case Kind::MethodChosen:
        if (instrument && m_sensors->IndexOf(instrument) >= 0)
            m_runs->Run(*instrument, QString::fromStdWString(outcome.file));
        break;
    case Kind::ChooseMethodAction:
        OfferMethodActions();
        break;
    case Kind::ReviewDataFile:
        ShowDataReview(held.get(), outcome.file);
        break;
    case Kind::MethodFailed:
        Message(outcome.message);
        break;
    case Kind::ManageFilesUnavailable:
        statusBar()->showMessage(outcome.message, kMessageTimeoutMs);
        break;
    case Kind::ShowStatus:
        ShowToolWindow<StatusWindow>();
        break;
    case Kind::ShowService:
        ShowToolWindow<ServiceWindow>();
        break;
    case Kind::NeedsInstrument:
    case Kind::OutOfScope:
    case Kind::TuneFailed:
        Message(outcome.message);
        break;
    }
}

void StudioWindow::ReviewDataFile(const QString& file) {
    // A file on an instrument is read through that instrument's sensor.
    std::wstring host;
    const bool remote = SplitRemoteName(file.toStdWString(), &host, nullptr);
    const ManagedInstrument* instrument =
        remote ? m_sensors->At(m_sensors->FindAddress(QString::fromStdWString(host))) : nullptr;
    ShowDataReview(instrument ? instrument->Sensor() : nullptr, file.toStdWString());
}

DataReviewWindow* StudioWindow::DataReview() const {
    return m_dataReview;
}

void StudioWindow::ShowDataReview(ISensorObject* sensor, const std::wstring& file) {
    if (!m_dataReview) {
        m_dataReview = new DataReviewWindow(m_tools->SensorType(), this);
        m_dataReview->setWindowFlag(Qt::Window);
    }
    m_dataReview->SetSensor(sensor);
    m_dataReview->show();
    m_dataReview->raise();
    m_dataReview->activateWindow();
    if (!m_dataReview->OpenFile(file))
        m_log->Append(m_dataReview->LastError());
}

// The menu pops up without a modal loop of its own, so the window (and a test) stays in charge.
void StudioWindow::OfferMethodActions() {
    if (!m_methodMenu) {
        m_methodMenu = new QMenu(this);
        using Action = ToolRunner::MethodAction;
        const std::pair<QString, Action> actions[] = {{tr("New &Method"), Action::NewMethod},
                                                      {tr("New &Sequence"), Action::NewSequence},
                                                      {tr("&Open..."), Action::Open},
                                                      {tr("&Default Methods..."), Action::DefaultMethods}};
        for (const auto& [text, action] : actions)
            connect(m_methodMenu->addAction(text), &QAction::triggered, this,
                    [this, action = action] { RunMethodEditor(action); });
    }
    m_methodMenu->popup(QCursor::pos());
}

void StudioWindow::RunMethodEditor(ToolRunner::MethodAction action) {
    ISensorInfo* type = m_tools->SensorType();
    if (!type)
        return;
    const ManagedInstrument* instrument = m_sensors->At(SelectedRow());
    ISensorObject* sensor = instrument ? instrument->Sensor() : nullptr;
    if (sensor)
        sensor->IncRef();
    const ToolRunner::Outcome outcome = ToolRunner::RunMethodEditor(*type, action, sensor);
    if (sensor)
        sensor->DecRef();
    m_log->Append(outcome.message);
    if (outcome.kind == ToolRunner::Outcome::Kind::NeedsInstrument)
        Message(outcome.message);
}

template <class ToolWindow> void StudioWindow::ShowToolWindow() {
    ManagedInstrument* instrument = m_sensors->At(SelectedRow());
    if (!instrument)
        return;
    ToolWindow* window = nullptr;
    for (ToolWindow* open : findChildren<ToolWindow*>(Qt::FindDirectChildrenOnly)) {
        if (open->Instrument() == instrument)
            window = open;
    }
    if (!window)
        window = new ToolWindow(*m_sensors, *instrument, this);
    window->show();
    window->raise();
    window->activateWindow();
}

void StudioWindow::ShowSettings() {
    SettingsDialog dialog(m_registry, this);
    if (dialog.exec() == QDialog::Accepted)
        ApplySettings();
}

void StudioWindow::ApplySettings() {
    m_sensors->SetAlarmSettings(StudioSettings::ReadAlarmLimits(m_registry),
                                StudioSettings::ReadAlarmInterval(m_registry));
    RestartTimer();
}

void StudioWindow::SaveInstruments() {
    if (!m_store.Save(m_sensors->SavedConfigs()))
        m_log->Append(
            tr("The instruments could not be saved to %1.").arg(QString::fromStdString(m_registry.Path())));
}

void StudioWindow::Message(const QString& text) {
    Prompt().Message(text.toStdWString(), kWindowTitle.toStdWString(), PromptIcon::Information, this);
}

void StudioWindow::ShowAbout() {
    QStringList types;
    for (ISensorInfo* type : m_sensors->SensorTypes())
        types << QStringLiteral("%1 (%2)").arg(QString::fromStdWString(type->DisplayName()),
                                               QString::fromStdWString(type->ShortName()));
    QMessageBox::about(
        this, tr("About VEXA Studio"),
        tr("<h3>VEXA Studio %1</h3><p>Operates VEXARON field-portable GC/MS instruments from the PC "
           "through the sensor modules in its plug-in folder.</p><p>Plug-in folder: %2<br>Sensor "
           "types: %3</p><p>Built with Qt %4, running on Qt %5%6.<br>Licensed under the Apache "
           "License 2.0.</p>")
            .arg(QApplication::applicationVersion(),
                 QDir::toNativeSeparators(m_sensors->Plugins().Folder()).toHtmlEscaped(),
                 types.isEmpty() ? tr("none") : types.join(QStringLiteral(", ")).toHtmlEscaped(),
                 QStringLiteral(QT_VERSION_STR), QString::fromLatin1(qVersion()),
                 kVexaRevision[0] ? tr("; revision %1").arg(QString::fromLatin1(kVexaRevision)) : QString()));
}

void StudioWindow::closeEvent(QCloseEvent* event) {
    SaveGeometry();
    m_timer.stop();
    QMainWindow::closeEvent(event);
}
