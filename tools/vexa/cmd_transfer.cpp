// SPDX-License-Identifier: Apache-2.0
// vexa get REMOTE LOCAL, vexa put LOCAL REMOTE: one file between this computer and an instrument.
#include "cmd_filesupport.h"

#include "filecopy.h"

#include <memory>

namespace {

struct TransferArgs {
    std::string from, to, overwrite;
};

int RunTransfer(CliContext& ctx, const TransferArgs& args, bool toInstrument) {
    FileOperand from, to;
    if (!ParseFileOperand(ctx, args.from, &from) || !ParseFileOperand(ctx, args.to, &to))
        return kExitUsage;
    if (from.IsRemote() == toInstrument || to.IsRemote() != toInstrument) {
        PrintError(ctx,
                   toInstrument ? "put copies a local file to @HOST:/PATH"
                                : "get copies @HOST:/PATH to a local file",
                   0);
        return kExitUsage;
    }
    OverwritePolicy overwrite(ctx, args.overwrite);
    return CopyOneFile(ctx, from, to, overwrite, toInstrument ? "put" : "get").exitCode;
}

void AddTransfer(CLI::App& app, CliContext& ctx, bool toInstrument) {
    auto args = std::make_shared<TransferArgs>();
    auto* cmd = toInstrument ? app.add_subcommand("put", "Copy a file to the instrument")
                             : app.add_subcommand("get", "Copy a file from the instrument");
    cmd->add_option("--overwrite", args->overwrite,
                    "Replace an existing file without asking (yes) or keep it (no)")
        ->check(CLI::IsMember({"yes", "no"}));
    if (toInstrument) {
        cmd->add_option("LOCAL", args->from, "The file on this computer")->required();
        cmd->add_option("REMOTE", args->to, "@HOST:/PATH (a folder ending in / keeps the name)")->required();
    } else {
        cmd->add_option("REMOTE", args->from, "@HOST:/PATH")->required();
        cmd->add_option("LOCAL", args->to, "The file or folder on this computer")->required();
    }
    cmd->callback([&ctx, args, toInstrument] { ctx.exitCode = RunTransfer(ctx, *args, toInstrument); });
}

} // namespace

void AddGetCommand(CLI::App& app, CliContext& ctx) {
    AddTransfer(app, ctx, false);
}

void AddPutCommand(CLI::App& app, CliContext& ctx) {
    AddTransfer(app, ctx, true);
}
