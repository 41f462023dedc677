// SPDX-License-Identifier: Apache-2.0
// Data Review on a 30-minute full-scan run (3,600 scans of 461 m/z by default, about 13 MB): the time
// to open it and show its TIC, a redraw while zooming and panning, a spectrum on click, an average of
// 100 scans, an extracted-ion trace over the whole run, and the window's memory against the file's size.
// Usage: bench_datareview [scans] [masses]
#include "chromatogramview.h"
#include "datareviewwindow.h"
#include "runreviewpage.h"
#include "tempdir.h"
#include "text.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <vector>

#include <unistd.h>

namespace {

long ResidentKiB() {
    std::ifstream statm("/proc/self/statm");
    long size = 0, resident = 0;
    statm >> size >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

double MedianMs(int runs, const std::function<void(int)>& work) {
    std::vector<double> ms;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work(i);
        ms.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(ms.begin(), ms.end());
    return ms[ms.size() / 2];
}

// Peaks every 40 s on a baseline with bleed and noise, every scan a full scan of `masses` m/z from 40.
VexaRun SyntheticRun(int scans, int masses) {
    VexaRun run;
    run.SetSampleName("Bench mixture");
    run.SetParameters({{L"MASSLOW", L"40"}, {L"MASSHIGH", std::to_wstring(40 + masses - 1)}});
    run.Reserve(scans, static_cast<size_t>(scans) * masses);
    std::vector<float> mz(masses), intensity(masses);
    for (int m = 0; m < masses; ++m)
        mz[m] = static_cast<float>(40 + m);
    unsigned seed = 7;
    for (int scan = 0; scan < scans; ++scan) {
        const double t = scan * 0.5;
        const double peak = std::exp(-std::pow(std::fmod(t, 40.0) - 20.0, 2) / 2.0);
        for (int m = 0; m < masses; ++m) {
            seed = seed * 1103515245u + 12345u;
            const double ion = (m * 37 + static_cast<int>(t / 40.0) * 11) % 97 == 0 ? 5e4 : 0.0;
            intensity[m] = static_cast<float>(50.0 + (seed >> 20) % 40 + ion * peak);
        }
        run.AddScan(static_cast<uint32_t>(t * 1000), mz, intensity);
    }
    return run;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int scans = argc > 1 ? std::atoi(argv[1]) : 3600;
    const int masses = argc > 2 ? std::atoi(argv[2]) : 461;

    TempDir dir;
    const std::string path = dir.file("bench.vxs");
    {
        const std::string bytes = VexaDataFile::MakeFile(SyntheticRun(scans, masses));
        std::ofstream(path, std::ios::binary) << bytes;
    }
    const double fileMiB = std::ifstream(path, std::ios::binary | std::ios::ate).tellg() / 1048576.0;

    DataReviewWindow window(nullptr);
    window.resize(1400, 900);
    window.show();
    app.processEvents();
    const long before = ResidentKiB();

    QElapsedTimer timer;
    timer.start();
    if (!window.OpenFile(FromUtf8(path))) {
        std::fprintf(stderr, "%s\n", window.LastError().toUtf8().constData());
        return 1;
    }
    RunReviewPage& page = *window.CurrentPage();
    page.Chromatogram()->repaint();
    const double openMs = timer.nsecsElapsed() / 1e6;
    const long after = ResidentKiB();

    ChromatogramView& chromatogram = *page.Chromatogram();
    QImage image(chromatogram.size(), QImage::Format_RGB32);
    const double runSeconds = page.Run().RunSeconds();
    const double redrawMs = MedianMs(60, [&](int i) {
        if (i < 30)
            chromatogram.ZoomAround(runSeconds / 2, 0.9);
        else
            chromatogram.PanBy(runSeconds / 200);
        QPainter painter(&image);
        chromatogram.Render(painter, image.rect());
    });
    const double clickMs = MedianMs(50, [&](int i) { page.ShowScanAt(runSeconds * i / 50); });
    const double averageMs = MedianMs(20, [&](int i) { page.ShowRange(i * 10.0, i * 10.0 + 49.75); });
    const double traceMs = MedianMs(10, [&](int) {
        const std::vector<double> mass{91.0};
        volatile float first = page.Run().ExtractedIon(mass, 0.5)[0];
        (void)first;
    });

    std::printf("run: %d scans x %d m/z, file %.1f MiB\n", scans, masses, fileMiB);
    std::printf("open and show the TIC      %8.1f ms\n", openMs);
    std::printf("redraw zooming/panning     %8.2f ms (median)\n", redrawMs);
    std::printf("spectrum on click          %8.2f ms (median)\n", clickMs);
    std::printf("average of 100 scans       %8.2f ms (median)\n", averageMs);
    std::printf("extracted-ion trace        %8.2f ms (median, whole run)\n", traceMs);
    std::printf("window memory for the file %8.1f MiB = %.2f x the file\n", (after - before) / 1024.0,
                (after - before) / 1024.0 / fileMiB);
    return 0;
}
