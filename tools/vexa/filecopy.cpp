// SPDX-License-Identifier: Apache-2.0
#include "filecopy.h"

#include "cmd_filesupport.h"
#include "hostsessions.h"
#include "interruptguard.h"
#include "paths.h"
#include "remotename.h"
#include "retryoption.h"
#include "stdiofile.h"
#include "systemaccess.h"
#include "terminalprogress.h"
#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"

#include <iostream>
#include <optional>

namespace {

// What one copy knows of its two sides before any byte moves.
struct CopyPlan {
    std::string what; // "<verb> <source>" for messages
    FileInfo entry;   // the source, named by its path's last part
    VEXASensorObject* sourceSensor = nullptr;
    VEXASensorObject* destinationSensor = nullptr;
    bool destinationLinked = true;
    bool entryKnown = false;              // the source's size and time were read (not over FTP)
    std::wstring folder, name, finalName; // where the file goes
};

// The source: what it is and how large, from its own side. kExitOk or the exit code.
int DescribeSource(const CliContext& ctx, HostSessions& sessions, const FileOperand& source, CopyPlan& plan) {
    plan.entry.name = LastPathPart(source.path);
    if (source.IsRemote()) {
        int error = 0;
        plan.sourceSensor = sessions.Linked(source.host, &error);
        if (plan.sourceSensor) {
            if (!FileInfo::GetFileInfo(source.Name(), &plan.entry, nullptr, nullptr)) {
                PrintFileError(ctx, plan.what, FileInfo::LastError(), FileInfo::LastErrorText());
                return ExitCodeFor(FileInfo::LastError());
            }
            plan.entry.name = LastPathPart(source.path);
            plan.entryKnown = true;
        } else if (ctx.options.verbose) {
            PrintError(ctx, ToUtf8(source.host) + ": link not available, reading over FTP", error);
        }
    } else if (!FileInfo::GetFileInfo(source.path, &plan.entry, nullptr, nullptr)) {
        PrintFileError(ctx, plan.what, FileInfo::LastError(), FileInfo::LastErrorText());
        return kExitFailed;
    } else {
        plan.entryKnown = true;
    }
    if (IsFolderEntry(plan.entry)) {
        PrintError(ctx, plan.what + ": a folder (use cp -r)", 0);
        return kExitFailed;
    }
    return kExitOk;
}

// The access rule of the file manager: data files cross between the sides only with level 0.
bool MayCross(const FileOperand& source, const FileOperand& destination, const std::wstring& name) {
    if (CSystemAccess::Accessible(0))
        return true;
    if (source.IsRemote() && !destination.IsRemote())
        return !IsInstrumentDataFileName(name);
    if (!source.IsRemote() && destination.IsRemote())
        return !IsWorkstationDataFileName(name);
    return true;
}

// The destination: a folder to copy into, or the new file's name. kExitOk or the exit code.
int PlaceDestination(const CliContext& ctx, HostSessions& sessions, const FileOperand& destination,
                     CopyPlan& plan) {
    bool intoFolder = !destination.path.empty() && destination.path.back() == L'/';
    if (destination.IsRemote()) {
        int error = 0;
        plan.destinationSensor = sessions.Linked(destination.host, &error);
        plan.destinationLinked = plan.destinationSensor != nullptr;
        if (!plan.destinationLinked && ctx.options.verbose)
            PrintError(ctx, ToUtf8(destination.host) + ": link not available, writing over FTP", error);
        FileInfo existing;
        if (plan.destinationLinked && !intoFolder &&
            FileInfo::GetFileInfo(destination.Name(), &existing, nullptr, nullptr))
            intoFolder = IsFolderEntry(existing);
    } else if (!intoFolder) {
        intoFolder = IsDirectory(destination.path);
    }
    plan.folder = intoFolder ? WithoutTrailingSlash(destination.path) : FolderOfPath(destination.path);
    plan.name = intoFolder ? plan.entry.name : LastPathPart(destination.path);
    if (plan.folder.empty() || plan.name.empty()) {
        PrintError(ctx, destination.text + ": no file name to write", 0);
        return kExitUsage;
    }
    plan.finalName = MakeFilename(plan.folder, plan.name, destination.host);
    return kExitOk;
}

// An existing file is replaced only when the user says so. Empty to go on, else how the copy ends.
std::optional<CopyOutcome> SettleExisting(const CliContext& ctx, const FileOperand& destination,
                                          OverwritePolicy& overwrite, const CopyPlan& plan) {
    OverwriteCase question{plan.entry, std::nullopt, plan.finalName};
    question.replacement.name = plan.name;
    bool exists = false;
    if (!destination.IsRemote() || plan.destinationLinked) {
        FileInfo existing;
        exists = FileInfo::GetFileInfo(plan.finalName, &existing, nullptr, nullptr);
        if (exists && IsFolderEntry(existing)) {
            PrintError(ctx, plan.what + ": " + ToUtf8(plan.finalName) + " is a folder", 0);
            return CopyOutcome{kExitFailed};
        }
        if (exists && plan.entryKnown)
            question.existing = existing; // both sides known: shown side by side
    } else {
        // Over FTP only whether it opens is known.
        StdioFile probe;
        exists = probe.Open(plan.finalName, L"rb");
    }
    if (!exists)
        return std::nullopt;
    switch (overwrite.Ask(question)) {
    case OverwriteAnswer::kYes:
    case OverwriteAnswer::kYesToAll:
        return std::nullopt;
    case OverwriteAnswer::kNo:
    case OverwriteAnswer::kNoToAll:
        if (!ctx.options.quiet)
            std::cerr << "vexa: " << ToUtf8(plan.finalName) << " exists; skipped\n";
        return CopyOutcome{kExitOk, true};
    case OverwriteAnswer::kCancel:
        break;
    }
    if (!overwrite.Refused())
        PrintError(ctx, plan.what + ": cancelled", 0);
    return CopyOutcome{kExitFailed};
}

} // namespace

CopyOutcome CopyOneFile(const CliContext& ctx, const FileOperand& source, const FileOperand& destination,
                        OverwritePolicy& overwrite, const std::string& verb) {
    HostSessions sessions;
    CopyPlan plan;
    plan.what = verb + " " + source.text;
    if (int code = DescribeSource(ctx, sessions, source, plan))
        return CopyOutcome{code};
    if (!MayCross(source, destination, plan.entry.name)) {
        PrintError(ctx,
                   plan.what +
                       ": copying data files between the instrument and this computer needs access level 0",
                   0);
        return CopyOutcome{kExitFailed};
    }
    if (int code = PlaceDestination(ctx, sessions, destination, plan))
        return CopyOutcome{code};
    if (std::optional<CopyOutcome> settled = SettleExisting(ctx, destination, overwrite, plan))
        return *settled;

    InterruptGuard interrupts;
    TerminalProgress progress(ctx);
    CVexaFileList sourceList(plan.sourceSensor,
                             CVexaFileList::FolderArgument(source.host, FolderOfPath(source.path)), false);
    CVexaFileList destinationList(plan.destinationSensor,
                                  CVexaFileList::FolderArgument(destination.host, plan.folder), false);
    if (!TransferRetryFor().CopyIn(destinationList, plan.entry, sourceList, &progress, plan.name)) {
        PrintFileError(ctx, plan.what, destinationList.LastError(), destinationList.LastErrorText());
        return CopyOutcome{ExitCodeFor(destinationList.LastError())};
    }
    progress.SetDone();
    if (ctx.options.verbose)
        std::cerr << "vexa: " << source.text << " -> " << ToUtf8(plan.finalName) << " over "
                  << ToUtf8(destinationList.LastTransport()) << " (" << progress.BytesMoved() << " bytes)\n";
    return {};
}
