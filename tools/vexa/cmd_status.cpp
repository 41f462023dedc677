// SPDX-License-Identifier: Apache-2.0
// vexa status HOST [--json] [--watch]: the instrument's status panel, as the studio shows it.
#include "cli.h"

#include "commsensor.h"
#include "pumpwait.h"
#include "sensorlink.h"
#include "sensorwait.h"
#include "text.h"
#include "timeformat.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <iostream>
#include <vector>

#ifndef _WIN32
#include <unistd.h>
#endif

namespace {

// The first status answer must come within what the link allows for one command: the channel's
// connect and one full receive, with room to spare.
constexpr uint32_t kFirstSnapshotLimitMs = kConnectLimitMs + 2 * kReceiveLimitMs;
constexpr uint32_t kPollSliceMs = 100;
constexpr uint32_t kWatchIntervalMs = 1000;

std::atomic<bool> g_interrupted{false};

extern "C" void OnInterrupt(int) {
    g_interrupted = true;
}

struct StatusLine {
    std::wstring label;
    std::wstring value;
};

struct StatusSection {
    std::wstring title;
    std::vector<StatusLine> lines;
};

std::vector<StatusSection> ReadStatus(ISensorObject& sensor) {
    std::vector<StatusSection> sections;
    const int count = sensor.GetStatusSectionCount();
    for (int s = 0; s < count; ++s) {
        StatusSection section{sensor.GetStatusSectionTitle(s), {}};
        const int lines = sensor.GetStatusLineCount(s);
        for (int l = 0; l < lines; ++l)
            section.lines.push_back({sensor.GetStatusLabel(s, l), sensor.GetStatusValue(s, l)});
        sections.push_back(std::move(section));
    }
    return sections;
}

void PrintText(const std::vector<StatusSection>& sections) {
    for (const StatusSection& section : sections) {
        std::cout << ToUtf8(section.title) << "\n";
        for (const StatusLine& line : section.lines)
            std::cout << "  " << ToUtf8(line.label) << " " << ToUtf8(line.value) << "\n";
    }
}

void PrintJson(const std::vector<StatusSection>& sections) {
    nlohmann::ordered_json out = nlohmann::ordered_json::array();
    for (const StatusSection& section : sections) {
        nlohmann::ordered_json lines = nlohmann::ordered_json::array();
        for (const StatusLine& line : section.lines)
            lines.push_back({{"label", ToUtf8(line.label)}, {"value", ToUtf8(line.value)}});
        out.push_back({{"title", ToUtf8(section.title)}, {"lines", std::move(lines)}});
    }
    std::cout << out.dump() << "\n";
}

bool StdoutIsTerminal() {
#ifdef _WIN32
    return false;
#else
    return isatty(STDOUT_FILENO) != 0;
#endif
}

int64_t NowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// "14:02:11" in local time.
std::string ClockText(int64_t timeMs) {
    return ToUtf8(FormatTime(timeMs, PXLocalTimeDiff(timeMs) / 60));
}

// Polls until the sensor holds its first snapshot; false when it went off line or the time ran out.
bool WaitForFirstSnapshot(VEXASensorObject& sensor) {
    IChannel* channel = sensor.GetChannel();
    if (channel == nullptr || !channel->IsOpen())
        return false;
    const uint32_t start = TickCount();
    while (!g_interrupted) {
        sensor.OnTimer(0);
        if (!sensor.IsOnline(true))
            return false;
        if (sensor.GetDevice(L"VEXA").HasSnapshot())
            return true;
        if (TickCount() - start > kFirstSnapshotLimitMs)
            return false;
        PumpWait(kPollSliceMs);
    }
    return false;
}

// Why the status could not be read: the channel's error, else the link's, else "not connected".
int StatusError(VEXASensorObject& sensor) {
    if (const ICommSensor* comm = sensor.GetCommSensor(); comm && comm->LastError() != 0)
        return comm->LastError();
    return sensor.GetLastLinkError() != 0 ? sensor.GetLastLinkError() : kWsaNotConn;
}

void Show(const std::vector<StatusSection>& sections, bool json, bool clearScreen) {
    if (clearScreen)
        std::cout << "\x1b[H\x1b[2J";
    if (json)
        PrintJson(sections);
    else
        PrintText(sections);
    std::cout.flush();
}

int RunStatus(CliContext& ctx, const std::string& hostText, bool json, bool watch) {
    const std::wstring host = HostOperand(hostText);
    if (!ISensorAddress(host).IsValid()) {
        PrintError(ctx, hostText + ": not an instrument address", kErrInvalid);
        return kExitUsage;
    }
    CliSession session;
    int error = 0;
    if (!session.Connect(host, &error)) {
        PrintError(ctx, hostText + ": cannot reach the instrument", error);
        return kExitUnreachable;
    }
    VEXASensorObject& sensor = *session.Sensor();
    if (!WaitForFirstSnapshot(sensor)) {
        if (g_interrupted)
            return kExitOk;
        PrintError(ctx, hostText + ": the instrument did not report its status", StatusError(sensor));
        return kExitUnreachable;
    }
    const bool clearScreen = watch && !json && StdoutIsTerminal();
    Show(ReadStatus(sensor), json, clearScreen);
    if (!watch)
        return kExitOk;

    while (!g_interrupted) {
        for (uint32_t waited = 0; waited < kWatchIntervalMs && !g_interrupted; waited += kPollSliceMs)
            PumpWait(kPollSliceMs);
        if (g_interrupted)
            break;
        sensor.OnTimer(0); // one status and one events command, each bounded by the link's limits
        if (!sensor.IsOnline(true)) {
            // Rides through the drop: the gap is marked on stderr, the readings go on when it is back.
            const int64_t lostAt = NowMs();
            PrintError(ctx, hostText + ": lost the instrument at " + ClockText(lostAt) + "; reconnecting",
                       StatusError(sensor));
            SensorWait wait;
            wait.maxWaitMs = INT_MAX;
            wait.cancelled = [] { return g_interrupted.load(); };
            if (!wait.UntilOnline(sensor) || !WaitForFirstSnapshot(sensor))
                return g_interrupted ? kExitOk : kExitUnreachable;
            if (!ctx.options.quiet)
                std::cerr << "vexa: " << hostText << ": back at " << ClockText(NowMs()) << " after "
                          << ToUtf8(FormatElapsed((NowMs() - lostAt) / 1000)) << "; no readings in between\n";
        }
        if (!clearScreen && !json)
            std::cout << "\n";
        Show(ReadStatus(sensor), json, clearScreen);
    }
    return kExitOk;
}

} // namespace

void AddStatusCommand(CLI::App& app, CliContext& ctx) {
    auto* cmd =
        app.add_subcommand("status", "Show the instrument's status: pressures, temperatures, sample input");
    auto host = std::make_shared<std::string>();
    auto json = std::make_shared<bool>(false);
    auto watch = std::make_shared<bool>(false);
    cmd->add_option("HOST", *host, "The instrument's address or host name")->required();
    cmd->add_flag("--json", *json, "Print [{\"title\", \"lines\": [{\"label\", \"value\"}]}]");
    cmd->add_flag("-w,--watch", *watch, "Refresh every second until interrupted (Ctrl+C)");
    cmd->callback([&ctx, host, json, watch] {
        g_interrupted = false;
        auto previous = std::signal(SIGINT, OnInterrupt);
        ctx.exitCode = RunStatus(ctx, *host, *json || ctx.options.json, *watch);
        std::signal(SIGINT, previous);
    });
}
