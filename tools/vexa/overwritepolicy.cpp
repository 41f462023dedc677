#include "overwritepolicy.h"

#include "text.h"

#include <iostream>

#include <unistd.h>

OverwritePolicy::OverwritePolicy(const CliContext& ctx, const std::string& option)
    : m_ctx(ctx), m_terminal(isatty(STDIN_FILENO) != 0 && isatty(STDERR_FILENO) != 0) {
    if (option == "yes")
        m_fixed = OverwriteAnswer::kYes;
    else if (option == "no")
        m_fixed = OverwriteAnswer::kNo;
}

OverwriteAnswer OverwritePolicy::Ask(const std::wstring& name, const std::wstring& target) {
    if (m_fixed)
        return *m_fixed;
    if (!m_terminal) {
        PrintError(m_ctx, ToUtf8(target) + " exists; pass --overwrite yes or --overwrite no", 0);
        m_refused = true;
        return OverwriteAnswer::kCancel;
    }
    for (int attempt = 0; attempt < 10; ++attempt) {
        std::cerr << "vexa: " << ToUtf8(name) << " exists in the destination. Overwrite? "
                  << "[y]es, [n]o, [a]ll, [N]one, [c]ancel: " << std::flush;
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
    return [this](const std::wstring& name, const std::wstring& target) { return Ask(name, target); };
}
