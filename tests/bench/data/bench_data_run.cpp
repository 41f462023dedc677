// SPDX-License-Identifier: Apache-2.0
// The data library on a 30-minute full-scan run (3,600 scans x 461 masses, about 13 MB): opening it and
// taking its TIC, a spectrum on click, a 100-scan average, an extracted-ion trace over the whole run,
// the memory the run takes, and the CLI's ANDI-MS export. Medians of ROUNDS.
// Usage: bench_data_run [rounds]   (7 by default; VEXA_CLI names vexa, else the one beside this program)
#include "processrun.h"
#include "tempdir.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

double TimeMs(const std::function<void()>& work) {
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

long ResidentKiB() {
    std::ifstream status("/proc/self/statm");
    long pages = 0;
    long resident = 0;
    status >> pages >> resident;
    return resident * (sysconf(_SC_PAGESIZE) / 1024);
}

VexaRun ThirtyMinuteRun() {
    VexaRun run;
    run.SetSampleName("bench");
    run.SetParameters({{L"SENSOR", L"/Method/Default.mth"}, {L"MASSLOW", L"40"}, {L"MASSHIGH", L"500"}});
    std::mt19937 noise(1);
    std::uniform_real_distribution<float> counts(0, 5000);
    std::vector<float> mz(461);
    std::vector<float> intensity(461);
    for (size_t i = 0; i < mz.size(); ++i)
        mz[i] = static_cast<float>(40 + i);
    for (uint32_t scan = 0; scan < 3600; ++scan) {
        for (float& value : intensity)
            value = std::round(counts(noise));
        run.AddScan(scan * 500, mz, intensity);
    }
    return run;
}

void Line(const char* what, double ms, double goal) {
    std::printf("%-34s %9.2f ms   (goal %g ms)%s\n", what, ms, goal, ms <= goal ? "" : "  OVER");
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
    TempDir dir;
    const std::string path = dir.file("Run030.vxs");
    {
        std::ofstream file(path, std::ios::binary);
        file << VexaDataFile::MakeFile(ThirtyMinuteRun());
    }
    const long fileBytes = static_cast<long>(std::ifstream(path, std::ios::ate | std::ios::binary).tellg());
    std::printf("run: 3600 scans x 461 masses, %.1f MB\n", fileBytes / 1e6);

    std::vector<double> open, click, average, trace;
    long memoryKiB = 0;
    for (int round = 0; round < rounds; ++round) {
        const long before = ResidentKiB();
        VexaRun run;
        std::string reason;
        float top = 0;
        open.push_back(TimeMs([&] {
            if (!VexaDataFile::LoadRun(std::wstring(path.begin(), path.end()), &run, &reason))
                std::fprintf(stderr, "cannot read: %s\n", reason.c_str()), std::exit(1);
            top = *std::max_element(run.Tic().begin(), run.Tic().end());
        }));
        memoryKiB = std::max(memoryKiB, ResidentKiB() - before);
        click.push_back(TimeMs([&] { run.Spectrum(run.ScanNearest(900.2 + round)); }));
        average.push_back(TimeMs([&] { run.Average(1000, 1099); }));
        const std::vector<double> masses = {91};
        trace.push_back(TimeMs([&] { run.ExtractedIon(masses, 0.5); }));
        if (top <= 0)
            std::puts("(no TIC)");
    }
    Line("open and TIC", Median(open), 200);
    Line("spectrum on click", Median(click), 5);
    Line("average of 100 scans", Median(average), 10);
    Line("extracted-ion trace, whole run", Median(trace), 20);
    std::printf("%-34s %9.1f MB   (%.2f x the file; goal 2.5 x)\n", "memory of the open run",
                memoryKiB / 1024.0, memoryKiB * 1024.0 / fileBytes);

    const char* cli = std::getenv("VEXA_CLI");
    const std::string vexa =
        cli != nullptr ? cli : std::string(argv[0]).substr(0, std::string(argv[0]).rfind('/') + 1) + "vexa";
    std::vector<double> exports;
    for (int round = 0; round < rounds; ++round) {
        ProcessResult result;
        exports.push_back(TimeMs([&] {
            result = RunProcess(
                vexa, {"--quiet", "data", "export", "--format", "andi", "-o", dir.file("run.cdf"), path});
        }));
        if (result.exitCode != 0)
            std::fprintf(stderr, "vexa data export failed: %s\n", result.err.c_str()), std::exit(1);
    }
    Line("vexa data export --format andi", Median(exports), 1000);
    return 0;
}
