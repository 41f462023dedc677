// SPDX-License-Identifier: Apache-2.0
// The user-interface thread while Manage Files copies a large file each way: the copy worker moves the
// bytes, the thread sits in the modal progress window. Reports each copy's time and the largest gap
// between two turns of the thread's event loop (a heartbeat timer every 5 ms).
// Usage: bench_copy_ui_gap [MiB]   (256 by default; VEXA_SIM names vexa-sim, else the one beside
// this program is used)
#include "explorerctrl.h"
#include "qtpumpdispatcher.h"
#include "simulatedinstrument.h"
#include "tempdir.h"
#include "vexafiledlg.h"
#include "vexasensorobject.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

void WriteRandomFile(const std::string& path, long long size) {
    std::mt19937_64 random(11);
    std::ofstream out(path, std::ios::binary);
    std::vector<uint64_t> block(16384);
    const long long blockBytes = static_cast<long long>(block.size() * 8);
    for (long long written = 0; written < size; written += blockBytes) {
        for (auto& word : block)
            word = random();
        out.write(reinterpret_cast<const char*>(block.data()), std::min(size - written, blockBytes));
    }
}

long long FileSize(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 ? info.st_size : -1;
}

bool SelectName(CPXExplorerCtrl* view, const std::wstring& name) {
    view->ClearSelection();
    for (int row = 0; row < view->GetItemCount(); ++row) {
        if (view->GetItemText(row) == name) {
            view->SelectItem(row, true);
            return true;
        }
    }
    return false;
}

// Runs one copy under a heartbeat; prints its time and the largest event-loop gap.
bool TimedCopy(const char* what, CVexaFileDlg& dialog, int pane, void (CVexaFileDlg::*copy)(),
               const std::string& target, long long size) {
    if (!SelectName(dialog.View(pane), L"big.bin")) {
        std::fprintf(stderr, "%s: big.bin is not listed\n", what);
        return false;
    }
    dialog.UpdateButtons(pane, true);
    QElapsedTimer clock;
    qint64 last = 0, longest = 0;
    QTimer heartbeat;
    QObject::connect(&heartbeat, &QTimer::timeout, [&] {
        longest = std::max(longest, clock.elapsed() - last);
        last = clock.elapsed();
    });
    heartbeat.start(5);
    clock.start();
    (dialog.*copy)();
    const double seconds = double(clock.elapsed()) / 1000.0;
    heartbeat.stop();
    if (FileSize(target) != size) {
        std::fprintf(stderr, "%s: the copy is incomplete\n", what);
        return false;
    }
    std::printf("%-22s %6.2f s  %7.1f MiB/s  largest event-loop gap %lld ms\n", what, seconds,
                double(size) / (1024.0 * 1024.0) / seconds, static_cast<long long>(longest));
    return true;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const long long mebibytes = argc > 1 ? std::atoll(argv[1]) : 256;
    if (mebibytes < 1 || mebibytes > 2047) {
        std::fprintf(stderr, "usage: bench_copy_ui_gap [MiB, 1..2047]\n");
        return 2;
    }
    if (!std::getenv("VEXA_SIM")) {
        const std::string self = argv[0];
        setenv("VEXA_SIM", (self.substr(0, self.find_last_of('/') + 1) + "vexa-sim").c_str(), 1);
    }
    TempDir home;
    setenv("VEXA_SETTINGS", home.file("settings.ini").c_str(), 1);
    setenv("VEXA_DATA_ROOT", home.createDir("data").c_str(), 1);
    setenv("VEXA_ACCESS", "0,1", 1); // copying data files between the sides is a service feature
    QApplication app(argc, argv);
    InstallQtPumpDispatcher();

    SimulatedInstrument instrument;
    TempDir pc;
    const long long size = mebibytes * 1024 * 1024;
    WriteRandomFile(instrument.file("big.bin"), size);
    instrument.start();
    if (!instrument.goOnline()) {
        std::fprintf(stderr, "the simulator does not answer on %s\n", instrument.address().c_str());
        return 1;
    }
    int status = 0;
    {
        CVexaFileDlg dialog(*instrument.sensor());
        dialog.SetLocalStartFolder(QString::fromStdString(pc.path()).toStdWString());
        dialog.resize(1000, 640);
        dialog.show();
        QApplication::processEvents();
        std::printf("%lld MiB of random bytes, Manage Files, simulator on %s\n", mebibytes,
                    instrument.address().c_str());
        if (!TimedCopy("instrument -> PC", dialog, CVexaFileDlg::kRemotePane, &CVexaFileDlg::CopyToLocal,
                       pc.file("big.bin"), size))
            status = 1;
        // Back the other way into an empty instrument folder.
        std::remove(instrument.file("big.bin").c_str());
        dialog.ShowRemoteFolder(L"/");
        dialog.RefreshLocalPane();
        if (status == 0 && !TimedCopy("PC -> instrument", dialog, CVexaFileDlg::kLocalPane,
                                      &CVexaFileDlg::CopyToRemote, instrument.file("big.bin"), size))
            status = 1;
    }
    return status;
}
