// SPDX-License-Identifier: Apache-2.0
// vexa cp [-r] SRC DST: files or whole folders between this computer and instruments, either way,
// through the folder list's copy and the copy job.
#include "cmd_filesupport.h"
#include "retryoption.h"

#include "filecopy.h"
#include "hostsessions.h"
#include "interruptguard.h"
#include "linksensor.h"
#include "paths.h"
#include "remotename.h"
#include "systemaccess.h"
#include "terminalprogress.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"

#include <iostream>
#include <optional>
#include <thread>

namespace {

constexpr int kMaxJobs = 16;

struct CpArgs {
    std::string from, to, overwrite;
    bool recursive = false;
    int jobs = 1;
};

// One link to the instrument and the share of the copy that travels over it. Every file costs the
// instrument's wait after it, so several links at once move many small files faster.
struct Lane {
    std::unique_ptr<CliSession> ownSession; // lanes after the first link to the instrument again
    VEXASensorObject* fromSensor = nullptr;
    VEXASensorObject* toSensor = nullptr;
    std::unique_ptr<CVexaFileList> source, destination;
    std::unique_ptr<CopyJob> job;

    // The instrument side's sensor, which this lane's files must use; null when no side is one.
    VEXASensorObject* LinkSensor() const { return fromSensor ? fromSensor : toSensor; }
};

// A lane's progress goes to the one terminal line; the totals and the end belong to the whole copy.
class LaneProgress : public ICopyProgress {
public:
    explicit LaneProgress(ICopyProgress& shared) : m_shared(shared) {}
    void SetCurrentFile(const std::wstring& name) override { m_shared.SetCurrentFile(name); }
    void SetFileSize(int64_t bytes) override { m_shared.SetFileSize(bytes); }
    void AddBytes(int64_t bytes) override { m_shared.AddBytes(bytes); }
    void RetryFile(const std::wstring& note) override { m_shared.RetryFile(note); }
    bool IsCancelled() const override { return m_shared.IsCancelled(); }
    void SetDone() override {}
    void SetTotal(int64_t, int) override {}

private:
    ICopyProgress& m_shared;
};

// The operand's full name without a trailing '/' (the root keeps its own).
std::wstring TrimmedName(const FileOperand& operand) {
    const std::wstring path = WithoutTrailingSlash(operand.path);
    return MakeFilename(L"", path, operand.host);
}

// The sensor for an operand's side (null for this computer); false with the exit code when an
// instrument's link is needed and cannot be had.
bool SideSensor(const CliContext& ctx, HostSessions& sessions, const FileOperand& operand,
                VEXASensorObject** sensor, int* exitCode) {
    *sensor = nullptr;
    if (!operand.IsRemote())
        return true;
    int error = 0;
    *sensor = sessions.Linked(operand.host, &error);
    if (*sensor)
        return true;
    PrintError(ctx, ToUtf8(operand.host) + ": cannot reach the instrument (folders are copied over its link)",
               error);
    *exitCode = kExitUnreachable;
    return false;
}

// Whether a name is a folder: from its own side; false when it does not exist.
bool IsFolderName(const std::wstring& name, bool* exists) {
    FileInfo entry;
    *exists = FileInfo::GetFileInfo(name, &entry, nullptr, nullptr);
    return *exists && IsFolderEntry(entry);
}

// Makes `count` lanes between the two folders: the first over the sensors already linked, each other
// one over a new link to the instrument side. False with the exit code when a folder cannot be read
// or a link cannot be had.
bool MakeLanes(const CliContext& ctx, const CpArgs& args, const FileOperand& from, const FileOperand& to,
               const std::wstring& fromFolder, const std::wstring& target, VEXASensorObject* fromSensor,
               VEXASensorObject* toSensor, int count, std::vector<Lane>* lanes, int* exitCode) {
    const std::wstring& host = from.IsRemote() ? from.host : to.host;
    for (int i = 0; i < count; ++i) {
        Lane lane;
        lane.fromSensor = fromSensor;
        lane.toSensor = toSensor;
        if (i > 0) {
            lane.ownSession = std::make_unique<CliSession>();
            int error = 0;
            if (!lane.ownSession->Connect(host, &error)) {
                PrintError(ctx, ToUtf8(host) + ": cannot open link " + std::to_string(i + 1), error);
                *exitCode = kExitUnreachable;
                return false;
            }
            (from.IsRemote() ? lane.fromSensor : lane.toSensor) = lane.ownSession->Sensor();
        }
        // The lists read their folders over this lane's own link.
        std::optional<LinkSensorOverride> link;
        if (lane.LinkSensor())
            link.emplace(lane.LinkSensor());
        lane.source = std::make_unique<CVexaFileList>(lane.fromSensor,
                                                      CVexaFileList::FolderArgument(from.host, fromFolder));
        if (lane.source->LastError() != 0) {
            PrintFileError(ctx, "cp " + args.from, lane.source->LastError(), lane.source->LastErrorText());
            *exitCode = ExitCodeFor(lane.source->LastError());
            return false;
        }
        lane.destination =
            std::make_unique<CVexaFileList>(lane.toSensor, CVexaFileList::FolderArgument(to.host, target));
        lane.job = std::make_unique<CopyJob>(*lane.source, *lane.destination);
        lane.job->SetRetry(TransferRetryFor());
        lanes->push_back(std::move(lane));
    }
    return true;
}

// Deals the source's entries out to the lanes in turn (a folder goes whole to one lane) and builds each
// lane's job; every overwrite question is asked here, before anything is copied.
CopyJob::BuildResult BuildLanes(std::vector<Lane>& lanes, const OverwriteQuestion& ask) {
    std::vector<std::vector<FileInfo>> shares(lanes.size());
    size_t next = 0;
    for (const FileInfo& entry : lanes[0].source->Entries())
        if (entry.name != L"." && entry.name != L"..")
            shares[next++ % lanes.size()].push_back(entry);
    bool ready = false;
    for (size_t i = 0; i < lanes.size(); ++i) {
        std::optional<LinkSensorOverride> link;
        if (lanes[i].LinkSensor())
            link.emplace(lanes[i].LinkSensor());
        switch (shares[i].empty() ? CopyJob::BuildResult::kNothingToCopy
                                  : lanes[i].job->Build(shares[i], CSystemAccess::Accessible(0), ask)) {
        case CopyJob::BuildResult::kCancelled:
            return CopyJob::BuildResult::kCancelled;
        case CopyJob::BuildResult::kNothingToCopy:
            lanes[i].job.reset();
            break;
        case CopyJob::BuildResult::kReady:
            ready = true;
            break;
        }
    }
    return ready ? CopyJob::BuildResult::kReady : CopyJob::BuildResult::kNothingToCopy;
}

// Runs the lanes' jobs at once, each on a thread of its own over its own link (the first on this one).
void RunLanes(std::vector<Lane>& lanes, ICopyProgress& progress) {
    int64_t bytes = 0;
    int files = 0;
    for (const Lane& lane : lanes) {
        if (lane.job) {
            bytes += lane.job->TotalBytes();
            files += lane.job->FileCount();
        }
    }
    progress.SetTotal(bytes, files);
    const auto run = [&progress](Lane& lane) {
        std::optional<LinkSensorOverride> link;
        if (lane.LinkSensor())
            link.emplace(lane.LinkSensor());
        LaneProgress share(progress);
        lane.job->Run(&share);
    };
    std::vector<std::thread> threads;
    for (size_t i = 1; i < lanes.size(); ++i)
        if (lanes[i].job)
            threads.emplace_back(run, std::ref(lanes[i]));
    if (lanes[0].job)
        run(lanes[0]);
    for (std::thread& thread : threads)
        thread.join();
    progress.SetDone();
}

// Prints the failures of every lane; the exit code of the whole copy.
int ReportLanes(const CliContext& ctx, const CpArgs& args, const std::vector<Lane>& lanes,
                const std::wstring& targetName) {
    int code = kExitOk;
    int copied = 0, files = 0;
    bool cancelled = false, complete = true;
    for (const Lane& lane : lanes) {
        if (!lane.job)
            continue;
        for (const CopyJob::Failure& failure : lane.job->Failures()) {
            PrintFileError(ctx, "cp " + ToUtf8(failure.name), failure.error, failure.text);
            code = std::max(code, ExitCodeFor(failure.error));
        }
        copied += lane.job->CopiedCount();
        files += lane.job->FileCount();
        cancelled = cancelled || lane.job->WasCancelled();
        complete = complete && !lane.job->WasCancelled() && lane.job->Failures().empty();
    }
    if (cancelled) {
        PrintError(ctx, "cp " + args.from + ": cancelled after " + std::to_string(copied) + " files", 0);
        return kExitFailed;
    }
    if (ctx.options.verbose)
        std::cerr << "vexa: cp " << args.from << " -> " << ToUtf8(targetName) << ": " << copied << " of "
                  << files << " files copied over " << lanes.size()
                  << (lanes.size() == 1 ? " link\n" : " links\n");
    return complete ? kExitOk : std::max(code, int(kExitFailed));
}

int CopyTree(CliContext& ctx, const CpArgs& args, const FileOperand& from, const FileOperand& to,
             HostSessions& sessions) {
    VEXASensorObject* fromSensor = nullptr;
    VEXASensorObject* toSensor = nullptr;
    int exitCode = kExitOk;
    if (!SideSensor(ctx, sessions, from, &fromSensor, &exitCode) ||
        !SideSensor(ctx, sessions, to, &toSensor, &exitCode))
        return exitCode;

    // Into an existing folder under the source's name, else as the new folder itself.
    const std::wstring fromFolder = WithoutTrailingSlash(from.path);
    bool exists = false;
    const bool toIsFolder = IsFolderName(TrimmedName(to), &exists);
    if (exists && !toIsFolder) {
        PrintError(ctx, "cp " + args.from + ": " + args.to + " is a file", 0);
        return kExitFailed;
    }
    std::wstring target = WithoutTrailingSlash(to.path);
    if (toIsFolder)
        target = JoinPath(target, LastPathPart(fromFolder), L'/');
    const std::wstring targetName = MakeFilename(L"", target, to.host);
    bool targetExists = false;
    const bool targetIsFolder = IsFolderName(targetName, &targetExists);
    if (targetExists && !targetIsFolder) {
        PrintError(ctx, "cp " + args.from + ": " + ToUtf8(targetName) + " is a file", 0);
        return kExitFailed;
    }
    if (!targetExists && !FileInfo::MkDir(targetName)) {
        PrintFileError(ctx, "cp " + args.from + ": cannot make " + ToUtf8(targetName), FileInfo::LastError(),
                       FileInfo::LastErrorText());
        return ExitCodeFor(FileInfo::LastError());
    }

    // Lanes share one instrument side; between two instruments the copy keeps to one link.
    const int lanes = from.IsRemote() != to.IsRemote() ? args.jobs : 1;
    std::vector<Lane> made;
    if (!MakeLanes(ctx, args, from, to, fromFolder, target, fromSensor, toSensor, lanes, &made, &exitCode))
        return exitCode;
    OverwritePolicy overwrite(ctx, args.overwrite);
    switch (BuildLanes(made, overwrite.AsQuestion())) {
    case CopyJob::BuildResult::kCancelled:
        if (!overwrite.Refused())
            PrintError(ctx, "cp " + args.from + ": cancelled, nothing copied", 0);
        return kExitFailed;
    case CopyJob::BuildResult::kNothingToCopy:
        if (ctx.options.verbose)
            std::cerr << "vexa: cp " << args.from << ": nothing to copy\n";
        return kExitOk;
    case CopyJob::BuildResult::kReady:
        break;
    }

    InterruptGuard interrupts;
    {
        TerminalProgress progress(ctx);
        RunLanes(made, progress);
    }
    return ReportLanes(ctx, args, made, targetName);
}

int RunCp(CliContext& ctx, const CpArgs& args) {
    FileOperand from, to;
    if (!ParseFileOperand(ctx, args.from, &from) || !ParseFileOperand(ctx, args.to, &to))
        return kExitUsage;
    if (args.recursive) {
        HostSessions sessions;
        bool folder = false;
        if (from.IsRemote()) {
            VEXASensorObject* sensor = nullptr;
            int exitCode = kExitOk;
            if (!SideSensor(ctx, sessions, from, &sensor, &exitCode))
                return exitCode;
            bool exists = false;
            folder = IsFolderName(TrimmedName(from), &exists);
        } else {
            folder = IsDirectory(from.path);
        }
        if (folder)
            return CopyTree(ctx, args, from, to, sessions);
    }
    OverwritePolicy overwrite(ctx, args.overwrite);
    return CopyOneFile(ctx, from, to, overwrite, "cp").exitCode;
}

} // namespace

void AddCpCommand(CLI::App& app, CliContext& ctx) {
    auto args = std::make_shared<CpArgs>();
    auto* cmd = app.add_subcommand("cp", "Copy files or folders (-r) between this computer and instruments");
    cmd->add_flag("-r,--recursive", args->recursive, "Copy folders with everything in them");
    cmd->add_option("--overwrite", args->overwrite,
                    "Replace existing files without asking (yes) or keep them (no)")
        ->check(CLI::IsMember({"yes", "no"}));
    cmd->add_option("--jobs", args->jobs,
                    "With -r: copy over this many links to the instrument at once (each file still waits "
                    "0.5 s after it)")
        ->check(CLI::Range(1, kMaxJobs));
    cmd->add_option("SRC", args->from, "A file or folder: local, or @HOST:/PATH")->required();
    cmd->add_option("DST", args->to, "Where to: an existing folder, or the new name")->required();
    cmd->callback([&ctx, args] { ctx.exitCode = RunCp(ctx, *args); });
}
