// SPDX-License-Identifier: Apache-2.0
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
    // The answer for one existing file or folder; kCancel when no terminal can ask and no --overwrite
    // was given (a message says so).
    OverwriteAnswer Ask(const OverwriteCase& overwrite);
    OverwriteQuestion AsQuestion();
    bool Refused() const { return m_refused; }

    // The question as the terminal shows it: what exists, both entries side by side when known (the
    // newer marked), and the answers.
    static std::string QuestionText(const OverwriteCase& overwrite);

private:
    const CliContext& m_ctx;
    std::optional<OverwriteAnswer> m_fixed;
    bool m_terminal;
    bool m_refused = false;
};
