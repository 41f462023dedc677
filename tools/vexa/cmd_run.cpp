// SPDX-License-Identifier: Apache-2.0
// vexa run [--timeout S] HOST COMMAND...: runs a command on the instrument and prints its output.
#include "cmd_filesupport.h"

#include "text.h"

#include <iostream>
#include <memory>

namespace {

struct RunArgs {
    std::string host;
    std::vector<std::string> words;
    int timeout = 30;
};

int RunCommandOn(CliContext& ctx, const RunArgs& args) {
    const FileOperand instrument = InstrumentOperand(args.host);
    CliSession session;
    if (int code = ConnectForLink(ctx, session, instrument))
        return code;
    std::string command;
    for (const std::string& word : args.words)
        command += (command.empty() ? "" : " ") + word;
    std::wstring output;
    if (!FileInfo::RunCommand(instrument.host, FromUtf8(command), output, int64_t(args.timeout) * 1000000))
        return PrintFileInfoError(ctx, "run " + command);
    if (ctx.options.json) {
        std::cout << nlohmann::ordered_json{{"command", command}, {"output", ToUtf8(output)}}.dump() << "\n";
    } else {
        std::cout << ToUtf8(output);
        if (!output.empty() && output.back() != L'\n')
            std::cout << "\n";
    }
    return kExitOk;
}

} // namespace

void AddRunCommand(CLI::App& app, CliContext& ctx) {
    auto args = std::make_shared<RunArgs>();
    auto* cmd = app.add_subcommand("run", "Run a command on the instrument and print its output");
    cmd->add_option("--timeout", args->timeout, "Seconds the instrument may take (default 30)")
        ->check(CLI::Range(0, 86400));
    cmd->add_option("HOST", args->host, "The instrument")->required();
    cmd->add_option("COMMAND", args->words, "The command and its arguments")->required();
    cmd->callback([&ctx, args] { ctx.exitCode = RunCommandOn(ctx, *args); });
}
