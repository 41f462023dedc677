// SPDX-License-Identifier: Apache-2.0
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

constexpr const char* kNotSet = "not set";

// The settings shown, each with the file's name of the setting it reads.
struct ShownSetting {
    const char* label;   // text output
    const char* key;     // JSON output
    const wchar_t* file; // the setting in the file
    std::string (*value)(const VexaMethod& method);
};

const ShownSetting kShownSettings[] = {
    {"description:        ", "description", L"description",
     [](const VexaMethod& m) { return ToUtf8(m.getDescription()); }},
    {"model:              ", "modelName", L"model",
     [](const VexaMethod& m) { return ToUtf8(Vexa::GetModelName(m.getModel())); }},
    {"sample input device:", "accessoryName", L"accessory",
     [](const VexaMethod& m) { return ToUtf8(Vexa::GetAccessoryName(m.getAccessory(), m.getModel())); }},
    {"mode:               ", "methodMode", L"methodMode",
     [](const VexaMethod& m) { return ToUtf8(Vexa::GetMethodModeName(m.getMethodMode())); }},
    {"collection mode:    ", "scanMode", L"scanMode",
     [](const VexaMethod& m) { return ToUtf8(Vexa::GetScanModeName(m.getScanMode())); }},
    {"concentrator:       ", "concentrator", L"concentrator",
     [](const VexaMethod& m) { return ToUtf8(Vexa::GetConcentratorName(m.getConcentrator())); }},
};

nlohmann::ordered_json MethodJson(const std::string& file, const VexaMethod& method) {
    nlohmann::ordered_json out;
    out["file"] = file;
    for (const ShownSetting& setting : kShownSettings)
        out[setting.key] =
            method.IsSet(setting.file) ? nlohmann::ordered_json(setting.value(method)) : nullptr;
    out["model"] = method.IsSet(L"model") ? nlohmann::ordered_json(method.getModel()) : nullptr;
    out["accessory"] = method.IsSet(L"accessory") ? nlohmann::ordered_json(method.getAccessory()) : nullptr;
    // The run time follows the event table, whatever else is missing.
    out["runTimeSeconds"] = method.GetRunTimeSeconds();
    out["runTime"] = ToUtf8(FormatTimeSpan(method.GetRunTimeSeconds()));
    std::vector<std::string> unset;
    for (const std::wstring& name : method.GetUnsetSettings())
        unset.push_back(ToUtf8(name));
    out["notSet"] = unset;
    return out;
}

void PrintMethod(const std::string& file, const VexaMethod& method) {
    std::cout << file << "\n";
    for (const ShownSetting& setting : kShownSettings)
        std::cout << "  " << setting.label << " "
                  << (method.IsSet(setting.file) ? setting.value(method) : kNotSet) << "\n";
    std::cout << "  run time (M:S):      " << ToUtf8(FormatTimeSpan(method.GetRunTimeSeconds())) << "\n";
    std::string others;
    for (const std::wstring& name : method.GetUnsetSettings())
        others += (others.empty() ? "" : ", ") + ToUtf8(name);
    if (!others.empty())
        std::cout << "  not set:             " << others << "\n";
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
