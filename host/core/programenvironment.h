// SPDX-License-Identifier: Apache-2.0
#pragma once
// The process's environment.
#include <string>
#include <vector>

// Sets (replaces) an environment variable of this process; false when the platform refuses.
bool SetProcessEnvironment(const std::string& name, const std::string& value);
// The program's arguments in UTF-8 (on Windows from the wide command line, whatever the code page).
std::vector<std::string> Utf8Arguments(int argc, char** argv);
// Standard output and error pass bytes unchanged (no "\r\n" for "\n"), as scripts expect.
void UseBinaryStandardStreams();
