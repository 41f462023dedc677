// SPDX-License-Identifier: Apache-2.0
#include "runpanel.h"

#include "datafilecopy.h"
#include "hostresource.h"
#include "instrumentactivity.h"
#include "managedinstrument.h"
#include "prompt.h"
#include "remotename.h"
#include "runrequest.h"
#include "sensorevent.h"
#include "sensorobject.h"
#include "vexadevice.h"
#include "winsockerror.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace {
// How often a running panel moves its clock between two statuses.
constexpr int kClockMs = 250;

QString Seconds(int seconds) {
    return QString::fromStdWString(FormatRunTime(seconds));
}

QString FileName(const QString& path) {
    return path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
}
} // namespace

RunPanel::RunPanel(ManagedInstrument& instrument, QWidget* parent)
    : QFrame(parent), m_instrument(&instrument), m_title(new QLabel(this)), m_method(new QLabel(this)),
      m_time(new QLabel(this)), m_progress(new QProgressBar(this)), m_result(new QLabel(this)),
      m_stop(new QPushButton(Tr("Stop..."), this)), m_review(new QPushButton(Tr("Review"), this)),
      m_fetch(new QPushButton(Tr("Fetch"), this)), m_close(new QPushButton(Tr("Close"), this)) {
    setObjectName(QStringLiteral("runPanel"));
    setFrameShape(QFrame::StyledPanel);
    m_title->setObjectName(QStringLiteral("runTitle"));
    m_method->setObjectName(QStringLiteral("runMethod"));
    m_time->setObjectName(QStringLiteral("runTime"));
    m_progress->setObjectName(QStringLiteral("runProgress"));
    m_result->setObjectName(QStringLiteral("runResult"));
    m_stop->setObjectName(QStringLiteral("runStop"));
    m_review->setObjectName(QStringLiteral("runReview"));
    m_fetch->setObjectName(QStringLiteral("runFetch"));
    m_close->setObjectName(QStringLiteral("runClose"));
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_result->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_result->setWordWrap(true);
    m_progress->setRange(0, 100);
    m_time->setMinimumWidth(m_time->fontMetrics().horizontalAdvance(QStringLiteral("00:00:00 / 00:00:00")));

    connect(m_stop, &QPushButton::clicked, this, &RunPanel::Stop);
    connect(m_review, &QPushButton::clicked, this, &RunPanel::Review);
    connect(m_fetch, &QPushButton::clicked, this, &RunPanel::Fetch);
    connect(m_close, &QPushButton::clicked, this, [this] {
        m_run.Clear();
        emit dismissed();
    });
    auto* clock = new QTimer(this);
    connect(clock, &QTimer::timeout, this, [this] {
        if (m_run.IsRunning())
            Refresh();
    });
    clock->start(kClockMs);

    auto* layout = new QGridLayout(this);
    layout->addWidget(m_title, 0, 0, 1, 3);
    layout->addWidget(m_method, 1, 0);
    layout->addWidget(m_progress, 1, 1);
    layout->addWidget(m_time, 1, 2);
    layout->addWidget(m_stop, 1, 3);
    auto* resultRow = new QHBoxLayout;
    resultRow->addWidget(m_result, 1);
    resultRow->addWidget(m_review);
    resultRow->addWidget(m_fetch);
    resultRow->addWidget(m_close);
    layout->addLayout(resultRow, 2, 0, 1, 4);
    layout->setColumnStretch(1, 1);
    Refresh();
}

QString RunPanel::Tr(const char* text) const {
    return QCoreApplication::translate("RunPanel", text);
}

qint64 RunPanel::Now() {
    return QDateTime::currentMSecsSinceEpoch();
}

QString RunPanel::Name() const {
    return m_instrument ? m_instrument->Config().name : QString();
}

bool RunPanel::Start(const RunRequest& request) {
    if (request.IsSequence()) {
        m_plan = request.Plan();
        m_sequenceName = request.Name();
        emit logMessage(
            Tr("%1: sequence %2 started, %3 run(s).").arg(Name(), m_sequenceName).arg(m_plan->TotalRuns()));
        ContinueSequence();
        return m_run.IsRunning();
    }
    std::wstring path;
    SplitRemoteName(request.File().toStdWString(), nullptr, &path);
    return StartMethod(QString::fromStdWString(path), request.RunSeconds());
}

bool RunPanel::StartMethod(const QString& path, int runSeconds) {
    ISensorObject* sensor = m_instrument ? m_instrument->Sensor() : nullptr;
    VexaDevice device;
    if (sensor)
        device = sensor->GetDevice(L"VEXA");
    if (!sensor || !device.runMethod(L"\"" + path.toStdWString() + L"\"")) {
        const int error = sensor ? device.getLastError() : kWsaNotConn;
        QString reason = QString::fromStdWString(DescribeError(error));
        if (!device.getLastErrorText().empty())
            reason += QStringLiteral(" - ") + QString::fromStdWString(device.getLastErrorText());
        const QString message = Tr("%1 did not start %2: error %3.").arg(Name(), path, reason);
        emit logMessage(message);
        Prompt().Message(message.toStdWString(), {}, PromptIcon::Warning, this);
        Refresh();
        return false;
    }
    m_run.Started(path.toStdWString(), runSeconds, Now());
    m_fetched.clear();
    emit logMessage(Tr("%1 runs %2.").arg(Name(), path));
    Refresh();
    return true;
}

void RunPanel::ContinueSequence() {
    if (!m_plan || m_run.IsRunning())
        return;
    if (!m_plan->HasNext()) {
        emit logMessage(m_plan->IsCancelled() ? Tr("%1: sequence %2 stopped after %3 of %4 run(s).")
                                                    .arg(Name(), m_sequenceName)
                                                    .arg(m_plan->RunsStarted())
                                                    .arg(m_plan->TotalRuns())
                                              : Tr("%1: sequence %2 finished, %3 run(s).")
                                                    .arg(Name(), m_sequenceName)
                                                    .arg(m_plan->TotalRuns()));
        m_plan.reset();
        Refresh();
        return;
    }
    m_sequenceRun = m_plan->Next();
    // A sequence on the instrument names its own methods by their instrument paths.
    std::wstring path = m_sequenceRun.method;
    if (!SplitRemoteName(m_sequenceRun.method, nullptr, &path) && !path.starts_with(L'/')) {
        const QString message =
            Tr("%1: sequence %2 stopped: %3 is not on the instrument.")
                .arg(Name(), m_sequenceName, QString::fromStdWString(m_sequenceRun.method));
        emit logMessage(message);
        Prompt().Message(message.toStdWString(), {}, PromptIcon::Warning, this);
        m_plan.reset();
        Refresh();
        return;
    }
    if (!StartMethod(QString::fromStdWString(path), -1)) {
        m_plan->Cancel();
        ContinueSequence();
    }
}

void RunPanel::OnStatus(qint64 nowMs) {
    if (!m_instrument)
        return;
    if (const qint64 statusTime = m_instrument->LastStatusTime(); statusTime != 0 && statusTime <= nowMs)
        m_run.Observe(m_instrument->Activity(), statusTime);
    AfterRunEnded();
}

void RunPanel::OnSensorEvent(quint32 code, const QString& text) {
    if (code != kSensorEventMethodEnded)
        return;
    m_run.Ended(text.toStdWString(), Now());
    AfterRunEnded();
}

void RunPanel::AfterRunEnded() {
    if (m_run.HasEnded()) {
        if (m_run.GetPhase() == MethodRun::Phase::Stopped && m_plan)
            m_plan->Cancel();
        // The end's notification carries the data file; wait for it a moment before the next run.
        if (m_plan && (m_run.Notified() || Now() - m_run.ChangedAt() >= MethodRun::kStaleMs))
            ContinueSequence();
    }
    Refresh();
}

QString RunPanel::DataFile() const {
    if (!m_instrument || m_run.DataFile().empty())
        return {};
    return QStringLiteral("@%1:%2").arg(m_instrument->Config().address,
                                        QString::fromStdWString(m_run.DataFile()));
}

QString RunPanel::FetchDestination() const {
    ISensorObject* sensor = m_instrument ? m_instrument->Sensor() : nullptr;
    if (!sensor || m_run.DataFile().empty())
        return {};
    const QString folder = QString::fromStdWString(sensor->GetSensorDir(L"Data", true));
    return QDir(folder).filePath(FileName(QString::fromStdWString(m_run.DataFile())));
}

void RunPanel::Stop() {
    if (!IsActive() || !m_instrument)
        return;
    const QString method = FileName(QString::fromStdWString(m_run.Path()));
    const int left = m_plan ? m_plan->TotalRuns() - m_plan->RunsStarted() : 0;
    QString question = m_run.IsRunning()
                           ? Tr("Stop %1 on %2? The data acquired so far is kept.").arg(method, Name())
                           : Tr("Stop the sequence %1 on %2?").arg(m_sequenceName, Name());
    if (left > 0)
        question += QStringLiteral(" ") +
                    QCoreApplication::translate(
                        "RunPanel", "%n further run(s) of the sequence will not start.", nullptr, left);
    if (Prompt().AskYesNo(question.toStdWString(), Tr("Stop").toStdWString(), this) != IDYES)
        return;
    if (m_plan)
        m_plan->Cancel();
    if (!m_run.IsRunning()) {
        ContinueSequence();
        return;
    }
    ISensorObject* sensor = m_instrument->Sensor();
    VexaDevice device;
    if (sensor)
        device = sensor->GetDevice(L"VEXA");
    if (!sensor || !device.stopMethod()) {
        const QString message = Tr("%1 did not stop %2: error %3.")
                                    .arg(Name(), method,
                                         QString::fromStdWString(DescribeError(sensor ? device.getLastError()
                                                                                      : int(kWsaNotConn))));
        emit logMessage(message);
        Prompt().Message(message.toStdWString(), {}, PromptIcon::Warning, this);
        return;
    }
    emit logMessage(Tr("%1: stopping %2.").arg(Name(), method));
    Refresh();
}

void RunPanel::Review() {
    if (!DataFile().isEmpty())
        emit reviewRequested(m_fetched.isEmpty() ? DataFile() : m_fetched);
}

void RunPanel::Fetch() {
    const QString source = DataFile();
    const QString destination = FetchDestination();
    ISensorObject* sensor = m_instrument ? m_instrument->Sensor() : nullptr;
    if (source.isEmpty() || destination.isEmpty() || !sensor)
        return;
    if (QFileInfo::exists(destination) && Prompt().AskYesNo(Tr("%1 is already on this PC. Replace it?")
                                                                .arg(QDir::toNativeSeparators(destination))
                                                                .toStdWString(),
                                                            Tr("Fetch").toStdWString(), this) != IDYES)
        return;
    QString error;
    const QString fetched =
        QString::fromStdWString(CopyToSensorDataFolder(source.toStdWString(), *sensor, this, &error));
    if (fetched.isEmpty()) {
        // Empty: the operator cancelled.
        if (!error.isEmpty()) {
            emit logMessage(error);
            Prompt().Message(error.toStdWString(), {}, PromptIcon::Warning, this);
        }
        return;
    }
    m_fetched = fetched;
    emit logMessage(Tr("Fetched %1 to %2.").arg(source, QDir::toNativeSeparators(fetched)));
    Refresh();
}

void RunPanel::Refresh() {
    const qint64 now = Now();
    const MethodRun::Phase phase = m_run.GetPhase();
    const QString method = FileName(QString::fromStdWString(m_run.Path()));
    QString title = Name();
    if (m_plan || (phase != MethodRun::Phase::Idle && !m_sequenceName.isEmpty() && m_sequenceRun.repeats > 0))
        title += Tr(" - sequence %1, run %2 of %3")
                     .arg(m_sequenceName)
                     .arg(m_plan ? m_plan->RunsStarted() : m_sequenceRun.repeat)
                     .arg(m_plan ? m_plan->TotalRuns() : m_sequenceRun.repeats);
    else if (phase != MethodRun::Phase::Idle && !m_run.StartedHere())
        title += Tr(" - started elsewhere");
    m_title->setText(title);
    m_method->setText(method.isEmpty() ? Tr("No run") : method);
    m_method->setToolTip(QString::fromStdWString(m_run.Path()));

    const int elapsed = m_run.ElapsedAt(now);
    const int total = m_run.Total();
    m_time->setText(elapsed < 0 ? QString()
                    : total > 0 ? Tr("%1 / %2").arg(Seconds(elapsed), Seconds(total))
                                : Seconds(elapsed));
    if (total > 0 && elapsed >= 0) {
        m_progress->setRange(0, total);
        m_progress->setValue(qMin(elapsed, total));
    } else {
        // Busy indicator while the length is unknown.
        m_progress->setRange(0, m_run.IsRunning() ? 0 : 1);
        m_progress->setValue(0);
    }

    const QString file = FileName(QString::fromStdWString(m_run.DataFile()));
    switch (phase) {
    case MethodRun::Phase::Idle:
        m_result->setText(m_plan ? Tr("Waiting for the next run ...") : QString());
        break;
    case MethodRun::Phase::Running:
        m_result->setText(Tr("Running ..."));
        break;
    case MethodRun::Phase::Finished:
        m_result->setText(file.isEmpty() ? Tr("Finished.") : Tr("Finished: %1").arg(file));
        break;
    case MethodRun::Phase::Stopped:
        m_result->setText(file.isEmpty() ? Tr("Stopped.")
                                         : Tr("Stopped: %1 (the data up to the stop)").arg(file));
        break;
    }
    if (!m_fetched.isEmpty())
        m_result->setText(m_result->text() + QStringLiteral("  ") +
                          Tr("(on this PC: %1)").arg(QDir::toNativeSeparators(m_fetched)));
    m_stop->setEnabled(IsActive());
    m_review->setEnabled(!file.isEmpty());
    m_fetch->setEnabled(!file.isEmpty());
    m_close->setEnabled(!IsActive());
}
