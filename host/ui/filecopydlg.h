// SPDX-License-Identifier: Apache-2.0
#pragma once
// Modal progress of a copy job that runs on a worker thread: the current file, its progress, the
// total progress when the job announced its size, bytes copied, speed and time left. Cancel (and
// Escape, and the close box) sets the job's cancel flag; the window closes when the job ends.
//
//     CFileCopyDlg progress(this);
//     const int exitCode = progress.Run([&](ICopyProgress& p) { return job.Run(p); });
#include "copyprogressstate.h"
#include "dialog.h"

#include <QElapsedTimer>
#include <QTimer>

#include <atomic>
#include <deque>
#include <functional>

class CFileCopyDlg : public CDialog_ {
    Q_OBJECT
public:
    // How often the window reads the job's progress.
    static constexpr int kPollMs = 100;

    explicit CFileCopyDlg(QWidget* parent = nullptr);

    // Starts `job` on a new thread with this window as its progress, shows the window modally until
    // the job returns (or calls SetDone), joins the thread and returns the job's exit code. A job that
    // throws counts as failed (exit code 0).
    int Run(std::function<int(ICopyProgress&)> job);

    // The progress object the job reports to.
    CCopyProgressState& Progress() { return m_progress; }
    bool WasCancelled() const { return m_progress.IsCancelled(); }

protected:
    bool OnInitDialog() override;
    void OnCancel() override;

private:
    void Poll();
    void ShowProgress(const CCopyProgressState::Snapshot& state);
    // Bytes per second over the last few seconds; negative until there is enough to say.
    double Speed(int64_t totalBytes);

    CCopyProgressState m_progress;
    std::atomic<bool> m_workerFinished{false};
    QTimer m_pollTimer;
    QElapsedTimer m_clock;
    std::deque<std::pair<qint64, int64_t>> m_samples; // (ms since start, bytes copied)
};
