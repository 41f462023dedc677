// SPDX-License-Identifier: Apache-2.0
// vexa method run @HOST:/Method/X.mth [--wait] and vexa method stop HOST: start an acquisition, follow
// it with a progress bar on a terminal, and print the path of the data file it wrote.
#include "cmd_filesupport.h"
#include "runcommands.h"

#include "interruptguard.h"

#include "fileinfo.h"
#include "pumpwait.h"
#include "sensorevent.h"
#include "sensorobserver.h"
#include "text.h"
#include "timespan.h"
#include "vexadevice.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <optional>

#include <unistd.h>

namespace {

constexpr uint32_t kPollIntervalMs = 500;
// Polls after the process ended without its notice before the newest data file is taken instead.
constexpr int kPollsForTheNotice = 3;
constexpr int kBarWidth = 30;

struct MethodRunArgs {
    std::string method;
    bool wait = false;
    int timeout = 7200;
};

// Keeps the text of the instrument's method-ended notification. Called on this thread, from OnTimer.
class MethodEndedNotification : public ISensorObserver {
public:
    void OnSensorEvent(const ISensorEvent& event) override {
        if (event.code == kSensorEventMethodEnded && !m_text)
            m_text = event.text;
    }
    const std::optional<std::wstring>& text() const { return m_text; }

private:
    std::optional<std::wstring> m_text;
};

// "running [#####.....] 0:12 / 0:36" rewritten in place on a terminal; nothing otherwise.
class RunBar {
public:
    explicit RunBar(const CliContext& ctx) {
        m_enabled = !ctx.options.quiet && !ctx.options.json && isatty(STDERR_FILENO) != 0;
    }
    ~RunBar() {
        if (m_drawn)
            std::fputs("\n", stderr);
    }
    void Show(int elapsed, int total) {
        if (!m_enabled || total <= 0)
            return;
        const int filled = std::min(kBarWidth, elapsed * kBarWidth / total);
        std::fprintf(stderr, "\rrunning [%s%s] %s / %s ", std::string(size_t(filled), '#').c_str(),
                     std::string(size_t(kBarWidth - filled), '.').c_str(),
                     ToUtf8(FormatTimeSpan(elapsed)).c_str(), ToUtf8(FormatTimeSpan(total)).c_str());
        std::fflush(stderr);
        m_drawn = true;
    }

private:
    bool m_enabled = false;
    bool m_drawn = false;
};

// The newest RunNNN.vxs in /Data: where the run went when its notice reached another workstation.
std::wstring NewestDataFile(const std::wstring& host) {
    std::vector<FileInfo> entries;
    std::wstring newest;
    if (FileInfo::ReadSensorDir(host, L"/Data", entries, L"Run*.vxs", 0))
        for (const FileInfo& entry : entries)
            if (!entry.IsFolder() && entry.name > newest)
                newest = entry.name;
    return newest.empty() ? newest : L"/Data/" + newest;
}

// Follows the run to its end; the notice's text, or an exit code.
int AwaitEnd(const CliContext& ctx, VEXASensorObject& sensor, int timeoutSeconds, std::wstring* notice) {
    MethodEndedNotification notification;
    notification.SetSensor(&sensor);
    RunBar bar(ctx);
    const uint32_t start = TickCount();
    int idlePolls = 0;
    while (!notification.text()) {
        if (InterruptGuard::Interrupted()) {
            PrintError(ctx, "method run: interrupted (the instrument goes on; vexa method stop ends it)", 0);
            return kExitFailed;
        }
        if (TickCount() - start >= uint32_t(timeoutSeconds) * 1000) {
            PrintError(ctx, "method run: not finished within " + std::to_string(timeoutSeconds) + " s",
                       kWsaTimedOut);
            return kExitFailed;
        }
        PumpWait(kPollIntervalMs);
        sensor.OnTimer(0); // one status and one events command
        if (!sensor.IsOnline(true)) {
            PrintError(ctx, "method run: lost the instrument", sensor.GetLastLinkError());
            return kExitUnreachable;
        }
        const VexaDevice device(sensor.GetDevice(L"VEXA"));
        bar.Show(device.getProcessElapsed(), device.getProcessTotal());
        idlePolls = device.getActiveProcess().empty() ? idlePolls + 1 : 0;
        if (!notification.text() && idlePolls > kPollsForTheNotice) {
            const std::wstring newest = NewestDataFile(sensor.GetSensorAddress().GetHostname());
            *notice = newest.empty() ? L"method finished" : L"method finished " + newest;
            return kExitOk;
        }
    }
    *notice = *notification.text();
    return kExitOk;
}

int RunMethod(CliContext& ctx, const MethodRunArgs& args) {
    FileOperand method;
    if (!ParseFileOperand(ctx, args.method, &method))
        return kExitUsage;
    if (!method.IsRemote()) {
        PrintError(ctx, "method run: name the method on the instrument, as @HOST:/Method/NAME.mth", 0);
        return kExitUsage;
    }
    CliSession session;
    if (int code = ConnectForLink(ctx, session, method))
        return code;
    VEXASensorObject& sensor = *session.Sensor();
    const bool blank = method.path.find_first_of(L" \t") != std::wstring::npos;
    const std::wstring commandLine = blank ? L"\"" + method.path + L"\"" : method.path;
    InterruptGuard interrupts;
    VexaDevice device(sensor.GetDevice(L"VEXA"));
    if (!device.runMethod(commandLine)) {
        PrintError(ctx, "method run: the instrument refused it", device.getLastError(),
                   device.getLastErrorText());
        return ExitCodeFor(device.getLastError());
    }
    if (!args.wait) {
        if (ctx.options.json)
            std::cout << nlohmann::ordered_json{{"method", args.method}, {"started", true}}.dump() << "\n";
        else if (!ctx.options.quiet)
            std::cout << "method: " << args.method << " started\n";
        return kExitOk;
    }
    std::wstring notice;
    if (int code = AwaitEnd(ctx, sensor, args.timeout, &notice))
        return code;
    const std::wstring finished = L"method finished ";
    const std::wstring stopped = L"method stopped ";
    const bool wasStopped = notice.rfind(stopped, 0) == 0;
    if (notice.rfind(finished, 0) != 0 && !wasStopped) {
        PrintError(ctx, "method run: the instrument answered \"" + ToUtf8(notice) + "\"", 0);
        return kExitFailed;
    }
    const std::string file = "@" + ToUtf8(method.host) + ":" +
                             ToUtf8(notice.substr(wasStopped ? stopped.size() : finished.size()));
    if (ctx.options.json)
        std::cout
            << nlohmann::ordered_json{{"method", args.method}, {"file", file}, {"stopped", wasStopped}}.dump()
            << "\n";
    else
        std::cout << file << "\n";
    if (wasStopped && !ctx.options.quiet && !ctx.options.json)
        std::cerr << "vexa: method run: stopped early; the file holds the scans so far\n";
    return kExitOk;
}

int StopMethod(CliContext& ctx, const std::string& host) {
    const FileOperand instrument = InstrumentOperand(host);
    CliSession session;
    if (int code = ConnectForLink(ctx, session, instrument))
        return code;
    VexaDevice device(session.Sensor()->GetDevice(L"VEXA"));
    if (!device.stopMethod()) {
        PrintError(ctx, "method stop: the instrument refused it", device.getLastError(),
                   device.getLastErrorText());
        return ExitCodeFor(device.getLastError());
    }
    if (!ctx.options.quiet && !ctx.options.json)
        std::cout << "method: stopped on " << host << "\n";
    return kExitOk;
}

} // namespace

void AddMethodRunCommands(CLI::App* method, CliContext& ctx) {
    auto args = std::make_shared<MethodRunArgs>();
    auto* run = method->add_subcommand("run", "Run a method on the instrument (an acquisition)");
    run->add_flag("--wait", args->wait, "Follow the run to its end and print the data file's path");
    run->add_option("--timeout", args->timeout, "Seconds to wait with --wait (default 7200)")
        ->check(CLI::Range(1, 86400));
    run->add_option("METHOD", args->method, "The method on the instrument: @HOST:/Method/NAME.mth")
        ->required();
    run->callback([&ctx, args] { ctx.exitCode = RunMethod(ctx, *args); });

    auto host = std::make_shared<std::string>();
    auto* stop =
        method->add_subcommand("stop", "End the running method early (its data file keeps the scans so far)");
    stop->add_option("HOST", *host, "The instrument")->required();
    stop->callback([&ctx, host] { ctx.exitCode = StopMethod(ctx, *host); });
}
