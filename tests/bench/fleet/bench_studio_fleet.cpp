// SPDX-License-Identifier: Apache-2.0
// The studio's sensor manager with a fleet of instruments: N simulators on distinct loopback
// addresses, each answering every request late (a field network's latency), polled by the studio's
// alarm timer, with the fleet list (the studio's instrument list model in a table) on screen. Reports how
// often each instrument's status is refreshed (the worst instrument), the oldest status the fleet list
// showed (goal: 2 s at most), the largest gap of the GUI thread's event loop (goal: 50 ms at most), and
// the process's processor use.
// Usage: bench_studio_fleet [instruments] [reply delay ms] [seconds]   (50, 50 and 10 by default;
// VEXA_SIM names vexa-sim, else the one beside this program is used)
#include "instrumentlistmodel.h"
#include "managedinstrument.h"
#include "qtpumpdispatcher.h"
#include "sensormanager.h"
#include "sensorobject.h"
#include "simulator.h"
#include "tempdir.h"

#include <QApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QTableView>
#include <QTimer>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

double CpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           double(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

// A refresh is noticed as a new snapshot; this works whatever thread the studio polls on.
struct RefreshWatch {
    ISensorObject* sensor = nullptr;
    uint64_t serial = 0;
    qint64 last = -1;
    qint64 longest = 0;
    int refreshes = 0;

    void Check(qint64 now, bool measuring) {
        const uint64_t seen = sensor->GetDevice(L"VEXA").SnapshotSerial();
        if (seen == serial)
            return;
        serial = seen;
        if (measuring && last >= 0)
            longest = std::max(longest, now - last);
        last = now;
        refreshes += measuring ? 1 : 0;
    }
};

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const int count = argc > 1 ? std::atoi(argv[1]) : 50;
    const int delayMs = argc > 2 ? std::atoi(argv[2]) : 50;
    const int seconds = argc > 3 ? std::atoi(argv[3]) : 10;
    if (count < 1 || count > 200 || delayMs < 0 || delayMs > 5000 || seconds < 2 || seconds > 600) {
        std::fprintf(stderr,
                     "usage: bench_studio_fleet [instruments, 1..200] [delay ms] [seconds, 2..600]\n");
        return 2;
    }
    if (!std::getenv("VEXA_SIM")) {
        const std::string self = argv[0];
        setenv("VEXA_SIM", (self.substr(0, self.find_last_of('/') + 1) + "vexa-sim").c_str(), 1);
    }
    QApplication app(argc, argv);
    InstallQtPumpDispatcher();

    TempDir root;
    std::vector<std::unique_ptr<SimulatorProcess>> simulators;
    for (int i = 0; i < count; ++i)
        simulators.push_back(std::make_unique<SimulatorProcess>(
            root.path(), std::vector<std::string>{"--reply-delay", std::to_string(delayMs)}));

    SensorManager manager;
    if (!manager.LoadPlugins(QStringLiteral(VEXA_PLUGIN_DIR))) {
        std::fprintf(stderr, "no sensor type: %s\n", qPrintable(manager.Plugins().Problem()));
        return 1;
    }
    std::vector<RefreshWatch> watches;
    for (int i = 0; i < count; ++i) {
        const QString address = QString::fromStdString(simulators[i]->address());
        const int row =
            manager.Add({QStringLiteral("Unit-%1").arg(i), address, QStringLiteral("VEXA")}, true);
        if (!manager.GoOnline(row)) {
            std::fprintf(stderr, "%s does not go on line\n", qPrintable(address));
            return 1;
        }
        watches.push_back({manager.At(row)->Sensor()});
    }

    InstrumentListModel fleet(manager);
    QTableView fleetView;
    fleetView.setModel(&fleet);
    fleetView.resize(1200, 800);
    fleetView.show();

    QTimer alarm;
    QObject::connect(&alarm, &QTimer::timeout, &manager, &SensorManager::Tick);
    alarm.start(manager.TimerInterval());

    // The first two seconds let every instrument poll once; the rest is measured.
    constexpr int kHeartbeatMs = 5;
    constexpr qint64 kWarmUpMs = 2000;
    QElapsedTimer clock;
    clock.start();
    qint64 lastBeat = 0, longestGap = 0, oldestShown = 0;
    double cpuAtStart = -1;
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        const qint64 now = clock.elapsed();
        const bool measuring = now >= kWarmUpMs;
        if (measuring) {
            if (cpuAtStart < 0)
                cpuAtStart = CpuSeconds();
            else
                longestGap = std::max(longestGap, now - lastBeat);
        }
        lastBeat = now;
        for (RefreshWatch& watch : watches)
            watch.Check(now, measuring);
        // What the list shows is as old as the instrument's last status it has taken in.
        if (measuring) {
            const qint64 wall = QDateTime::currentMSecsSinceEpoch();
            for (int row = 0; row < manager.Count(); ++row) {
                const qint64 taken = manager.At(row)->LastStatusTime();
                oldestShown = std::max(oldestShown, taken == 0 ? seconds * 1000LL : wall - taken);
            }
        }
        if (now >= kWarmUpMs + seconds * 1000LL)
            app.quit();
    });
    heartbeat.start(kHeartbeatMs);
    app.exec();
    const double cpu = CpuSeconds() - cpuAtStart;

    qint64 worstRefresh = 0;
    int fewest = -1;
    for (const RefreshWatch& watch : watches) {
        // An instrument never refreshed in the window counts as the whole window.
        worstRefresh = std::max(worstRefresh, watch.refreshes > 0 ? watch.longest : seconds * 1000LL);
        fewest = fewest < 0 ? watch.refreshes : std::min(fewest, watch.refreshes);
    }
    std::printf("%d instruments, replies %d ms late, %d s measured, alarm every %d ms\n", count, delayMs,
                seconds, manager.TimerInterval());
    std::printf(
        "longest time between two status refreshes of one instrument: %lld ms (fewest refreshes %d)\n",
        static_cast<long long>(worstRefresh), fewest);
    std::printf("oldest status the fleet list showed: %lld ms (goal: at most 2000 ms)\n",
                static_cast<long long>(oldestShown));
    std::printf(
        "largest event-loop gap of the GUI thread: %lld ms (heartbeat every %d ms; goal: at most 50 ms)\n",
        static_cast<long long>(longestGap), kHeartbeatMs);
    std::printf("processor use: %.2f s in %d s (%.0f%% of one core)\n", cpu, seconds, 100.0 * cpu / seconds);
    // The trends keep one point per poll: an hour's worth, from the bytes per point measured here.
    double worstHourBytes = 0;
    for (int row = 0; row < manager.Count(); ++row) {
        const StatusHistory& history = manager.At(row)->Monitor().History();
        if (history.Times().empty())
            continue;
        const double perPoint = double(history.MemoryBytes()) / double(history.Times().size());
        worstHourBytes = std::max(worstHourBytes, perPoint * 3600.0 * 1000.0 / manager.TimerInterval());
    }
    std::printf("trend memory per instrument-hour: %.0f KB (goal 2048 KB)\n", worstHourBytes / 1024.0);
    return 0;
}
