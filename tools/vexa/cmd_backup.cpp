// SPDX-License-Identifier: Apache-2.0
// vexa backup HOST [-o FILE] [ITEM...]: has the instrument pack its files into a .tgz, waits for it
// with the progress on the terminal, and fetches the archive to this computer.
#include "cmd_filesupport.h"

#include "filecopy.h"
#include "interruptguard.h"

#include "fileinfo.h"
#include "pumpwait.h"
#include "remotename.h"
#include "sensorevent.h"
#include "sensorobserver.h"
#include "text.h"
#include "vexabackup.h"
#include "vexadevice.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <cstdio>
#include <ctime>
#include <deque>
#include <iostream>
#include <optional>

#include <unistd.h>

namespace {

constexpr uint32_t kPollIntervalMs = 500;
constexpr const char* kArchiveMark = "_backup.tgz";

struct BackupArgs {
    std::string host;
    std::string output;
    std::vector<std::string> items;
    int timeout = 600;
    std::string overwrite;
};

// Keeps the texts of the instrument's backup notifications, oldest first. Called on this thread, from
// OnTimer.
class BackupNotifications : public ISensorObserver {
public:
    void OnSensorEvent(const ISensorEvent& event) override {
        if (event.code == kSensorEventBackup)
            m_texts.push_back(event.text);
    }
    std::optional<std::wstring> Take() {
        if (m_texts.empty())
            return std::nullopt;
        std::wstring text = std::move(m_texts.front());
        m_texts.pop_front();
        return text;
    }

private:
    std::deque<std::wstring> m_texts;
};

// "backing up: 42%" rewritten in place on a terminal; nothing otherwise.
class PercentLine {
public:
    explicit PercentLine(const CliContext& ctx) {
        m_enabled = !ctx.options.quiet && !ctx.options.json && isatty(STDERR_FILENO) != 0;
    }
    ~PercentLine() {
        if (m_shown >= 0)
            std::fputs("\n", stderr);
    }
    void Show(int percent) {
        if (!m_enabled || percent == m_shown)
            return;
        std::fprintf(stderr, "\rbacking up: %3d%%", percent);
        std::fflush(stderr);
        m_shown = percent;
    }

private:
    bool m_enabled = false;
    int m_shown = -1;
};

// Polls the instrument until the notification of the backup started at `started` arrives; the
// archive's instrument path, or an exit code (1: aborted, timed out or interrupted; 3: the instrument
// went away). The caller has taken every notification queued before the start.
int AwaitArchive(const CliContext& ctx, VEXASensorObject& sensor, std::time_t started, int timeoutSeconds,
                 std::wstring* archive) {
    BackupNotifications notifications;
    notifications.SetSensor(&sensor);
    PercentLine line(ctx);
    const uint32_t start = TickCount();
    for (;;) {
        while (std::optional<std::wstring> text = notifications.Take()) {
            if (text->find(FromUtf8(kArchiveMark)) == std::wstring::npos) {
                PrintError(ctx,
                           "backup: the instrument " + (*text == L"aborted"
                                                            ? std::string("aborted it")
                                                            : "answered \"" + ToUtf8(*text) + "\""),
                           0);
                return kExitFailed;
            }
            bool ours = false;
            if (!VexaBackup::IsArchiveSince(sensor.GetSensorAddress().GetHostname(), *text, started, &ours)) {
                PrintError(ctx, "backup: cannot describe " + ToUtf8(*text), FileInfo::LastError(),
                           FileInfo::LastErrorText());
                return ExitCodeFor(FileInfo::LastError());
            }
            if (ours) {
                *archive = *text;
                return kExitOk;
            }
            // The archive an earlier backup left: ours is still coming.
        }
        if (InterruptGuard::Interrupted()) {
            PrintError(ctx, "backup: interrupted (the instrument goes on with it)", 0);
            return kExitFailed;
        }
        if (TickCount() - start >= uint32_t(timeoutSeconds) * 1000) {
            PrintError(
                ctx, "backup: the instrument did not finish within " + std::to_string(timeoutSeconds) + " s",
                kWsaTimedOut);
            return kExitFailed;
        }
        PumpWait(kPollIntervalMs);
        sensor.OnTimer(0); // one status and one events command
        if (!sensor.IsOnline(true)) {
            PrintError(ctx, "backup: lost the instrument", sensor.GetLastLinkError());
            return kExitUnreachable;
        }
        if (VexaDevice(sensor.GetDevice(L"VEXA")).HasSnapshot())
            line.Show(VexaDevice(sensor.GetDevice(L"VEXA")).getBackupProgress() % 101);
    }
}

int RunBackup(CliContext& ctx, const BackupArgs& args) {
    const FileOperand instrument = InstrumentOperand(args.host);
    CliSession session;
    if (int code = ConnectForLink(ctx, session, instrument))
        return code;
    VEXASensorObject& sensor = *session.Sensor();
    std::vector<std::wstring> items;
    for (const std::string& item : args.items)
        items.push_back(FromUtf8(item));
    InterruptGuard interrupts;
    // The notifications are one queue for every client: what is queued now belongs to an earlier
    // backup (a refused start, one left running by an interrupted run) and is taken unseen.
    sensor.OnTimer(0);
    const std::time_t started = std::time(nullptr);
    VexaDevice device(sensor.GetDevice(L"VEXA"));
    if (!device.runBackup(VexaBackup::JoinItems(items))) {
        PrintError(ctx, "backup: the instrument refused it", device.getLastError(),
                   device.getLastErrorText());
        return ExitCodeFor(device.getLastError());
    }
    std::wstring archive;
    if (int code = AwaitArchive(ctx, sensor, started, args.timeout, &archive))
        return code;

    FileOperand source, destination;
    const std::string remote = "@" + ToUtf8(instrument.host) + ":" + ToUtf8(archive);
    std::wstring archiveName;
    ParseFilename(archive, nullptr, &archiveName, nullptr);
    const std::string local = args.output.empty() ? ToUtf8(archiveName) : args.output;
    if (!ParseFileOperand(ctx, remote, &source) || !ParseFileOperand(ctx, local, &destination))
        return kExitFailed;
    OverwritePolicy overwrite(ctx, args.overwrite);
    const CopyOutcome copied = CopyOneFile(ctx, source, destination, overwrite, "backup");
    if (copied.exitCode != kExitOk || copied.skipped)
        return copied.exitCode != kExitOk ? copied.exitCode : kExitFailed;
    if (ctx.options.json)
        std::cout << nlohmann::ordered_json{{"archive", remote}, {"file", local}}.dump() << "\n";
    else if (!ctx.options.quiet)
        std::cout << "backup: " << remote << " saved to " << local << "\n";
    return kExitOk;
}

} // namespace

void AddBackupCommand(CLI::App& app, CliContext& ctx) {
    auto args = std::make_shared<BackupArgs>();
    auto* cmd = app.add_subcommand("backup", "Back up the instrument's files into a .tgz on this computer");
    cmd->add_option("-o,--output", args->output,
                    "The file (or folder) to save the archive to (default: the archive's name, here)");
    cmd->add_option("--timeout", args->timeout, "Seconds to wait for the instrument (default 600)")
        ->check(CLI::Range(1, 86400));
    cmd->add_option("--overwrite", args->overwrite,
                    "Replace an existing file without asking (yes) or keep it (no)")
        ->check(CLI::IsMember({"yes", "no"}));
    cmd->add_option("HOST", args->host, "The instrument")->required();
    cmd->add_option("ITEM", args->items, "Instrument paths to back up (default: every file)");
    cmd->callback([&ctx, args] { ctx.exitCode = RunBackup(ctx, *args); });
}
