// SPDX-License-Identifier: Apache-2.0
// vexa stat [--preview N] [--json] @HOST:/PATH: one file on the instrument, with the start of its
// content when asked.
#include "cmd_filesupport.h"

#include "text.h"
#include "vexafilelist.h"

#include <cstdio>
#include <iostream>
#include <vector>

namespace {

struct StatArgs {
    std::string file;
    int preview = 0;
    bool json = false;
};

std::string Hex(const std::vector<uint8_t>& bytes) {
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (uint8_t b : bytes) {
        out += digits[b >> 4];
        out += digits[b & 15];
    }
    return out;
}

// Printable ASCII as it is, line ends kept, anything else as '.'.
std::string Printable(const std::vector<uint8_t>& bytes) {
    std::string out;
    for (uint8_t b : bytes)
        out += (b == '\n' || b == '\t' || (b >= 32 && b < 127)) ? char(b) : '.';
    return out;
}

int RunStat(CliContext& ctx, const StatArgs& args) {
    FileOperand file;
    if (!ParseFileOperand(ctx, args.file, &file))
        return kExitUsage;
    if (!file.IsRemote()) {
        PrintError(ctx, args.file + ": stat describes instrument files (@HOST:/PATH)", 0);
        return kExitUsage;
    }
    CliSession session;
    if (int code = ConnectForLink(ctx, session, file))
        return code;
    FileInfo entry;
    std::vector<uint8_t> preview(size_t(args.preview));
    int previewSize = args.preview;
    if (!FileInfo::GetFileInfo(file.Name(), &entry, args.preview > 0 ? preview.data() : nullptr,
                               &previewSize))
        return PrintFileInfoError(ctx, "stat " + args.file);
    preview.resize(args.preview > 0 ? size_t(previewSize) : 0);

    if (args.json || ctx.options.json) {
        nlohmann::ordered_json out = EntryJson(entry);
        if (args.preview > 0) {
            out["previewSize"] = preview.size();
            out["preview"] = Hex(preview);
        }
        std::cout << out.dump() << "\n";
        return kExitOk;
    }
    std::cout << "name:     " << ToUtf8(entry.name) << "\n"
              << "type:     " << (IsFolderEntry(entry) ? "folder" : "file") << "\n"
              << "size:     " << entry.size << "\n"
              << "created:  " << EntryTimeText(entry.times[0]) << "\n"
              << "accessed: " << EntryTimeText(entry.times[1]) << "\n"
              << "modified: " << EntryTimeText(entry.times[2]) << "\n";
    if (args.preview > 0)
        std::cout << "preview:  " << preview.size() << " bytes\n" << Printable(preview) << "\n";
    return kExitOk;
}

} // namespace

void AddStatCommand(CLI::App& app, CliContext& ctx) {
    auto args = std::make_shared<StatArgs>();
    auto* cmd = app.add_subcommand("stat", "Describe one file on the instrument");
    cmd->add_option("--preview", args->preview, "Also show the first N bytes of the file")
        ->check(CLI::Range(0, 65536));
    cmd->add_flag("--json", args->json, "Print the entry (and the preview as hex) as JSON");
    cmd->add_option("FILE", args->file, "@HOST:/PATH")->required();
    cmd->callback([&ctx, args] { ctx.exitCode = RunStat(ctx, *args); });
}
