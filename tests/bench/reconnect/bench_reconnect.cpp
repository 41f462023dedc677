// SPDX-License-Identifier: Apache-2.0
// Instruments that drop off the network and come back, as the studio sees them: N simulators that all
// close every connection and refuse new ones for a while (--fault outage). Reports
// - for the first instrument: how long after its outage ended it was on line again, against the
//   back-off step it was waiting in, and how long after that an open Manage Files showed its folder;
// - for the fleet: the spread of the first retries (they must not come in step) and the largest gap
//   of the GUI thread's event loop from the first drop until every instrument is back.
// Usage: bench_reconnect [instruments] [outage ms]   (50 and 5000 by default; VEXA_SIM names
// vexa-sim, else the one beside this program is used)
#include "explorerctrl.h"
#include "managedinstrument.h"
#include "qtpumpdispatcher.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "simulator.h"
#include "tempdir.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr qint64 kOutageAfterMs = 4000;

// What one instrument went through, in ms of the bench's clock.
struct Watch {
    qint64 outageEnd = 0; // when its simulator accepts connections again
    qint64 dropped = -1;  // when the studio noticed the drop
    qint64 firstRetry = -1;
    qint64 online = -1;
    int retriesBeforeReturn = 0;
    qint64 stepAtReturn = 0; // the back-off step it waited in
};

// The instrument pane of the Manage Files dialog that is open, or null.
CPXExplorerCtrl* RemotePane() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal)
        return nullptr;
    constexpr int kRemoteListId = 16804; // the dialog template's instrument list
    for (CPXExplorerCtrl* view : modal->findChildren<CPXExplorerCtrl*>())
        if (view->property("ctrlId").toInt() == kRemoteListId)
            return view;
    return nullptr;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const int count = argc > 1 ? std::atoi(argv[1]) : 50;
    const int outageMs = argc > 2 ? std::atoi(argv[2]) : 5000;
    if (count < 1 || count > 200 || outageMs < 100 || outageMs > 120000) {
        std::fprintf(stderr, "usage: bench_reconnect [instruments, 1..200] [outage ms, 100..120000]\n");
        return 2;
    }
    if (!std::getenv("VEXA_SIM")) {
        const std::string self = argv[0];
        setenv("VEXA_SIM", (self.substr(0, self.find_last_of('/') + 1) + "vexa-sim").c_str(), 1);
    }
    QApplication app(argc, argv);
    InstallQtPumpDispatcher();
    QElapsedTimer clock;
    clock.start();

    TempDir root;
    root.createFile("Data/run1.vxs", "v");
    std::vector<std::unique_ptr<SimulatorProcess>> simulators;
    std::vector<Watch> watches(static_cast<size_t>(count));
    const std::string outage = "outage=" + std::to_string(kOutageAfterMs) + ":" + std::to_string(outageMs);
    for (int i = 0; i < count; ++i) {
        simulators.push_back(
            std::make_unique<SimulatorProcess>(root.path(), std::vector<std::string>{"--fault", outage}));
        // The simulator's clock started just before it accepted connections, which is now.
        watches[size_t(i)].outageEnd = clock.elapsed() + kOutageAfterMs + outageMs;
    }

    SensorManager manager;
    if (!manager.LoadPlugins(QStringLiteral(VEXA_PLUGIN_DIR))) {
        std::fprintf(stderr, "no sensor type: %s\n", qPrintable(manager.Plugins().Problem()));
        return 1;
    }
    for (int i = 0; i < count; ++i) {
        const QString address = QString::fromStdString(simulators[size_t(i)]->address());
        const int row =
            manager.Add({QStringLiteral("Unit-%1").arg(i), address, QStringLiteral("VEXA")}, true);
        if (!manager.GoOnline(row)) {
            std::fprintf(stderr, "%s does not go on line\n", qPrintable(address));
            return 1;
        }
    }
    QTimer alarm;
    QObject::connect(&alarm, &QTimer::timeout, &manager, &SensorManager::Tick);
    alarm.start(manager.TimerInterval());

    constexpr int kHeartbeatMs = 5;
    qint64 lastBeat = clock.elapsed(), longestGap = 0, firstDrop = -1, allBack = -1, viewShown = -1;
    bool viewWasEmpty = false;
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        if (firstDrop >= 0 && allBack < 0)
            longestGap = std::max(longestGap, now - lastBeat);
        lastBeat = now;
        bool everyoneBack = true;
        for (int i = 0; i < count; ++i) {
            ManagedInstrument* instrument = manager.At(i);
            Watch& watch = watches[size_t(i)];
            if (watch.dropped < 0 && instrument->IsReconnecting()) {
                watch.dropped = now;
                firstDrop = firstDrop < 0 ? now : firstDrop;
            }
            if (watch.dropped >= 0 && watch.firstRetry < 0 && instrument->IsReconnecting())
                watch.firstRetry = instrument->Schedule().DueAtMs() - ManagedInstrument::SteadyNowMs() + now;
            if (instrument->IsReconnecting()) {
                watch.retriesBeforeReturn = instrument->Schedule().Attempt() - 1;
                watch.stepAtReturn = ReconnectSchedule::BaseDelayMs(instrument->Schedule().Attempt());
            }
            if (watch.dropped >= 0 && watch.online < 0 &&
                instrument->GetState() == ManagedInstrument::State::Online)
                watch.online = now;
            everyoneBack = everyoneBack && watch.online >= 0;
        }
        if (firstDrop >= 0 && everyoneBack && allBack < 0)
            allBack = now;
        if (CPXExplorerCtrl* pane = RemotePane()) {
            if (watches[0].dropped >= 0 && watches[0].online < 0 && pane->GetItemCount() == 0)
                viewWasEmpty = true;
            if (viewWasEmpty && viewShown < 0 && pane->GetItemCount() > 0)
                viewShown = now;
        }
        if (allBack >= 0 && (viewShown >= 0 || now - allBack > 5000)) {
            if (QWidget* modal = QApplication::activeModalWidget())
                modal->close();
            app.quit();
        }
        if (now > kOutageAfterMs + outageMs + 90000)
            app.quit();
    });
    heartbeat.start(kHeartbeatMs);
    // Manage Files of the first instrument stays open through the outage (its modal loop runs the
    // timers); the bench ends it.
    QTimer::singleShot(500, [&] { manager.At(0)->Sensor()->ManageFiles(L"Manage Files", 0, 0); });
    app.exec();

    std::vector<qint64> firstRetries;
    qint64 worstLate = 0;
    for (const Watch& watch : watches) {
        if (watch.firstRetry >= 0)
            firstRetries.push_back(watch.firstRetry - watch.dropped);
        if (watch.online >= 0)
            worstLate = std::max(worstLate, watch.online - watch.outageEnd);
    }
    std::sort(firstRetries.begin(), firstRetries.end());
    const Watch& first = watches[0];
    std::printf("%d instruments, outage of %d ms after %lld ms\n", count, outageMs,
                static_cast<long long>(kOutageAfterMs));
    if (first.online >= 0)
        std::printf("first instrument: on line %lld ms after its outage ended, waiting in a %lld ms step "
                    "(attempt %d); Manage Files showed its folder %lld ms after that\n",
                    static_cast<long long>(first.online - first.outageEnd),
                    static_cast<long long>(first.stepAtReturn), first.retriesBeforeReturn + 1,
                    static_cast<long long>(viewShown >= 0 ? viewShown - first.online : -1));
    if (!firstRetries.empty())
        std::printf("first retries after the drop: %lld .. %lld ms (spread %lld ms over %zu instruments)\n",
                    static_cast<long long>(firstRetries.front()), static_cast<long long>(firstRetries.back()),
                    static_cast<long long>(firstRetries.back() - firstRetries.front()), firstRetries.size());
    std::printf("latest return after its outage ended: %lld ms; all back: %s\n",
                static_cast<long long>(worstLate), allBack >= 0 ? "yes" : "no");
    std::printf("largest event-loop gap of the GUI thread from the first drop to the last return: %lld ms "
                "(heartbeat every %d ms)\n",
                static_cast<long long>(longestGap), kHeartbeatMs);
    return allBack >= 0 ? 0 : 1;
}
