// SPDX-License-Identifier: Apache-2.0
// How long closing a large instrument read part-way takes: the file is read to a fraction, then closed
// as a cancelled copy closes it, and the next transfer on the same sensor is checked. Next to it, what
// reading the rest would have cost at the rate the first part came in.
// Usage: bench_cancel_read [MiB] [percent]   (1024 and 10 by default; VEXA_SIM names vexa-sim, else the
// one beside this program is used)
#include "simulatedinstrument.h"
#include "stdiofile.h"
#include "vexasensorobject.h"
#include "vxsstdiofileimpl.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

} // namespace

int main(int argc, char** argv) {
    const long long mib = argc > 1 ? std::atoll(argv[1]) : 1024;
    const long long percent = argc > 2 ? std::atoll(argv[2]) : 10;
    if (mib <= 0 || percent <= 0 || percent >= 100) {
        std::fprintf(stderr, "usage: bench_cancel_read [MiB > 0] [percent 1..99]\n");
        return 2;
    }
    SimulatedInstrument instrument;
    const long long size = mib << 20;
    if (::truncate(instrument.tree().createFile("Data/big.bin").c_str(), size) != 0) {
        std::perror("truncate");
        return 1;
    }
    instrument.tree().createFile("Data/small.txt", "the next transfer\n");
    instrument.start({"--no-compress"});
    if (!instrument.goOnline(SimulatedInstrument::Commands::None)) {
        std::fprintf(stderr, "the sensor did not go on line to %s\n", instrument.address().c_str());
        return 1;
    }
    const VEXASensorObject* sensor = instrument.sensor();

    StdioFile file;
    if (!file.Open(instrument.remote(L"/Data/big.bin"), L"rb")) {
        std::fprintf(stderr, "open failed: %d\n", file.GetError());
        return 1;
    }
    std::vector<char> block(16384);
    const long long wanted = size / 100 * percent;
    const auto readStart = Clock::now();
    long long done = 0;
    while (done < wanted) {
        const int n = file.Read(block.data(), int(block.size()));
        if (n <= 0) {
            std::fprintf(stderr, "read failed after %lld bytes: %d\n", done, file.GetError());
            return 1;
        }
        done += n;
    }
    const double readSeconds = Seconds(readStart);
    const auto closeStart = Clock::now();
    file.Close();
    const double closeSeconds = Seconds(closeStart);

    StdioFile next;
    std::wstring text;
    const bool nextOk = next.Open(instrument.remote(L"/Data/small.txt"), L"r") && next.ReadString(text) &&
                        text == L"the next transfer" && sensor->IsOnline(true);
    const double rate = double(done) / readSeconds;
    std::printf("read %lld of %lld MiB (%lld %%) in %.2f s (%.1f MB/s)\n", done >> 20, mib, percent,
                readSeconds, rate / 1e6);
    std::printf("close after the cancel: %.3f s (of which %.3f s is the instrument's close wait)\n",
                closeSeconds, VXSStdioFileImpl::kCloseWaitMs / 1000.0);
    std::printf("reading the rest instead would take about %.1f s at this rate\n",
                double(size - done) / rate);
    std::printf("next transfer on the same sensor: %s\n", nextOk ? "correct" : "WRONG");
    next.Close();
    return nextOk ? 0 : 1;
}
