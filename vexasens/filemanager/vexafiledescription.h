// SPDX-License-Identifier: Apache-2.0
#pragma once
// The line the Manage Files dialog shows under its panes for one selected file.
#include <cstdint>
#include <string>

// A readable description of a file from its name and modification time (microseconds since 1970 UTC,
// 0 when unknown), e.g. "run1.vxs — VEXARON Data File — 2026-11-21 13:05". The kind comes from the
// file's type; the time is shown in local time.
std::wstring VexaBuildFileDescription(const std::wstring& name, int64_t time);

// The kind of file a name stands for, as the description names it ("VEXARON Data File", "File").
std::wstring VexaFileKindText(const std::wstring& name);
