// SPDX-License-Identifier: Apache-2.0
#include "filecopydlg.h"

#include "filetext.h"
#include "ui_filecopydlg.h"

#include <QLabel>
#include <QProgressBar>

#include <thread>

namespace {

constexpr qint64 kSpeedWindowMs = 3000;

int Permille(int64_t part, int64_t whole) {
    if (whole <= 0)
        return 0;
    return static_cast<int>(std::min<int64_t>(1000, part * 1000 / whole));
}

QString FormatDuration(int64_t seconds) {
    if (seconds >= 3600)
        return QStringLiteral("%1:%2:%3")
            .arg(seconds / 3600)
            .arg(seconds / 60 % 60, 2, 10, QLatin1Char('0'))
            .arg(seconds % 60, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

CFileCopyDlg::CFileCopyDlg(QWidget* parent) : CDialog_(IDD_PX_FILECOPY, parent) {
    Ui::FileCopyDlg form;
    SetupTemplate(form);
    SetAsksUser(false);
    m_pollTimer.setInterval(kPollMs);
    connect(&m_pollTimer, &QTimer::timeout, this, &CFileCopyDlg::Poll);
}

int CFileCopyDlg::Run(std::function<int(ICopyProgress&)> job) {
    m_progress.Reset();
    m_workerFinished.store(false);
    int exitCode = 0;
    std::thread worker([&] {
        try {
            exitCode = job(m_progress);
        } catch (...) {
            exitCode = 0;
        }
        m_workerFinished.store(true);
    });
    if (!m_workerFinished.load())
        DoModal();
    worker.join();
    return exitCode;
}

bool CFileCopyDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    EnableControl(IDCANCEL, true);
    m_samples.clear();
    m_clock.start();
    ShowProgress(m_progress.Take());
    m_pollTimer.start();
    return true;
}

void CFileCopyDlg::OnCancel() {
    // The worker stops after its current block; the window waits for it so nothing is left half done.
    m_progress.Cancel();
    EnableControl(IDCANCEL, false);
    SetDlgItemText(IDC_PX_COPY_BYTES, L"Cancelling...");
}

void CFileCopyDlg::Poll() {
    const CCopyProgressState::Snapshot state = m_progress.Take();
    if (state.done || m_workerFinished.load()) {
        m_pollTimer.stop();
        EndDialog(m_progress.IsCancelled() ? IDCANCEL : IDOK);
        return;
    }
    ShowProgress(state);
}

void CFileCopyDlg::ShowProgress(const CCopyProgressState::Snapshot& state) {
    if (auto* file = qobject_cast<QLabel*>(GetDlgItem(IDC_PX_COPY_FILE))) {
        const QString name = QString::fromStdWString(state.currentFile);
        file->setText(file->fontMetrics().elidedText(name, Qt::ElideMiddle, file->width()));
        file->setToolTip(name);
    }
    if (auto* bar = qobject_cast<QProgressBar*>(GetDlgItem(IDC_PX_COPY_FILE_PROGRESS)))
        bar->setValue(Permille(state.fileBytes, state.fileSize));
    const bool totalKnown = state.totalSize > 0;
    if (auto* bar = qobject_cast<QProgressBar*>(GetDlgItem(IDC_PX_COPY_TOTAL_PROGRESS))) {
        bar->setValue(Permille(state.totalBytes, state.totalSize));
        bar->setVisible(totalKnown);
    }

    QString count;
    if (state.filesStarted > 0)
        count = state.totalFiles > 0
                    ? QStringLiteral("File %1 of %2").arg(state.filesStarted).arg(state.totalFiles)
                    : QStringLiteral("File %1").arg(state.filesStarted);
    SetDlgItemText(IDC_PX_COPY_FILE_COUNT, count.toStdWString());

    if (m_progress.IsCancelled())
        return;
    if (!state.note.empty()) {
        SetDlgItemText(IDC_PX_COPY_BYTES, state.note);
        return;
    }
    QString bytes = totalKnown
                        ? QStringLiteral("%1 of %2 copied")
                              .arg(FormatByteAmount(state.totalBytes), FormatByteAmount(state.totalSize))
                        : QStringLiteral("%1 copied").arg(FormatByteAmount(state.totalBytes));
    const double speed = Speed(state.totalBytes);
    if (speed > 0) {
        bytes += QStringLiteral(", %1/s").arg(FormatByteAmount(static_cast<int64_t>(speed)));
        const int64_t remaining =
            totalKnown ? state.totalSize - state.totalBytes : state.fileSize - state.fileBytes;
        if (remaining > 0 && (totalKnown || state.fileSize > 0))
            bytes += QStringLiteral(", about %1 left%2")
                         .arg(FormatDuration(static_cast<int64_t>(remaining / speed) + 1),
                              totalKnown ? QString() : QStringLiteral(" for this file"));
    }
    SetDlgItemText(IDC_PX_COPY_BYTES, bytes.toStdWString());
}

double CFileCopyDlg::Speed(int64_t totalBytes) {
    const qint64 now = m_clock.elapsed();
    m_samples.emplace_back(now, totalBytes);
    while (m_samples.size() > 2 && now - m_samples.front().first > kSpeedWindowMs)
        m_samples.pop_front();
    const auto& [since, bytesThen] = m_samples.front();
    if (now - since < 500)
        return -1;
    return static_cast<double>(totalBytes - bytesThen) * 1000.0 / static_cast<double>(now - since);
}
