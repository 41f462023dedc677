// vexa method show [--json] FILE...: the main settings and run time of methods on this computer or on
// an instrument (@HOST:/PATH).
#include "cmd_filesupport.h"
#include "runcommands.h"

#include "hostsessions.h"
#include "text.h"
#include "timespan.h"
#include "vexafileref.h"
#include "vexamethod.h"
#include "vexamodels.h"
#include "vexasensorobject.h"

#include <iostream>

namespace {

struct MethodShowArgs {
    std::vector<std::string> files;
    bool json = false;
};

nlohmann::ordered_json MethodJson(const std::string& file, const VexaMethod& method) {
    nlohmann::ordered_json out;
    out["file"] = file;
    out["description"] = ToUtf8(method.getDescription());
    out["model"] = method.getModel();
    out["modelName"] = ToUtf8(Vexa::GetModelName(method.getModel()));
    out["accessory"] = method.getAccessory();
    out["accessoryName"] = ToUtf8(Vexa::GetAccessoryName(method.getAccessory(), method.getModel()));
    out["methodMode"] = ToUtf8(Vexa::GetMethodModeName(method.getMethodMode()));
    out["scanMode"] = ToUtf8(Vexa::GetScanModeName(method.getScanMode()));
    out["concentrator"] = ToUtf8(Vexa::GetConcentratorName(method.getConcentrator()));
    out["runTimeSeconds"] = method.GetRunTimeSeconds();
    out["runTime"] = ToUtf8(FormatTimeSpan(method.GetRunTimeSeconds()));
    return out;
}

void PrintMethod(const std::string& file, const VexaMethod& method) {
    std::cout << file << "\n"
              << "  description:         " << ToUtf8(method.getDescription()) << "\n"
              << "  model:               " << ToUtf8(Vexa::GetModelName(method.getModel())) << "\n"
              << "  sample input device: "
              << ToUtf8(Vexa::GetAccessoryName(method.getAccessory(), method.getModel())) << "\n"
              << "  mode:                " << ToUtf8(Vexa::GetMethodModeName(method.getMethodMode())) << "\n"
              << "  collection mode:     " << ToUtf8(Vexa::GetScanModeName(method.getScanMode())) << "\n"
              << "  concentrator:        " << ToUtf8(Vexa::GetConcentratorName(method.getConcentrator()))
              << "\n"
              << "  run time (M:S):      " << ToUtf8(FormatTimeSpan(method.GetRunTimeSeconds())) << "\n";
}

// Reads one method; prints why not and returns the exit code when it cannot.
int ReadMethod(CliContext& ctx, HostSessions& sessions, const std::string& text, VexaMethod* method) {
    FileOperand file;
    if (!ParseFileOperand(ctx, text, &file))
        return kExitUsage;
    int error = 0;
    if (file.IsRemote() && !sessions.Linked(file.host, &error)) {
        PrintError(ctx, text + ": cannot reach the instrument", error);
        return kExitUnreachable;
    }
    VexaFileRef ref;
    if (!ref.Open(file.Name())) {
        PrintError(ctx, text + ": not a valid method", ref.GetLastError(), ref.GetLastErrorText());
        return kExitFailed;
    }
    *method = VexaMethod(ref);
    if (!method->IsValid()) {
        PrintError(ctx, text + ": not a valid method", 22, method->GetInvalidReason());
        return kExitFailed;
    }
    return kExitOk;
}

int RunMethodShow(CliContext& ctx, const MethodShowArgs& args) {
    HostSessions sessions;
    nlohmann::ordered_json all = nlohmann::ordered_json::array();
    int result = kExitOk;
    for (const std::string& text : args.files) {
        VexaMethod method;
        if (const int code = ReadMethod(ctx, sessions, text, &method)) {
            // The worst outcome wins: usage and unreachable over a file that is not a method.
            result = std::max(result, code);
            continue;
        }
        if (args.json || ctx.options.json)
            all.push_back(MethodJson(text, method));
        else
            PrintMethod(text, method);
    }
    if (args.json || ctx.options.json)
        std::cout << all.dump(2) << "\n";
    return result;
}

} // namespace

void AddMethodCommand(CLI::App& app, CliContext& ctx) {
    auto* method = app.add_subcommand("method", "Work with method files");
    method->require_subcommand(1);
    auto args = std::make_shared<MethodShowArgs>();
    auto* show = method->add_subcommand("show", "Print the main settings and run time of methods");
    show->add_flag("--json", args->json, "Print the methods as a JSON array");
    show->add_option("FILE", args->files, "Method files, local or @HOST:/PATH")->required();
    show->callback([&ctx, args] { ctx.exitCode = RunMethodShow(ctx, *args); });
    AddMethodRunCommands(method, ctx);
}
