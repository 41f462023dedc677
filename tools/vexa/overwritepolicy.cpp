// SPDX-License-Identifier: Apache-2.0
#include "overwritepolicy.h"

#include "cmd_filesupport.h"
#include "text.h"

#include <iostream>
#include <sstream>

#include <unistd.h>

namespace {

std::string DescribeSide(const FileInfo& entry, bool newer) {
    std::string text = entry.IsFolder() ? "folder" : std::to_string(entry.size) + " bytes";
    text += entry.GetTime() == 0 ? ", time unknown" : ", modified " + EntryTimeText(entry.GetTime());
    if (newer)
        text += " (newer)";
    return text;
}

} // namespace

OverwritePolicy::OverwritePolicy(const CliContext& ctx, const std::string& option)
    : m_ctx(ctx), m_terminal(isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0) {
    if (option == "yes")
        m_fixed = OverwriteAnswer::kYes;
    else if (option == "no")
        m_fixed = OverwriteAnswer::kNo;
}

std::string OverwritePolicy::QuestionText(const OverwriteCase& overwrite) {
    const bool folder = overwrite.replacement.IsFolder();
    std::ostringstream text;
    text << "vexa: " << (folder ? "folder " : "") << ToUtf8(overwrite.target) << " exists.\n";
    if (overwrite.existing) {
        const int newer = CompareModified(*overwrite.existing, overwrite.replacement);
        text << "  existing:     " << DescribeSide(*overwrite.existing, newer < 0) << "\n"
             << "  replace with: " << DescribeSide(overwrite.replacement, newer > 0) << "\n";
    }
    text << (folder ? "Copy into it?" : "Overwrite?") << " [y]es, [n]o, [a]ll, [N]one, [c]ancel: ";
    return text.str();
}

OverwriteAnswer OverwritePolicy::Ask(const OverwriteCase& overwrite) {
    if (m_fixed)
        return *m_fixed;
    if (!m_terminal) {
        PrintError(m_ctx, ToUtf8(overwrite.target) + " exists; pass --overwrite yes or --overwrite no", 0);
        m_refused = true;
        return OverwriteAnswer::kCancel;
    }
    for (int attempt = 0; attempt < 10; ++attempt) {
        std::cerr << QuestionText(overwrite) << std::flush;
        std::string reply;
        if (!std::getline(std::cin, reply))
            return OverwriteAnswer::kCancel;
        if (reply == "y" || reply == "yes")
            return OverwriteAnswer::kYes;
        if (reply == "n" || reply == "no")
            return OverwriteAnswer::kNo;
        if (reply == "a" || reply == "all")
            return OverwriteAnswer::kYesToAll;
        if (reply == "N" || reply == "none")
            return OverwriteAnswer::kNoToAll;
        if (reply == "c" || reply == "cancel")
            return OverwriteAnswer::kCancel;
    }
    return OverwriteAnswer::kCancel;
}

OverwriteQuestion OverwritePolicy::AsQuestion() {
    return [this](const OverwriteCase& overwrite) { return Ask(overwrite); };
}
