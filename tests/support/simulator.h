// SPDX-License-Identifier: Apache-2.0
#pragma once
// Starts the built vexa-sim (path from $VEXA_SIM) on a fresh loopback address and stops it when the
// object goes. The constructor returns once the simulator accepts connections (or fails the test).
#include <string>
#include <vector>

class SimulatorProcess {
public:
    // `root` is the folder served as the instrument's file system; `extraArgs` are passed through
    // (for example {"--fault", "stall-after=100"} or {"--no-compress"}).
    explicit SimulatorProcess(const std::string& root, const std::vector<std::string>& extraArgs = {});
    ~SimulatorProcess();
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    const std::string& address() const { return m_address; }
    std::wstring host() const;
    bool running() const;
    // The simulator's process id (for its memory use), -1 when it is not running.
    int pid() const { return m_pid; }
    void stop();
    // Everything the simulator wrote to stderr so far (its --trace log when enabled).
    std::string log() const;

private:
    std::string m_address;
    std::string m_logPath;
    int m_pid = -1;
};
