// FTP put and get throughput of the FTP back end against a real FTP server on loopback.
// Usage: bench_ftp_transfer [MiB]   (64 by default; needs root for port 21 and python3-pyftpdlib)
#include "ftpserverprocess.h"
#include "netfileimpl.h"
#include "tempdir.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

constexpr int kBlock = 16384; // the copy worker's block size

double Seconds(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void Report(const char* what, long long bytes, double seconds, std::size_t peak) {
    std::printf("%-4s %8.1f MiB in %6.2f s  %8.1f MB/s  (buffer peak %zu KiB)\n", what,
                static_cast<double>(bytes) / (1024.0 * 1024.0), seconds,
                static_cast<double>(bytes) / seconds / 1e6, peak / 1024);
}

} // namespace

int main(int argc, char** argv) {
    const long long mebibytes = argc > 1 ? std::atoll(argv[1]) : 64;
    if (mebibytes <= 0 || mebibytes > 1024) {
        std::fprintf(stderr, "usage: bench_ftp_transfer [MiB, 1..1024]\n");
        return 2;
    }
    for (const char* name : {"ftp_proxy", "FTP_PROXY", "all_proxy", "ALL_PROXY"})
        unsetenv(name);
    TempDir home;
    FtpServerProcess server;
    std::string whyNot;
    bool skippable = false;
    if (!server.Start(home.path(), "qord", &whyNot, &skippable)) {
        std::fprintf(stderr, "no FTP server: %s\n", whyNot.c_str());
        return 1;
    }
    const long long total = mebibytes * 1024 * 1024;
    std::vector<char> block(kBlock);
    for (int i = 0; i < kBlock; ++i)
        block[static_cast<std::size_t>(i)] = static_cast<char>(i * 31 + 7);

    auto start = std::chrono::steady_clock::now();
    {
        NETFileImpl file(server.host(), L"/", L"bench.bin", L"wb");
        for (long long sent = 0; sent < total; sent += kBlock) {
            if (file.Write(block.data(), kBlock) != kBlock) {
                std::fprintf(stderr, "put failed: %d\n", file.GetError());
                return 1;
            }
        }
        if (!file.Close()) {
            std::fprintf(stderr, "put not confirmed: %d\n", file.GetError());
            return 1;
        }
        Report("put", total, Seconds(start), file.PeakBuffered());
    }

    start = std::chrono::steady_clock::now();
    NETFileImpl file(server.host(), L"/", L"bench.bin", L"rb");
    long long received = 0;
    for (int got; (got = file.Read(block.data(), kBlock)) > 0;)
        received += got;
    if (received != total || file.GetError() != 0) {
        std::fprintf(stderr, "get failed after %lld bytes: %d\n", received, file.GetError());
        return 1;
    }
    Report("get", received, Seconds(start), file.PeakBuffered());
    return 0;
}
