// vexa cp [-r] SRC DST: files or whole folders between this computer and instruments, either way,
// through the folder list's copy and the copy job.
#include "cmd_filesupport.h"

#include "paths.h"
#include "remotename.h"
#include "systemaccess.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"

#include <iostream>

namespace {

struct CpArgs {
    std::string from, to, overwrite;
    bool recursive = false;
};

std::wstring WithoutTrailingSlash(std::wstring path) {
    while (path.size() > 1 && path.back() == L'/')
        path.pop_back();
    return path;
}

std::wstring LastPart(const std::wstring& path) {
    const std::wstring trimmed = WithoutTrailingSlash(path);
    const size_t cut = trimmed.find_last_of(L'/');
    return cut == std::wstring::npos ? trimmed : trimmed.substr(cut + 1);
}

// The operand's full name without a trailing '/' (the root keeps its own).
std::wstring TrimmedName(const FileOperand& operand) {
    const std::wstring path = WithoutTrailingSlash(operand.path);
    return operand.IsRemote() ? L"@" + operand.host + L":" + path : path;
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
    PrintError(ctx, Narrow(operand.host) + ": cannot reach the instrument (folders are copied over its link)",
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
        target = JoinPath(target, LastPart(fromFolder), L'/');
    const std::wstring targetName = to.IsRemote() ? L"@" + to.host + L":" + target : target;
    bool targetExists = false;
    const bool targetIsFolder = IsFolderName(targetName, &targetExists);
    if (targetExists && !targetIsFolder) {
        PrintError(ctx, "cp " + args.from + ": " + Narrow(targetName) + " is a file", 0);
        return kExitFailed;
    }
    if (!targetExists && !FileInfo::MkDir(targetName)) {
        PrintFileError(ctx, "cp " + args.from + ": cannot make " + Narrow(targetName), FileInfo::LastError(),
                       FileInfo::LastErrorText());
        return ExitCodeFor(FileInfo::LastError());
    }

    CVexaFileList source(fromSensor, CVexaFileList::FolderArgument(from.host, fromFolder));
    if (source.LastError() != 0) {
        PrintFileError(ctx, "cp " + args.from, source.LastError(), source.LastErrorText());
        return ExitCodeFor(source.LastError());
    }
    CVexaFileList destination(toSensor, CVexaFileList::FolderArgument(to.host, target));
    OverwritePolicy overwrite(ctx, args.overwrite);
    CopyJob job(source, destination);
    switch (job.Build(source.Entries(), CSystemAccess::Accessible(0), overwrite.AsQuestion())) {
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
    bool complete = false;
    {
        TerminalProgress progress(ctx);
        complete = job.Run(&progress);
    }
    int code = kExitOk;
    for (const CopyJob::Failure& failure : job.Failures()) {
        PrintFileError(ctx, "cp " + Narrow(failure.name), failure.error, failure.text);
        code = std::max(code, ExitCodeFor(failure.error));
    }
    if (job.WasCancelled()) {
        PrintError(
            ctx, "cp " + args.from + ": cancelled after " + std::to_string(job.CopiedCount()) + " files", 0);
        return kExitFailed;
    }
    if (ctx.options.verbose)
        std::cerr << "vexa: cp " << args.from << " -> " << Narrow(targetName) << ": " << job.CopiedCount()
                  << " of " << job.FileCount() << " files copied over the link\n";
    return complete ? kExitOk : std::max(code, int(kExitFailed));
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
    cmd->add_option("SRC", args->from, "A file or folder: local, or @HOST:/PATH")->required();
    cmd->add_option("DST", args->to, "Where to: an existing folder, or the new name")->required();
    cmd->callback([&ctx, args] { ctx.exitCode = RunCp(ctx, *args); });
}
