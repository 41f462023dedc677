// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the Manage Files dialog offers for an instrument file, told by its name, and the texts of its
// questions and commands.
#include <string>
#include <vector>

// An instrument text or configuration file, which the text editor may open: the lower-cased type is
// "txt", "xmth", "mru", "csv" or "tab", or the whole lower-cased name is one of the instrument's own
// configuration files (".config.level", ".config.fp", "timezone", "hostname", "hosts", "ip.addresses").
bool IsVexaTextOrConfigFile(const std::wstring& name);

// A data file the instrument can replay: the lower-cased type is "vxs".
bool IsVexaReplayFile(const std::wstring& name);

// The instrument's replay command for a file path on the instrument: "\"<path>\" -speed=<speed>",
// at most 1,024 characters (a longer path is cut, as the instrument would refuse it anyway).
std::wstring BuildReplayCommand(const std::wstring& instrumentPath, int speed);

// The delete confirmation for folders (`folders` true) or files on one side: string 3445 with the one
// name, else 3447 (folders) or 3446 (files) with the count; the location word is "VEXARON" for the
// instrument and "PC" for the workstation.
std::wstring BuildDeleteQuestion(bool folders, const std::vector<std::wstring>& names, bool onInstrument);

// Joins an instrument folder and a ".." or a name, resolving "." and ".." lexically, so the folder
// edit shows "/Method" rather than "/Data/../Method". The result is absolute and never goes above "/".
std::wstring JoinInstrumentPath(const std::wstring& folder, const std::wstring& name);
