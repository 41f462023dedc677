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
