#pragma once
// How existing destination files are treated: asked on a terminal, else decided by --overwrite.
#include "cli.h"
#include "copyjob.h"

#include <optional>
#include <string>

class OverwritePolicy {
public:
    // `option` is the --overwrite value ("", "yes" or "no").
    OverwritePolicy(const CliContext& ctx, const std::string& option);
    // The answer for one existing file; kCancel when no terminal can ask and no --overwrite was given
    // (a message says so).
    OverwriteAnswer Ask(const std::wstring& name, const std::wstring& target);
    OverwriteQuestion AsQuestion();
    bool Refused() const { return m_refused; }

private:
    const CliContext& m_ctx;
    std::optional<OverwriteAnswer> m_fixed;
    bool m_terminal;
    bool m_refused = false;
};
