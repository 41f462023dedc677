// SPDX-License-Identifier: Apache-2.0
#pragma once
// The live state of the simulated instrument, shared by every connection: drifting readings,
// parameters, the running method and the queue of pending events. Thread-safe.
#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "deviceprofile.h"

class InstrumentState {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::uint32_t kEventBackup = 1048881;
    static constexpr std::uint32_t kEventMethodFinished = 1048882;
    static constexpr std::uint32_t kReadyParameter = 5;

    explicit InstrumentState(DeviceProfile profile);

    // Reads the profile file afresh whenever it has changed since (checked at each `status`), over the
    // built-in defaults, so a test or a demo can script the readings while the instrument runs. A
    // file that does not read keeps the profile as it was.
    void WatchProfile(const std::string& path);

    // The `status` answer: one key=value line per reading.
    std::string StatusText();

    // A parameter's bytes, zero-padded or cut to `size` (unset parameters read as zeros).
    std::vector<std::uint8_t> GetParameter(std::uint32_t id, std::uint32_t index, std::size_t size);
    void SetParameter(std::uint32_t id, std::uint32_t index, std::vector<std::uint8_t> bytes);

    // Pending "<code> <text>" lines, oldest first; the queue is emptied.
    std::vector<std::string> TakeEvents();
    void QueueEvent(std::uint32_t code, const std::string& text);

    // Starts a replay that ends by itself after the profile's method time; false when a method or
    // replay is already running.
    bool StartMethod(const std::string& commandLine);
    // Ends a running replay early and queues "method stopped"; false when no replay runs.
    bool StopMethod();
    // An acquisition's process runs until FinishAcquisition, which queues its event text; `seconds`
    // is what processTotal reports. False when a method or replay is already running.
    bool StartAcquisition(const std::string& commandLine, double seconds);
    void FinishAcquisition(const std::string& eventText);
    std::string RunningProcess();
    void SetManualTune(int number, const std::string& path);
    // The manual tune file with that number; empty when none was set.
    std::string ManualTune(int number);
    void SetBackupProgress(int percent);

private:
    void AdvanceLocked(Clock::time_point now);
    void ReloadProfileLocked();
    void ApplyProfileParametersLocked();
    int Drifted(int value, double amplitude, int salt, double seconds) const;

    DeviceProfile m_profile;
    std::string m_profilePath;
    std::string m_profileStamp; // modification time and size of the file last read
    const Clock::time_point m_start = Clock::now();
    std::mutex m_mutex;
    std::map<std::pair<std::uint32_t, std::uint32_t>, std::vector<std::uint8_t>> m_parameters;
    std::deque<std::string> m_events;
    std::string m_process;
    Clock::time_point m_processStart;
    Clock::duration m_processLength{};
    bool m_processEndsByItself = false; // a replay; an acquisition is ended by its service
    int m_backupProgress = 0;
    std::map<int, std::string> m_manualTunes;
};
