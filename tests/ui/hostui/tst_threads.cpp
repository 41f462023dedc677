// SPDX-License-Identifier: Apache-2.0
// What crosses threads or processes: sensor notifications posted to a window, the UI thread's pumping
// wait, and the settings file shared with CPXRegistry.
#include "pumpwait.h"
#include "pxsettings.h"
#include "qtpumpdispatcher.h"
#include "registry.h"
#include "sensornotifyevent.h"
#include "wsensorobserver.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <QtTest>

#include <thread>

namespace {

// Records the sensor notifications it receives and the thread they arrive on.
class Window : public QObject {
public:
    std::vector<ISensorEvent> received;
    std::vector<QThread*> threads;

protected:
    void customEvent(QEvent* event) override {
        const ISensorEvent* notification = CSensorNotifyEvent::From(event);
        if (!notification)
            return;
        received.push_back(*notification);
        threads.push_back(QThread::currentThread());
    }
};

} // namespace

class ThreadsTest : public QObject {
    Q_OBJECT
private slots:
    void observerPostsEventsFromAnyThread();
    void observerWithoutWindowDropsEvents();
    void pumpWaitDispatchesTheUiThreadsEvents();
    void settingsShareTheRegistryFile();
};

void ThreadsTest::observerPostsEventsFromAnyThread() {
    Window window;
    WSensorObserver observer;
    observer.SetWnd(&window);
    QCOMPARE(observer.GetWnd(), static_cast<QObject*>(&window));
    std::thread worker([&] {
        observer.OnSensorEvent({kSensorEventBackup, L"/Backup/x_backup.tgz", L"VEXA-1"});
        observer.OnSensorEvent({kSensorEventOffline, L"", L"VEXA-1"});
    });
    worker.join();
    QVERIFY(window.received.empty()); // posted, not delivered on the worker
    QTRY_COMPARE(window.received.size(), size_t(2));
    QCOMPARE(window.received[0].code, uint32_t(kSensorEventBackup));
    QCOMPARE(window.received[0].text, std::wstring(L"/Backup/x_backup.tgz"));
    QCOMPARE(window.received[0].sensorName, std::wstring(L"VEXA-1"));
    QCOMPARE(window.received[1].code, uint32_t(kSensorEventOffline));
    QCOMPARE(window.threads[0], QThread::currentThread());
}

void ThreadsTest::observerWithoutWindowDropsEvents() {
    WSensorObserver observer;
    observer.OnSensorEvent({kSensorEventOnline, L"", L""}); // no window: nothing to do, no crash
    {
        auto window = std::make_unique<Window>();
        observer.SetWnd(window.get());
        observer.OnSensorEvent({kSensorEventOnline, L"", L""});
    } // the window goes with the event still queued
    QCOMPARE(observer.GetWnd(), static_cast<QObject*>(nullptr));
    QCoreApplication::processEvents();
}

void ThreadsTest::pumpWaitDispatchesTheUiThreadsEvents() {
    InstallQtPumpDispatcher();
    InstallQtPumpDispatcher(); // once is enough; again does no harm
    QVERIFY(dynamic_cast<QtPumpDispatcher*>(ThreadPumpDispatcher()));

    // A timer of the UI thread fires while the thread sits in a pumping wait.
    bool fired = false;
    QTimer::singleShot(50, [&] { fired = true; });
    PumpWait(600);
    QVERIFY(fired);

    // An event posted from another thread ends a long wait early and is dispatched by it.
    Window window;
    WSensorObserver observer;
    observer.SetWnd(&window);
    std::thread poster([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        observer.OnSensorEvent({kSensorEventOnline, L"", L""});
    });
    QtPumpDispatcher dispatcher;
    QElapsedTimer clock;
    clock.start();
    while (window.received.empty() && clock.elapsed() < 5000)
        dispatcher.WaitForEvents(5000);
    poster.join();
    QCOMPARE(window.received.size(), size_t(1));
    QVERIFY2(clock.elapsed() < 4000, qPrintable(QString::number(clock.elapsed())));

    // A bounded wait with nothing to do returns after about its time.
    clock.restart();
    dispatcher.WaitForEvents(100);
    dispatcher.DispatchPending();
    QVERIFY(clock.elapsed() < 3000);
    SetThreadPumpDispatcher(nullptr);
}

void ThreadsTest::settingsShareTheRegistryFile() {
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    const QString path = folder.filePath(QStringLiteral("vexa.ini"));
    {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[Tune]\nRemoveReportDays=30\nMarginUnit=mm\n[Access]\nLevels=0,1\n");
    }
    CPXSettings settings(path);
    QCOMPARE(settings.GetInt(L"Tune", L"RemoveReportDays", 0), 30);
    QCOMPARE(settings.GetString(L"Tune", L"MarginUnit"), std::wstring(L"mm"));
    QCOMPARE(settings.GetString(L"Access", L"Levels"), std::wstring(L"0,1"));
    QCOMPARE(settings.GetString(L"Tune", L"Missing", L"fallback"), std::wstring(L"fallback"));
    QCOMPARE(settings.GetInt(L"Tune", L"MarginUnit", -1), -1); // not a number

    // What one side writes the other reads, with texts that need quoting.
    QVERIFY(settings.SetInt(L"Tune", L"MarginTop", 15));
    QVERIFY(settings.SetString(L"NIOSH", L"Path", L"/opt/niosh, v2/db; main"));
    CPXRegistry registry(path.toStdString());
    QCOMPARE(registry.GetInt(L"Tune", L"MarginTop", 0), 15);
    QCOMPARE(registry.GetString(L"NIOSH", L"Path", L""), std::wstring(L"/opt/niosh, v2/db; main"));
    QCOMPARE(registry.GetInt(L"Tune", L"RemoveReportDays", 0), 30);
    QVERIFY(registry.SetString(L"Tune", L"MarginUnit", L"in, inches"));
    QCOMPARE(settings.GetString(L"Tune", L"MarginUnit"), std::wstring(L"in, inches"));
    QVERIFY(settings.Remove(L"Tune", L"MarginTop"));
    QVERIFY(!settings.Contains(L"Tune", L"MarginTop"));
}

QTEST_MAIN(ThreadsTest)
#include "tst_threads.moc"
