// SPDX-License-Identifier: Apache-2.0
// vexa ping HOST: connect, send the hello, close.
#include "cli.h"

#include "pumpwait.h"
#include "text.h"
#include "vexasensorobject.h"
#include "winsockerror.h"

#include <nlohmann/json.hpp>

#include <iostream>

void AddPingCommand(CLI::App& app, CliContext& ctx) {
    auto* cmd = app.add_subcommand("ping", "Check that an instrument answers on its link (port 4840)");
    auto host = std::make_shared<std::string>();
    cmd->add_option("HOST", *host, "The instrument's address or host name")->required();
    cmd->callback([&ctx, host] {
        std::wstring name = HostOperand(*host);
        if (!ISensorAddress(name).IsValid()) {
            PrintError(ctx, *host + ": not a valid instrument address", 0);
            ctx.exitCode = kExitUsage;
            return;
        }
        CliSession session;
        int error = 0;
        uint32_t start = TickCount();
        bool ok = session.Connect(name, &error);
        uint32_t elapsed = TickCount() - start;
        if (ctx.options.json) {
            nlohmann::json out = {{"host", *host}, {"reachable", ok}, {"milliseconds", elapsed}};
            if (!ok)
                out["error"] = {{"number", error}, {"meaning", ToUtf8(ErrorMeaning(error))}};
            std::cout << out.dump() << "\n";
        } else if (ok && !ctx.options.quiet) {
            std::cout << *host << ": the instrument answers (link open and hello sent in " << elapsed
                      << " ms)\n";
        }
        if (!ok) {
            if (!ctx.options.json)
                PrintError(ctx, *host + ": cannot reach the instrument", error);
            ctx.exitCode =
                error == kErrInvalid && !ISensorAddress(name).IsValid() ? kExitUsage : kExitUnreachable;
        }
    });
}
