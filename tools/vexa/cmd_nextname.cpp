// SPDX-License-Identifier: Apache-2.0
// vexa next-name: the next free numbered file name in a folder kind, on the PC and the instrument.
#include "cli.h"

#include "programenvironment.h"
#include "text.h"
#include "vexasensorobject.h"

#include <cstdlib>
#include <iostream>

void AddNextNameCommand(CLI::App& app, CliContext& ctx) {
    struct Args {
        std::string root, host, prefix, extension;
        int kind = 0, digits = 3;
    };
    auto args = std::make_shared<Args>();
    auto* cmd = app.add_subcommand("next-name", "Propose the next numbered file name (e.g. Run008.vxs)");
    cmd->add_option("--root", args->root, "The workstation data root (default: the suite's data folder)");
    cmd->add_option("HOST", args->host, "The instrument")->required();
    cmd->add_option("KIND", args->kind, "Folder kind 0-14 (1 methods, 2 tunes, 4 data, ...)")
        ->required()
        ->check(CLI::Range(0, 14));
    cmd->add_option("PREFIX", args->prefix, "Name stem, optionally with a sub-folder (Sub/Run)")->required();
    cmd->add_option("EXT", args->extension, "Extension (vxs)")->required();
    cmd->add_option("DIGITS", args->digits, "Number of digits")->required()->check(CLI::Range(1, 18));
    cmd->callback([&ctx, args] {
        if (!args->root.empty())
            SetProcessEnvironment("VEXA_DATA_ROOT", args->root);
        CliSession session;
        std::wstring host = HostOperand(args->host);
        if (!session.Create(host)) {
            PrintError(ctx, args->host + ": not an instrument address", 0);
            ctx.exitCode = kExitUsage;
            return;
        }
        // An unreachable instrument contributes nothing: the name then rests on the PC's files.
        int error = 0;
        if (!session.Connect(host, &error) && ctx.options.verbose)
            PrintError(ctx, args->host + ": instrument not reached, scanning the PC only", error);
        std::wstring name = session.Sensor()->GetNextFileName(args->kind, FromUtf8(args->prefix),
                                                              FromUtf8(args->extension), args->digits);
        if (name.empty()) {
            PrintError(ctx, "no name could be formed for these arguments", 0);
            ctx.exitCode = kExitFailed;
            return;
        }
        std::cout << ToUtf8(name) << "\n";
    });
}
