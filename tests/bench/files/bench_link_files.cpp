// SPDX-License-Identifier: Apache-2.0
// Throughput of the link file back ends against the simulator on loopback, next to a raw TCP copy of
// the same bytes in the same run, and the time to list a folder of many entries.
// Usage: bench_link_files [MiB] [entries]   (64 and 10000 by default; VEXA_SIM names vexa-sim, else the
// one beside this program is used)
#include "fileinfo.h"
#include "loopback.h"
#include "simulator.h"
#include "tempdir.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void Report(const char* what, long long bytes, double seconds) {
    std::printf("%-20s %8.1f MiB in %6.2f s  %8.1f MB/s\n", what, double(bytes) / (1024.0 * 1024.0), seconds,
                double(bytes) / seconds / 1e6);
}

void WriteRandomFile(const std::string& path, long long size) {
    std::mt19937_64 random(42);
    std::ofstream out(path, std::ios::binary);
    std::vector<uint64_t> block(8192);
    for (long long written = 0; written < size;) {
        for (auto& word : block)
            word = random();
        const long long n = std::min<long long>(size - written, static_cast<long long>(block.size() * 8));
        out.write(reinterpret_cast<const char*>(block.data()), n);
        written += n;
    }
}

// Sends a file over a plain loopback TCP connection into another file: the floor for any protocol.
double RawTcpCopy(const std::string& from, const std::string& to) {
    const std::string address = FreshLoopbackAddress();
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    sa.sin_port = 0;
    inet_pton(AF_INET, address.c_str(), &sa.sin_addr);
    socklen_t length = sizeof sa;
    if (::bind(listener, reinterpret_cast<sockaddr*>(&sa), sizeof sa) != 0 || ::listen(listener, 1) != 0 ||
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&sa), &length) != 0) {
        std::perror("raw listener");
        return -1;
    }
    const auto start = Clock::now();
    std::thread receiver([&] {
        const int s = ::accept(listener, nullptr, nullptr);
        std::ofstream out(to, std::ios::binary);
        std::vector<char> buffer(16384);
        for (ssize_t n; (n = ::recv(s, buffer.data(), buffer.size(), 0)) > 0;)
            out.write(buffer.data(), n);
        ::close(s);
    });
    const int s = ::socket(AF_INET, SOCK_STREAM, 0);
    if (::connect(s, reinterpret_cast<sockaddr*>(&sa), sizeof sa) == 0) {
        std::ifstream in(from, std::ios::binary);
        std::vector<char> buffer(16384);
        while (in.read(buffer.data(), std::streamsize(buffer.size())) || in.gcount() > 0) {
            const char* p = buffer.data();
            for (ssize_t left = in.gcount(), n; left > 0; left -= n, p += n)
                if ((n = ::send(s, p, size_t(left), MSG_NOSIGNAL)) <= 0)
                    break;
        }
    }
    ::close(s);
    receiver.join();
    ::close(listener);
    return Seconds(start);
}

} // namespace

int main(int argc, char** argv) {
    const long long mebibytes = argc > 1 ? std::atoll(argv[1]) : 64;
    const int entries = argc > 2 ? std::atoi(argv[2]) : 10000;
    if (mebibytes <= 0 || mebibytes > 1024 || entries < 0 || entries > 200000) {
        std::fprintf(stderr, "usage: bench_link_files [MiB, 1..1024] [entries, 0..200000]\n");
        return 2;
    }
    if (!std::getenv("VEXA_SIM")) {
        const std::string self = argv[0];
        const std::string beside = self.substr(0, self.find_last_of('/') + 1) + "vexa-sim";
        setenv("VEXA_SIM", beside.c_str(), 1);
    }
    TempDir root, pc;
    root.createDir("Data");
    root.createDir("Many");
    pc.createDir("up");
    pc.createDir("down");
    pc.createDir("raw");
    const long long total = mebibytes * 1024 * 1024;
    WriteRandomFile(pc.file("up/bench.bin"), total);
    for (int i = 0; i < entries; ++i)
        root.createFile("Many/entry" + std::to_string(i) + ".mth", "x");

    SimulatorProcess sim(root.path(), std::getenv("BENCH_NO_COMPRESS")
                                          ? std::vector<std::string>{"--no-compress"}
                                          : std::vector<std::string>{});
    auto* sensor = new VEXASensorObject(nullptr, ISensorAddress(sim.host()));
    if (!sensor->GoOnline()) {
        std::fprintf(stderr, "the simulator does not answer on %s\n", sim.address().c_str());
        return 1;
    }

    const double raw = RawTcpCopy(pc.file("up/bench.bin"), pc.file("raw/bench.bin"));
    Report("raw tcp", total, raw);

    CVexaFileList local(nullptr, FromUtf8(pc.file("up/")));
    CVexaFileList remote(sensor, L"@" + sim.host() + L":/Data/", false);
    auto start = Clock::now();
    if (!remote.CopyIn(*local.Find(L"bench.bin"), local, nullptr)) {
        std::fprintf(stderr, "put failed: %d\n", remote.LastError());
        return 1;
    }
    const double put = Seconds(start);
    Report("link put", total, put);

    FileInfo entry = *local.Find(L"bench.bin");
    CVexaFileList down(nullptr, FromUtf8(pc.file("down/")), false);
    start = Clock::now();
    if (!down.CopyIn(entry, remote, nullptr)) {
        std::fprintf(stderr, "get failed: %d\n", down.LastError());
        return 1;
    }
    const double get = Seconds(start);
    Report("link get", total, get);
    // The simulator tries to compress every chunk it sends; random data never shrinks, so that costs
    // its processor time only. The same get from a simulator that does not try shows the link's own cost.
    double plainGet = -1;
    {
        SimulatorProcess plain(root.path(), {"--no-compress"});
        auto* plainSensor = new VEXASensorObject(nullptr, ISensorAddress(plain.host()));
        if (plainSensor->GoOnline()) {
            CVexaFileList plainRemote(plainSensor, L"@" + plain.host() + L":/Data/", false);
            start = Clock::now();
            if (down.CopyIn(entry, plainRemote, nullptr)) {
                plainGet = Seconds(start);
                Report("get, no compression", total, plainGet);
            }
        }
        plainSensor->DecRef();
    }
    std::printf("ratio put/raw %.2f, get/raw %.2f, get without compression/raw %.2f "
                "(each copy includes the 0.5 s close wait)\n",
                put / raw, get / raw, plainGet > 0 ? plainGet / raw : 0.0);

    std::vector<FileInfo> listed;
    start = Clock::now();
    const bool listedOk = FileInfo::ReadSensorDir(sim.host(), L"/Many", listed, L"", 0);
    const double listSeconds = Seconds(start);
    start = Clock::now();
    std::vector<FileInfo> localListed;
    FileInfo::ReadSensorDir(L"", FromUtf8(root.file("Many")), localListed, L"", 0);
    const double localSeconds = Seconds(start);
    if (!listedOk) {
        std::fprintf(stderr, "listing failed: %d\n", FileInfo::LastError());
        return 1;
    }
    std::printf("ls         %zu entries in %.3f s over the link, %.3f s on the local disk (ratio %.1f)\n",
                listed.size(), listSeconds, localSeconds,
                localSeconds > 0 ? listSeconds / localSeconds : 0.0);
    sensor->DecRef();
    return 0;
}
