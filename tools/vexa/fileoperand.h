// SPDX-License-Identifier: Apache-2.0
#pragma once
// A file operand of the file commands: "@HOST:/PATH" on an instrument, anything else on this computer.
#include "cli.h"

#include <string>

struct FileOperand {
    std::string text;  // as typed, for messages
    std::wstring host; // empty: local
    std::wstring path; // instrument path or local path
    bool IsRemote() const { return !host.empty(); }
    // "@HOST:PATH" or the local path.
    std::wstring Name() const;
};

// Parses an operand; false (with a usage message printed) for "@" names without a valid host or path.
// A local path is made absolute and keeps a trailing '/' (a folder to copy into).
bool ParseFileOperand(const CliContext& ctx, const std::string& text, FileOperand* out);
// The operand of a command that names an instrument by its host alone ("HOST" or "@HOST:"); the
// host is checked when the command connects.
FileOperand InstrumentOperand(const std::string& text);
