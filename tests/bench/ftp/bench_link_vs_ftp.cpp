// SPDX-License-Identifier: Apache-2.0
// Throughput of one remote name over both back ends in the same run: a simulator (link, port 4840) and
// a real FTP server (port 21) on the same loopback address, 64 MiB by default, put then get, through
// the host's StdioFile in the copy worker's 16 KiB blocks. The link is used while the sensor is on
// line; FTP once it is off line. Needs root for port 21, python3-pyftpdlib and VEXA_SIM (the built
// vexa-sim; defaults to the binary beside this one).
// Usage: bench_link_vs_ftp [MiB]
#include "ftpserverprocess.h"
#include "simulator.h"
#include "tempdir.h"

#include "sensorinfo.h"
#include "stdiofile.h"
#include "vexasensorobject.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <unistd.h>

namespace {

constexpr int kBlock = 16384;

struct Result {
    bool ok = false;
    double seconds = 0;
    std::wstring transport;
};

Result Put(const std::wstring& name, const std::string& data) {
    Result r;
    auto start = std::chrono::steady_clock::now();
    StdioFile file;
    if (!file.Open(name, L"wb"))
        return r;
    r.transport = file.TransportName();
    for (size_t at = 0; at < data.size(); at += kBlock) {
        int n = int(std::min<size_t>(kBlock, data.size() - at));
        if (file.Write(data.data() + at, n) != n)
            return r;
    }
    r.ok = file.Close();
    r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return r;
}

Result Get(const std::wstring& name, size_t expected) {
    Result r;
    auto start = std::chrono::steady_clock::now();
    StdioFile file;
    if (!file.Open(name, L"rb"))
        return r;
    r.transport = file.TransportName();
    std::vector<char> block(kBlock);
    size_t total = 0;
    int n;
    while ((n = file.Read(block.data(), kBlock)) > 0)
        total += size_t(n);
    file.Close();
    r.ok = total == expected;
    r.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return r;
}

void Report(const char* what, const Result& r, size_t bytes) {
    if (!r.ok) {
        std::printf("%-10s failed\n", what);
        return;
    }
    std::printf("%-10s %-5ls %7.2f s  %8.1f MB/s\n", what, r.transport.c_str(), r.seconds,
                double(bytes) / r.seconds / 1e6);
}

} // namespace

int main(int argc, char** argv) {
    const size_t mebibytes = argc > 1 ? size_t(std::atol(argv[1])) : 64;
    if (!std::getenv("VEXA_SIM")) {
        char self[4096];
        ssize_t n = readlink("/proc/self/exe", self, sizeof self - 1);
        std::string dir = n > 0 ? std::string(self, size_t(n)) : std::string();
        dir = dir.substr(0, dir.rfind('/'));
        setenv("VEXA_SIM", (dir + "/vexa-sim").c_str(), 1);
    }
    for (const char* proxy : {"ftp_proxy", "FTP_PROXY", "all_proxy", "ALL_PROXY"})
        unsetenv(proxy);

    // Incompressible bytes, so the simulator's compression does not decide the link's figure.
    std::string data(mebibytes * 1024 * 1024, '\0');
    std::mt19937_64 random(7);
    for (size_t i = 0; i + 8 <= data.size(); i += 8) {
        uint64_t v = random();
        std::memcpy(&data[i], &v, 8);
    }

    TempDir instrument, ftpHome;
    SimulatorProcess sim(instrument.path(), {"--no-compress"});
    FtpServerProcess ftp;
    std::string whyNot;
    bool skippable = false;
    if (!ftp.Start(ftpHome.path(), "qord", &whyNot, &skippable, sim.address())) {
        std::fprintf(stderr, "no FTP server: %s\n", whyNot.c_str());
        return 1;
    }
    auto* sensor = dynamic_cast<VEXASensorObject*>(
        ISensorInfo::FindSensorType(L"VEXA")->CreateSensorObject(nullptr, ISensorAddress(sim.host())));
    const std::wstring name = L"@" + sim.host() + L":/bench.bin";

    std::printf("%zu MiB on %s (simulator without compression)\n", mebibytes, sim.address().c_str());
    sensor->GoOnline();
    Report("link put", Put(name, data), data.size());
    Report("link get", Get(name, data.size()), data.size());
    sensor->Disconnect(0);
    Report("FTP put", Put(name, data), data.size());
    Report("FTP get", Get(name, data.size()), data.size());
    sensor->DecRef();
    return 0;
}
