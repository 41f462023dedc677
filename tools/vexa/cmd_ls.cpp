// SPDX-License-Identifier: Apache-2.0
// vexa ls [--all] [--pattern GLOB] [--json] @HOST:/PATH: one instrument folder.
#include "cmd_filesupport.h"
#include "winsockerror.h"

#include "text.h"
#include "vexafilelist.h"
#include "vexasensorobject.h"

#include <algorithm>
#include <iostream>

namespace {

struct LsArgs {
    std::string folder, pattern;
    bool all = false, json = false;
};

void PrintText(std::vector<FileInfo> entries) {
    // The listing as the file manager shows it: the way up, folders, then files, by name.
    std::stable_sort(entries.begin(), entries.end(), [](const FileInfo& a, const FileInfo& b) {
        return CVexaFileList::ComesBefore(a, b, CVexaFileList::kSortName, false);
    });
    for (const FileInfo& entry : entries) {
        const bool folder = IsFolderEntry(entry);
        std::string size = folder ? "-" : std::to_string(entry.size);
        std::cout << (folder ? 'd' : '-') << ' ' << std::string(size.size() < 12 ? 12 - size.size() : 0, ' ')
                  << size << "  "
                  << (entry.times[2] != 0 ? EntryTimeText(entry.times[2]) : std::string(16, ' ')) << "  "
                  << ToUtf8(entry.name) << (folder && entry.name != L".." ? "/" : "") << "\n";
    }
}

int RunLs(CliContext& ctx, const LsArgs& args) {
    FileOperand folder;
    if (!ParseFileOperand(ctx, args.folder, &folder))
        return kExitUsage;
    if (!folder.IsRemote()) {
        PrintError(ctx, args.folder + ": ls lists instrument folders (@HOST:/PATH)", 0);
        return kExitUsage;
    }
    CliSession session;
    if (int code = ConnectForLink(ctx, session, folder))
        return code;
    std::vector<FileInfo> entries;
    // The listing option: the instrument then shows its hidden entries too.
    if (!FileInfo::ReadSensorDir(folder.host, folder.path, entries, FromUtf8(args.pattern),
                                 args.all ? 1u : 0u))
        return PrintFileInfoError(ctx, "ls " + args.folder);
    // A listing that the link cut short reads as complete to the back end: the link says otherwise.
    if (!session.Sensor()->IsLinkOpen()) {
        const int error = session.Sensor()->GetLastLinkError();
        PrintError(ctx, "ls " + args.folder + ": the listing was cut short",
                   error ? error : int(kWsaNotConn));
        return kExitUnreachable;
    }
    if (args.json || ctx.options.json) {
        nlohmann::ordered_json out = nlohmann::ordered_json::array();
        for (const FileInfo& entry : entries)
            out.push_back(EntryJson(entry));
        std::cout << out.dump() << "\n";
    } else {
        PrintText(entries);
    }
    return kExitOk;
}

} // namespace

void AddLsCommand(CLI::App& app, CliContext& ctx) {
    auto args = std::make_shared<LsArgs>();
    auto* cmd = app.add_subcommand("ls", "List a folder on the instrument");
    cmd->add_flag("-a,--all", args->all, "Show hidden entries too");
    cmd->add_option("--pattern", args->pattern,
                    "Only names matching this pattern (*.mth; several joined by ;)");
    cmd->add_flag("--json", args->json, "Print the entries as the instrument returned them, \"..\" included");
    cmd->add_option("FOLDER", args->folder, "@HOST:/PATH")->required();
    cmd->callback([&ctx, args] { ctx.exitCode = RunLs(ctx, *args); });
}
