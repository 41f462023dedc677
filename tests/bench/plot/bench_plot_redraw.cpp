// SPDX-License-Identifier: Apache-2.0
// Redraw time of the plot canvas: a chromatogram trace of N points (1.7 million by default, the points
// of a 30-minute full-scan run) drawn into an image of the plot's size, whole and while zooming and
// panning, and a 461-bar spectrum. Prints the median and worst wall time of a frame, and the median
// processor time of the drawing thread (what the frame costs when the machine is shared).
// Usage: bench_plot_redraw [points] [width]
#include "chromatogramview.h"
#include "spectrumview.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <vector>

namespace {

double ThreadCpuMs() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return now.tv_sec * 1e3 + now.tv_nsec / 1e6;
}

struct Frames {
    std::vector<double> ms;
    std::vector<double> cpuMs;
    void Print(const char* what) {
        std::sort(ms.begin(), ms.end());
        std::sort(cpuMs.begin(), cpuMs.end());
        std::printf("%-28s frames %3zu  wall median %6.2f ms, worst %6.2f ms  cpu median %6.2f ms\n", what,
                    ms.size(), ms[ms.size() / 2], ms.back(), cpuMs[cpuMs.size() / 2]);
    }
};

Frames Time(PlotCanvas& plot, QImage& image, int frames, const std::function<void(int)>& step) {
    Frames out;
    for (int i = 0; i < frames; ++i) {
        step(i);
        QElapsedTimer timer;
        timer.start();
        const double cpu = ThreadCpuMs();
        QPainter painter(&image);
        plot.Render(painter, image.rect());
        painter.end();
        out.cpuMs.push_back(ThreadCpuMs() - cpu);
        out.ms.push_back(timer.nsecsElapsed() / 1e6);
    }
    return out;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const std::size_t points = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 1'700'000;
    const int width = argc > 2 ? std::atoi(argv[2]) : 1400;

    // Retention times over 30 minutes with peaks on a noisy baseline.
    PlotTrace trace{"TIC", Qt::black, std::vector<double>(points), std::vector<double>(points)};
    unsigned seed = 12345;
    for (std::size_t i = 0; i < points; ++i) {
        const double t = 1800.0 * i / points;
        seed = seed * 1103515245u + 12345u;
        const double peak = 1e6 * std::exp(-std::pow(std::fmod(t, 120.0) - 60.0, 2) / 8.0);
        trace.x[i] = t;
        trace.y[i] = 2e4 + peak + (seed >> 16) % 5000;
    }
    ChromatogramView chromatogram;
    chromatogram.resize(width, 400);
    chromatogram.AddTrace(std::move(trace));
    chromatogram.SetMarker(600.0);
    QImage image(width, 400, QImage::Format_RGB32);

    std::printf("chromatogram of %zu points, %d px wide\n", points, width);
    Time(chromatogram, image, 50, [&](int) { chromatogram.ResetView(); }).Print("whole run");
    Time(chromatogram, image, 60, [&](int i) {
        const double half = 900.0 * std::pow(0.85, i);
        chromatogram.ZoomTo(900.0 - half, 900.0 + half);
    }).Print("zooming in");
    chromatogram.ZoomTo(0, 300);
    Time(chromatogram, image, 60, [&](int) { chromatogram.PanBy(25.0); }).Print("panning a 5-minute window");

    SpectrumView spectrum;
    spectrum.resize(width, 300);
    std::vector<double> mz, intensity;
    for (int m = 40; m <= 500; ++m) {
        mz.push_back(m);
        seed = seed * 1103515245u + 12345u;
        intensity.push_back((seed >> 16) % 10000);
    }
    spectrum.SetSpectrum(mz, intensity, "Scan 1");
    QImage spectrumImage(width, 300, QImage::Format_RGB32);
    Time(spectrum, spectrumImage, 50, [&](int) {}).Print("spectrum of 461 m/z");
    return 0;
}
