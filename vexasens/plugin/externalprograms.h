// SPDX-License-Identifier: Apache-2.0
#pragma once
// Starting the external programs of the sensor type's tools. The programs are configured in the
// settings (Programs/Nist, Programs/Amdis); the desktop's default opener opens documents
// (Programs/Opener overrides it). Each has an argument pattern (Programs/NistArguments, default
// "%1", the file Data Review hands over, none from the tool;
// Programs/AmdisArguments, default "%1 %2"; Programs/OpenerArguments for a configured opener, default
// "%1"). Errors are
// errno-style numbers, 2 meaning "not found".
#include <string>
#include <vector>

inline constexpr int kProgramNotFound = 2;
// The document exists but no program could be started to open it (the platform's "no association").
inline constexpr int kNoOpener = 31;

// Starts `program` with `arguments`, detached from this process; 0 when it started, else the error.
int StartDetachedProgram(const std::wstring& program, const std::vector<std::wstring>& arguments);

// The words of an argument pattern (separated by blanks) with %1 to %9 replaced by the inserts; a
// word that comes out empty is left out, so an empty insert gives no argument.
std::vector<std::wstring> ExpandArguments(const std::wstring& pattern,
                                          const std::vector<std::wstring>& inserts);

// Opens a document with the desktop's default program ("open" verb): 0 on success, 2 when the file
// does not exist, kNoOpener when the opener could not be started (*openerError, when given, says why).
int ShellOpen(const std::wstring& path, int* openerError = nullptr);
// The program that opens documents: the setting Programs/Opener, else the desktop's.
std::wstring DocumentOpener();

// Start the NIST and AMDIS programs. When none is configured, or it cannot be started, the operator is
// told so through the tools' user interface and the result is false. NistSwitch's flag is the host's
// and is accepted for its signature only; AmdisSwitch's texts are its pattern's %1 and %2.
bool NistSwitch(bool flag);
bool AmdisSwitch(const std::wstring& first, const std::wstring& second);
