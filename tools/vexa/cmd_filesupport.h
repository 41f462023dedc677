// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the file commands of `vexa` share: entries as they are printed, and failures as messages and
// exit codes. Operands, sessions, progress, the overwrite question and copying one file have units of
// their own.
#include "cli.h"
#include "fileinfo.h"
#include "fileoperand.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

// One entry as `--json` prints it: name, size, folder flag, attributes and the three times (microseconds
// since 1970 UTC), exactly as the back end returned them.
nlohmann::ordered_json EntryJson(const FileInfo& entry);
// "YYYY-MM-DD HH:MM" in local time.
std::string EntryTimeText(int64_t microseconds);

// Prints "vexa: <what>: <number> (<meaning>): <instrument message>" for a failed file operation.
void PrintFileError(const CliContext& ctx, const std::string& what, int error, const std::wstring& text);
// The same for FileInfo's last failure. Returns the exit code to use.
int PrintFileInfoError(const CliContext& ctx, const std::string& what);

// Whether an error number means the instrument was not reached at all (link or FTP connection).
bool IsUnreachableError(int error);

// The exit code for a failed file operation with this error.
int ExitCodeFor(int error);

// Connects to an instrument for a command that needs its link; on failure prints why and returns the
// exit code to use (3, or 2 for an address that cannot be one). Returns 0 when connected.
int ConnectForLink(const CliContext& ctx, CliSession& session, const FileOperand& operand);
