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
// The built vexa command-line tool ($VEXA_CLI).
ProcessResult RunVexa(const std::vector<std::string>& args, int timeoutMs = 60000,
                      const std::vector<std::string>& extraEnv = {});
