// SPDX-License-Identifier: Apache-2.0
// vexa rm, rmdir [-r], mkdir, mv: changes to the instrument's folders, each one request over the link.
#include "cmd_filesupport.h"

#include "hostsessions.h"
#include "remotename.h"
#include "text.h"

#include <functional>
#include <memory>
#include <vector>

namespace {

// One of FileInfo's folder operations on an operand's instrument name.
using FolderOperation = std::function<bool(const FileOperand& operand)>;

// Runs `operation` on each operand in turn (all on instruments); stops at the first failure.
int RunOnEach(CliContext& ctx, const std::string& verb, const std::vector<std::string>& operands,
              const FolderOperation& operation) {
    std::vector<FileOperand> parsed;
    for (const std::string& text : operands) {
        FileOperand operand;
        if (!ParseFileOperand(ctx, text, &operand))
            return kExitUsage;
        if (!operand.IsRemote()) {
            PrintError(ctx, verb + " " + text + ": works on instrument names (@HOST:/PATH)", 0);
            return kExitUsage;
        }
        parsed.push_back(operand);
    }
    HostSessions sessions;
    for (const FileOperand& operand : parsed) {
        int error = 0;
        if (!sessions.Linked(operand.host, &error)) {
            PrintError(ctx, ToUtf8(operand.host) + ": cannot reach the instrument", error);
            return kExitUnreachable;
        }
        if (!operation(operand))
            return PrintFileInfoError(ctx, verb + " " + operand.text);
    }
    return kExitOk;
}

// Adds `verb`, which runs `operation` on each of its instrument names (`operand` in the help).
CLI::App* AddEachCommand(CLI::App& app, CliContext& ctx, const std::string& verb,
                         const std::string& description, const std::string& operand,
                         FolderOperation operation) {
    auto names = std::make_shared<std::vector<std::string>>();
    auto* cmd = app.add_subcommand(verb, description);
    cmd->add_option(operand, *names, "@HOST:/PATH ...")->required();
    cmd->callback([&ctx, verb, names, operation = std::move(operation)] {
        ctx.exitCode = RunOnEach(ctx, verb, *names, operation);
    });
    return cmd;
}

} // namespace

void AddRmCommand(CLI::App& app, CliContext& ctx) {
    AddEachCommand(app, ctx, "rm", "Delete files on the instrument", "FILE",
                   [](const FileOperand& file) { return FileInfo::Delete(file.Name()); });
}

void AddRmdirCommand(CLI::App& app, CliContext& ctx) {
    auto recursive = std::make_shared<bool>(false);
    auto* cmd = AddEachCommand(
        app, ctx, "rmdir", "Remove folders on the instrument", "FOLDER",
        [recursive](const FileOperand& folder) { return FileInfo::RmDir(folder.Name(), *recursive); });
    cmd->add_flag("-r,--recursive", *recursive, "Remove the folders with everything in them");
}

void AddMkdirCommand(CLI::App& app, CliContext& ctx) {
    AddEachCommand(app, ctx, "mkdir", "Make folders on the instrument", "FOLDER",
                   [](const FileOperand& folder) { return FileInfo::MkDir(folder.Name()); });
}

void AddMvCommand(CLI::App& app, CliContext& ctx) {
    auto names = std::make_shared<std::vector<std::string>>();
    auto* cmd = app.add_subcommand("mv", "Rename or move a file or folder on the instrument");
    cmd->add_option(
           "OLD NEW", *names,
           "@HOST:/OLD and the new name: @HOST:/NEW, /NEW on the same instrument, or a bare name in the "
           "same folder")
        ->required()
        ->expected(2);
    cmd->callback([&ctx, names] {
        const std::string& newText = (*names)[1];
        FileOperand old;
        if (!ParseFileOperand(ctx, (*names)[0], &old)) {
            ctx.exitCode = kExitUsage;
            return;
        }
        // The new name: on the same instrument, absolute, or in the old name's folder.
        std::wstring newPath = FromUtf8(newText);
        if (!newPath.empty() && newPath.front() == L'@') {
            FileOperand target;
            if (!ParseFileOperand(ctx, newText, &target)) {
                ctx.exitCode = kExitUsage;
                return;
            }
            if (target.host != old.host) {
                PrintError(ctx, "mv: a rename never moves a file between instruments (use cp and rm)", 0);
                ctx.exitCode = kExitUsage;
                return;
            }
            newPath = target.path;
        } else if (!newPath.empty() && newPath.front() != L'/') {
            newPath = MakeFilename(FolderOfPath(old.path), newPath, L"");
        }
        if (newPath.empty()) {
            PrintError(ctx, "mv: the new name is empty", 0);
            ctx.exitCode = kExitUsage;
            return;
        }
        ctx.exitCode = RunOnEach(ctx, "mv", {(*names)[0]}, [newPath](const FileOperand& from) {
            return FileInfo::Rename(from.Name(), MakeFilename(L"", newPath, from.host));
        });
    });
}
