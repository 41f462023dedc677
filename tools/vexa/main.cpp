// SPDX-License-Identifier: Apache-2.0
// vexa: the instrument's files and status from a terminal, through the module's own back ends.
#include "cli.h"
#include "retryoption.h"
#include "vexaversion.h"

#include "programenvironment.h"

#include <iostream>
#include <string>
#include <vector>

int main(int argc, char** argv) {
    CliContext ctx;
    CLI::App app{
        "vexa - work with a VEXARON instrument from a terminal.\n"
        "Remote files are named @HOST:/PATH, e.g. @10.0.0.5:/Data/run1.vxs.\n"
        "Exit codes: 0 success, 1 the operation failed, 2 usage, 3 the instrument could not be reached."};
    app.set_help_all_flag("--help-all", "Show the help of every command");
    app.set_version_flag("--version", VexaVersionLine("vexa"), "Print the version and exit");
    app.add_flag("--json", ctx.options.json, "Print machine-readable results");
    app.add_flag("-q,--quiet", ctx.options.quiet, "Print nothing but results and errors");
    app.add_flag("-v,--verbose", ctx.options.verbose, "Say more about what happens");
    app.add_option("--retry", RetryOption(),
                   "Try a file again up to N times when its link to the instrument fails, once the "
                   "instrument is back (default: the setting Transfers/Retries, else 3; 0: never)")
        ->check(CLI::Range(0, 1000));
    app.require_subcommand(1);
    // Local paths start with "/" under Wine and in MSYS shells: they are operands, never "/option"s.
    app.allow_windows_style_options(false);

    for (auto add : CliCommands())
        add(app, ctx);

    UseBinaryStandardStreams();
    std::vector<std::string> arguments = Utf8Arguments(argc, argv);
    std::vector<char*> pointers;
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    try {
        app.parse(static_cast<int>(pointers.size()), pointers.data());
    } catch (const CLI::CallForHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForAllHelp& e) {
        return app.exit(e);
    } catch (const CLI::CallForVersion& e) {
        return app.exit(e);
    } catch (const CLI::ParseError& e) {
        app.exit(e);
        return kExitUsage;
    }
    return ctx.exitCode;
}
