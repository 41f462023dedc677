// SPDX-License-Identifier: Apache-2.0
#pragma once
// Starting programs the platform's way. Both return 0 or an error number (2 when the program or the
// file is not found).
#include <string>
#include <vector>

// Starts `program` (searched on the PATH) with `arguments`, detached: it outlives the caller and is
// never waited for.
int SpawnDetached(const std::wstring& program, const std::vector<std::wstring>& arguments);
// Opens `path` with the desktop's default program for it (ShellExecuteW "open" on Windows).
int OpenWithDesktop(const std::wstring& path);
// What OpenWithDesktop uses, for messages ("xdg-open").
std::wstring DesktopOpenerName();
