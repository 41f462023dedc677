// SPDX-License-Identifier: Apache-2.0
#pragma once
// The frame of the `vexa` command line: shared options, exit codes and the instrument session that
// every command uses. Each command lives in its own cmd_*.cpp and registers itself with Add*Command.
#include "sensorref.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <string>
#include <vector>

class ISensorObject;
class VEXASensorObject;

enum ExitCode : int {
    kExitOk = 0,
    kExitFailed = 1, // the operation failed (message with the error number and its meaning)
    kExitUsage = 2,
    kExitUnreachable = 3, // the instrument could not be reached
};

struct CliOptions {
    bool json = false;
    bool quiet = false;
    bool verbose = false;
};

// The shared state of one run: options and the exit code the chosen command sets.
struct CliContext {
    CliOptions options;
    int exitCode = kExitOk;
};

// A sensor object for one instrument, made through the VEXA sensor type and taken on line. Released
// (off line, last reference dropped) when the session ends.
class CliSession {
public:
    CliSession();
    ~CliSession();
    CliSession(const CliSession&) = delete;
    CliSession& operator=(const CliSession&) = delete;

    // Creates the sensor for `host` and takes it on line; false with the link's error number.
    bool Connect(const std::wstring& host, int* error);
    // Creates the sensor without going on line (for commands that may fall back to FTP).
    bool Create(const std::wstring& host);
    VEXASensorObject* Sensor() const { return m_sensor.get(); }

private:
    SensorRef<VEXASensorObject> m_sensor;
};

// Prints "vexa: <what>: <number> (<meaning>)" on stderr unless quiet.
void PrintError(const CliContext& ctx, const std::string& what, int error, const std::wstring& detail = {});

// A host operand: "HOST", "@HOST" or "@HOST:" all name the same instrument.
std::wstring HostOperand(const std::string& text);

using AddCommand = void (*)(CLI::App& app, CliContext& ctx);
// Every command of the tool, in the order the help lists them.
std::vector<AddCommand> CliCommands();

void AddPingCommand(CLI::App& app, CliContext& ctx);
void AddNextNameCommand(CLI::App& app, CliContext& ctx);
void AddStatusCommand(CLI::App& app, CliContext& ctx);
void AddLsCommand(CLI::App& app, CliContext& ctx);
void AddStatCommand(CLI::App& app, CliContext& ctx);
void AddGetCommand(CLI::App& app, CliContext& ctx);
void AddPutCommand(CLI::App& app, CliContext& ctx);
void AddCpCommand(CLI::App& app, CliContext& ctx);
void AddRmCommand(CLI::App& app, CliContext& ctx);
void AddRmdirCommand(CLI::App& app, CliContext& ctx);
void AddMkdirCommand(CLI::App& app, CliContext& ctx);
void AddMvCommand(CLI::App& app, CliContext& ctx);
void AddRunCommand(CLI::App& app, CliContext& ctx);
void AddBackupCommand(CLI::App& app, CliContext& ctx);
void AddMethodCommand(CLI::App& app, CliContext& ctx);
