// SPDX-License-Identifier: Apache-2.0
// The copy progress window with a real worker thread: it shows the job's progress, Cancel reaches the
// job, and the window closes when the job ends.
#include "filecopydlg.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QProgressBar>
#include <QTimer>
#include <QtTest>

#include <atomic>
#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr int kCancelledExit = 7;
// Every job below gives up after this long, so a broken window cannot hang the test.
constexpr auto kJobLimit = 20s;

// Copies "blocks" until cancelled; announces two files of 1,000 bytes each.
int CopyUntilCancelled(ICopyProgress& progress) {
    progress.SetTotal(2000, 2);
    progress.SetCurrentFile(L"/Data/run1.vxs");
    progress.SetFileSize(1000);
    progress.AddBytes(250);
    const auto start = std::chrono::steady_clock::now();
    while (std::chrono::steady_clock::now() - start < kJobLimit) {
        if (progress.IsCancelled())
            return kCancelledExit;
        std::this_thread::sleep_for(5ms);
    }
    return 0;
}

} // namespace

class FileCopyTest : public QObject {
    Q_OBJECT
private slots:
    void showsProgressAndCancelReachesTheJob_data();
    void showsProgressAndCancelReachesTheJob();
    void closesWhenTheJobEnds_data();
    void closesWhenTheJobEnds();
    void progressStateAccounting();
};

void FileCopyTest::showsProgressAndCancelReachesTheJob_data() {
    QTest::addColumn<QString>("how");
    QTest::newRow("Cancel button") << "button";
    QTest::newRow("Escape") << "escape";
    QTest::newRow("close box") << "close";
}

void FileCopyTest::showsProgressAndCancelReachesTheJob() {
    QFETCH(QString, how);
    CFileCopyDlg dialog;
    bool checked = false;
    // Look once the window has polled the job at least once, then cancel.
    QTimer::singleShot(3 * CFileCopyDlg::kPollMs, &dialog, [&] {
        QVERIFY(dialog.isVisible());
        QCOMPARE(dialog.GetDlgItemText(IDC_PX_COPY_FILE_COUNT), std::wstring(L"File 1 of 2"));
        QCOMPARE(qobject_cast<QLabel*>(dialog.GetDlgItem(IDC_PX_COPY_FILE))->toolTip(),
                 QStringLiteral("/Data/run1.vxs"));
        auto* fileBar = qobject_cast<QProgressBar*>(dialog.GetDlgItem(IDC_PX_COPY_FILE_PROGRESS));
        auto* totalBar = qobject_cast<QProgressBar*>(dialog.GetDlgItem(IDC_PX_COPY_TOTAL_PROGRESS));
        QCOMPARE(fileBar->value() * 4, fileBar->maximum());
        QCOMPARE(totalBar->value() * 8, totalBar->maximum());
        QVERIFY(dialog.GetDlgItemText(IDC_PX_COPY_BYTES).find(L"250 bytes of") == 0);
        checked = true;
        if (how == "button")
            dialog.PressButton(IDCANCEL);
        else if (how == "escape")
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else
            dialog.close();
    });
    QElapsedTimer clock;
    clock.start();
    const int exitCode = dialog.Run(CopyUntilCancelled);
    QVERIFY(checked);
    QCOMPARE(exitCode, kCancelledExit);
    QVERIFY(dialog.WasCancelled());
    QVERIFY(!dialog.isVisible());
    QVERIFY(clock.elapsed() < 10000);
}

void FileCopyTest::closesWhenTheJobEnds_data() {
    QTest::addColumn<bool>("setsDone");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("job returns") << false << 1;
    QTest::newRow("job marks done, then returns") << true << 3;
}

void FileCopyTest::closesWhenTheJobEnds() {
    QFETCH(bool, setsDone);
    QFETCH(int, exitCode);
    CFileCopyDlg dialog;
    std::atomic<bool> shown{false};
    QTimer::singleShot(0, &dialog, [&] { shown = dialog.isVisible(); });
    const int result = dialog.Run([&](ICopyProgress& progress) {
        progress.SetCurrentFile(L"a.txt");
        for (int i = 0; i < 20 && !shown; ++i)
            std::this_thread::sleep_for(50ms);
        if (setsDone)
            progress.SetDone();
        std::this_thread::sleep_for(100ms);
        return exitCode;
    });
    QCOMPARE(result, exitCode);
    QVERIFY(shown);
    QVERIFY(!dialog.isVisible());
    QVERIFY(!dialog.WasCancelled());

    // A job that throws ends the window too and counts as failed; a job that is over at once still
    // gives its exit code.
    QCOMPARE(dialog.Run([](ICopyProgress&) -> int { throw std::runtime_error("disk gone"); }), 0);
    QCOMPARE(dialog.Run([](ICopyProgress&) { return 5; }), 5);
    QVERIFY(!dialog.isVisible());
}

void FileCopyTest::progressStateAccounting() {
    CCopyProgressState state;
    state.SetTotal(300, 2);
    state.SetCurrentFile(L"a");
    state.SetFileSize(100);
    state.AddBytes(60);
    state.AddBytes(-5); // nonsense counts are ignored
    state.AddBytes(40);
    state.SetCurrentFile(L"b");
    state.AddBytes(10);
    CCopyProgressState::Snapshot snapshot = state.Take();
    QCOMPARE(snapshot.currentFile, std::wstring(L"b"));
    QCOMPARE(snapshot.fileSize, int64_t(-1)); // a new file's size is unknown until it is set
    QCOMPARE(snapshot.fileBytes, int64_t(10));
    QCOMPARE(snapshot.totalBytes, int64_t(110));
    QCOMPARE(snapshot.filesStarted, 2);
    QCOMPARE(snapshot.totalFiles, 2);
    state.Cancel();
    QVERIFY(state.IsCancelled());
    state.Reset();
    QVERIFY(!state.IsCancelled());
    QCOMPARE(state.Take().totalBytes, int64_t(0));
}

QTEST_MAIN(FileCopyTest)
#include "tst_filecopy.moc"
