// SPDX-License-Identifier: Apache-2.0
#pragma once
// Runs a program to its end and collects what it printed. Bounded: a program still running after the
// time limit is killed and reported with exit code -1.
#include <string>
#include <vector>

struct ProcessResult {
    int exitCode = -1;
    std::string out;
    std::string err;
};

ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& args,
                         int timeoutMs = 60000, const std::vector<std::string>& extraEnv = {});
// Runs a program on a terminal of its own (a pseudo-terminal), as a person at a shell would, with
// `typed` waiting as its input. `out` gets everything the terminal showed: output, errors and the echo.
ProcessResult RunOnTerminal(const std::string& program, const std::vector<std::string>& args,
                            const std::string& typed, int timeoutMs = 60000);
// The built vexa command-line tool ($VEXA_CLI).
ProcessResult RunVexa(const std::vector<std::string>& args, int timeoutMs = 60000,
                      const std::vector<std::string>& extraEnv = {});
ProcessResult RunVexaOnTerminal(const std::vector<std::string>& args, const std::string& typed,
                                int timeoutMs = 60000);
