// SPDX-License-Identifier: Apache-2.0
#pragma once
// One instrument's run: the method, elapsed / total time with a progress bar, Stop (asks first), and
// at the end the data file with Review and Fetch. Follows runs started here and runs started
// elsewhere (another workstation, the command line) alike, from the instrument's status and its
// method-ended notification. Runs a sequence's runs one after the other. GUI thread only.
#include "methodrun.h"
#include "sequenceplan.h"

#include <QFrame>
#include <QPointer>

#include <optional>

class ManagedInstrument;
class QLabel;
class QProgressBar;
class QPushButton;
class RunRequest;

class RunPanel : public QFrame {
    Q_OBJECT
public:
    explicit RunPanel(ManagedInstrument& instrument, QWidget* parent = nullptr);

    ManagedInstrument* Instrument() const { return m_instrument; }
    const MethodRun& Run() const { return m_run; }
    // A sequence is running or waiting between its runs.
    bool InSequence() const { return m_plan.has_value(); }
    const SequencePlan* Plan() const { return m_plan ? &*m_plan : nullptr; }
    // A run, or a sequence between runs, that Stop would end.
    bool IsActive() const { return m_run.IsRunning() || InSequence(); }

    // Starts what the operator chose (the question has been answered). False, with the reason logged
    // and shown, when the instrument refused.
    bool Start(const RunRequest& request);
    // The instrument's new status and notifications (the window feeds every panel).
    void OnStatus(qint64 nowMs);
    void OnSensorEvent(quint32 code, const QString& text);

    // The full name of the data file the last run wrote ("@HOST:/Data/Run008.vxs"); empty when none.
    QString DataFile() const;
    // The workstation file Fetch copies to.
    QString FetchDestination() const;

public slots:
    // Asks, then ends the running method (`method stop`) and the rest of a sequence.
    void Stop();
    void Review();
    // Copies the data file to the workstation's data folder, with progress.
    void Fetch();

signals:
    void logMessage(const QString& line);
    void reviewRequested(const QString& file);
    // The panel has nothing more to show and may go.
    void dismissed();

private:
    bool StartMethod(const QString& path, int runSeconds);
    // Starts the sequence's next run when the last one has ended; ends the sequence after its last run.
    void ContinueSequence();
    void AfterRunEnded();
    void Refresh();
    QString Name() const;
    QString Tr(const char* text) const;
    static qint64 Now();

    QPointer<ManagedInstrument> m_instrument;
    MethodRun m_run;
    MethodRun::Phase m_shownPhase = MethodRun::Phase::Idle;
    std::optional<SequencePlan> m_plan;
    QString m_sequenceName;
    SequencePlan::Run m_sequenceRun;
    QString m_fetched; // the workstation copy of the last data file

    QLabel* m_title;
    QLabel* m_method;
    QLabel* m_time;
    QProgressBar* m_progress;
    QLabel* m_result;
    QPushButton* m_stop;
    QPushButton* m_review;
    QPushButton* m_fetch;
    QPushButton* m_close;
};
