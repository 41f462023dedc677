// SPDX-License-Identifier: Apache-2.0
// Load: twenty `vexa` clients copying and listing against one simulator while a studio-like poller
// asks for status every second. Every copy arrives whole, the poller never misses more than one beat
// and the simulator's memory stays flat. CTest runs it for a few seconds; run_full.sh for a minute
// ($VEXA_LOAD_SECONDS).
#include "processrun.h"
#include "pumpwait.h"
#include "simulatedinstrument.h"
#include "stringtable.h"
#include "tempdir.h"
#include "vexasensorinfo.h"
#include "vexasensorobject.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kClients = 20;
constexpr int kFiles = 5;
constexpr auto kBeat = std::chrono::milliseconds(1000);

int LoadSeconds() {
    const char* text = std::getenv("VEXA_LOAD_SECONDS");
    const int seconds = text ? std::atoi(text) : 0;
    return seconds > 0 ? seconds : 6;
}

// Resident memory of a process in KiB (VmRSS), or -1.
long ResidentKiB(int pid) {
    std::ifstream status("/proc/" + std::to_string(pid) + "/status");
    std::string key;
    while (status >> key) {
        if (key == "VmRSS:") {
            long kib = -1;
            status >> kib;
            return kib;
        }
        status.ignore(4096, '\n');
    }
    return -1;
}

struct ClientTally {
    std::atomic<int> copies{0};
    std::atomic<int> listings{0};
    std::mutex mutex;
    std::vector<std::string> failures;
    void Fail(const std::string& what) {
        std::lock_guard lock(mutex);
        failures.push_back(what);
    }
};

void RunClient(int client, const SimulatorProcess& sim, const TempDir& pc,
               const std::vector<std::string>& files, Clock::time_point end, ClientTally& tally) {
    const std::string remote = "@" + sim.address() + ":";
    for (int round = 0; Clock::now() < end; ++round) {
        const int file = (client + round) % kFiles;
        const std::string target = pc.file("client" + std::to_string(client) + ".vxs");
        const ProcessResult get = RunVexa(
            {"get", "--overwrite", "yes", remote + "/Data/file" + std::to_string(file) + ".vxs", target},
            60000);
        if (get.exitCode != 0 || ReadWholeFile(target) != files[size_t(file)])
            tally.Fail("client " + std::to_string(client) + " get: " + get.err);
        else
            ++tally.copies;
        const ProcessResult ls = RunVexa({"--json", "ls", remote + "/Data"}, 60000);
        if (ls.exitCode != 0 || ls.out.find("file4.vxs") == std::string::npos)
            tally.Fail("client " + std::to_string(client) + " ls: " + ls.err);
        else
            ++tally.listings;
    }
}

} // namespace

TEST(Load, TwentyClientsAndAPollerForAWhile) {
    SimulatedInstrument instrument;
    std::vector<std::string> files;
    for (int i = 0; i < kFiles; ++i) {
        files.push_back(RandomBytes(size_t(100000 + 60000 * i), unsigned(40 + i)));
        instrument.tree().createFile("Data/file" + std::to_string(i) + ".vxs", files.back());
    }
    instrument.start();
    const SimulatorProcess& sim = instrument.sim();
    TempDir pc;

    RegisterVexaStrings();
    VEXASensorInfo info;
    info.Initialize(nullptr);
    auto* sensor =
        dynamic_cast<VEXASensorObject*>(info.CreateSensorObject(nullptr, ISensorAddress(sim.host())));
    ASSERT_NE(sensor, nullptr);
    ASSERT_TRUE(sensor->GoOnline()) << sensor->GetLastLinkError();

    const auto start = Clock::now();
    const auto end = start + std::chrono::seconds(LoadSeconds());
    ClientTally tally;
    std::vector<std::thread> clients;
    for (int client = 0; client < kClients; ++client)
        clients.emplace_back([&, client] { RunClient(client, sim, pc, files, end, tally); });

    // The poller: one status and events poll per beat, as the studio's timer does.
    long rssEarly = -1;
    int polls = 0;
    auto lastGood = start;
    std::chrono::milliseconds longestGap{0};
    for (auto beat = start; beat < end; beat += kBeat) {
        std::this_thread::sleep_until(beat);
        sensor->GetDevice(L"VEXA").ClearSnapshot();
        sensor->OnTimer(0);
        if (sensor->IsOnline(true) && sensor->GetDevice(L"VEXA").HasSnapshot()) {
            ++polls;
            const auto now = Clock::now();
            longestGap =
                std::max(longestGap, std::chrono::duration_cast<std::chrono::milliseconds>(now - lastGood));
            lastGood = now;
        }
        if (rssEarly < 0 && Clock::now() - start > (end - start) / 4)
            rssEarly = ResidentKiB(sim.pid());
    }
    for (std::thread& client : clients)
        client.join();
    const long rssLate = ResidentKiB(sim.pid());
    sensor->Disconnect(0);
    sensor->DecRef();

    for (const std::string& failure : tally.failures)
        ADD_FAILURE() << failure;
    EXPECT_GE(tally.copies.load(), kClients);
    EXPECT_GE(tally.listings.load(), kClients);
    // One missed beat at most: two good polls are never more than two beats (and some slack) apart.
    EXPECT_LE(longestGap, 2 * kBeat + std::chrono::milliseconds(500));
    EXPECT_GE(polls, LoadSeconds() - 1);
    // Flat: what the simulator holds after a quarter of the run is about what it holds at the end.
    EXPECT_GT(rssEarly, 0);
    EXPECT_LT(rssLate - rssEarly, 32 * 1024L) << rssEarly << " KiB early, " << rssLate << " KiB at the end";
    std::printf(
        "load: %d copies, %d listings, %d polls, longest poll gap %lld ms, simulator %ld -> %ld KiB\n",
        tally.copies.load(), tally.listings.load(), polls, static_cast<long long>(longestGap.count()),
        rssEarly, rssLate);
}
