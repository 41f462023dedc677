// SPDX-License-Identifier: Apache-2.0
#include "runswindow.h"

#include "hostresource.h"
#include "managedinstrument.h"
#include "prompt.h"
#include "runpanel.h"
#include "runrequest.h"
#include "sensormanager.h"

#include <QDateTime>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

RunsWindow::RunsWindow(SensorManager& sensors, QWidget* parent)
    : QWidget(parent, Qt::Window), m_sensors(sensors), m_list(new QVBoxLayout),
      m_placeholder(new QLabel(tr("Nothing runs. Start a method with the Run Method tool; runs started "
                                  "elsewhere appear here by themselves."),
                               this)) {
    setObjectName(QStringLiteral("runsWindow"));
    setWindowTitle(tr("Runs - VEXA Studio"));
    m_placeholder->setWordWrap(true);
    m_placeholder->setAlignment(Qt::AlignCenter);
    auto* content = new QWidget;
    auto* contentLayout = new QVBoxLayout(content);
    contentLayout->addWidget(m_placeholder);
    contentLayout->addLayout(m_list);
    contentLayout->addStretch(1);
    auto* scroll = new QScrollArea(this);
    scroll->setWidgetResizable(true);
    scroll->setWidget(content);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
    resize(640, 260);

    connect(&sensors, &SensorManager::ticked, this, &RunsWindow::OnTicked);
    connect(&sensors, &SensorManager::instrumentRemoved, this, &RunsWindow::DropGonePanels);
}

bool RunsWindow::Run(ManagedInstrument& instrument, const QString& file) {
    const RunRequest request = RunRequest::Load(file);
    const QString name = instrument.Config().name;
    if (const QString refusal = request.Refusal(); !refusal.isEmpty()) {
        emit logMessage(refusal);
        Prompt().Message(refusal.toStdWString(), {}, PromptIcon::Warning, parentWidget());
        return false;
    }
    if (RunPanel* panel = Panel(&instrument); panel && panel->IsActive()) {
        const QString busy = tr("%1 is running %2: stop it or wait for its end first.")
                                 .arg(name, QString::fromStdWString(panel->Run().Path()));
        emit logMessage(busy);
        Prompt().Message(busy.toStdWString(), {}, PromptIcon::Information, parentWidget());
        return false;
    }
    if (Prompt().AskYesNo(request.Question(name).toStdWString(), tr("Run Method").toStdWString(),
                          parentWidget()) != IDYES) {
        emit logMessage(tr("%1 was not run on %2.").arg(request.Name(), name));
        return false;
    }
    RunPanel& panel = PanelFor(instrument);
    show();
    raise();
    return panel.Start(request);
}

RunPanel* RunsWindow::Panel(const ManagedInstrument* instrument) const {
    return m_panels.value(instrument, nullptr);
}

RunPanel& RunsWindow::PanelFor(ManagedInstrument& instrument) {
    if (RunPanel* panel = Panel(&instrument))
        return *panel;
    auto* panel = new RunPanel(instrument, this);
    m_panels.insert(&instrument, panel);
    m_list->addWidget(panel);
    connect(panel, &RunPanel::logMessage, this, &RunsWindow::logMessage);
    connect(panel, &RunPanel::reviewRequested, this, &RunsWindow::reviewRequested);
    connect(panel, &RunPanel::dismissed, this, [this, panel] { DropPanel(panel); });
    connect(&instrument, &ManagedInstrument::sensorEvent, panel, &RunPanel::OnSensorEvent);
    UpdatePlaceholder();
    return *panel;
}

void RunsWindow::OnTicked() {
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    for (int row = 0; row < m_sensors.Count(); ++row) {
        ManagedInstrument* instrument = m_sensors.At(row);
        RunPanel* panel = Panel(instrument);
        // A run started elsewhere gets a panel when it is first seen.
        if (!panel && instrument->Activity().IsRunning()) {
            panel = &PanelFor(*instrument);
            emit logMessage(tr("%1 runs %2 (started elsewhere).")
                                .arg(instrument->Config().name,
                                     QString::fromStdWString(instrument->Activity().ProcessPath())));
        }
        if (panel)
            panel->OnStatus(now);
    }
}

void RunsWindow::DropPanel(RunPanel* panel) {
    for (auto it = m_panels.begin(); it != m_panels.end(); ++it) {
        if (it.value() == panel) {
            m_panels.erase(it);
            break;
        }
    }
    panel->hide();
    panel->deleteLater();
    UpdatePlaceholder();
}

void RunsWindow::DropGonePanels() {
    QList<RunPanel*> gone;
    for (RunPanel* panel : std::as_const(m_panels)) {
        if (!panel->Instrument() || m_sensors.IndexOf(panel->Instrument()) < 0)
            gone << panel;
    }
    for (RunPanel* panel : gone)
        DropPanel(panel);
}

void RunsWindow::UpdatePlaceholder() {
    m_placeholder->setVisible(m_panels.isEmpty());
}
