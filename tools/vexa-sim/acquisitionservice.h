// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's acquisition: `method run` of a method file runs the method for its run time divided
// by the time scale on a thread of its own, then writes the scans as a version-2 data file under a
// hidden temporary name, puts it in place as /Data/Run<NNN>.vxs (the next free number) and queues
// event 1048882 "method finished <path>". `method stop` ends it early: the scans so far are written,
// marked STOPPED=1, and the event says "method stopped <path>". One acquisition runs at a time, and
// not beside a replay.
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>

#include "acquisitionplan.h"

class InstrumentState;
class PathConfinement;

class AcquisitionService {
public:
    struct Settings {
        double timeScale = 1;   // the run goes this many times faster than the method says
        std::string sampleFile; // the sample's JSON; empty: the instrument's /Lib/Mixture.json, if any
        std::uint32_t seed = 1;
    };
    static constexpr const char* kDefaultSample = "/Lib/Mixture.json";

    AcquisitionService(const PathConfinement& paths, InstrumentState& state, Settings settings);
    // Ends a running acquisition without writing, and waits for its thread.
    ~AcquisitionService();
    AcquisitionService(const AcquisitionService&) = delete;
    AcquisitionService& operator=(const AcquisitionService&) = delete;

    // Whether `word` (the command line's first word, unquoted) names a method file.
    static bool IsMethodName(const std::string& word);
    // Starts acquiring with the method at instrument path `method`. Returns 0 once it runs; otherwise a
    // refusal status with the reason in *problem. Called from any connection's thread.
    std::uint32_t Start(const std::string& method, const std::string& commandLine, std::string* problem);
    // Ends the running acquisition early; false when none runs.
    bool Stop();

private:
    using Clock = std::chrono::steady_clock;

    void Run(AcquisitionPlan plan, std::string method, std::string sampleJson, double wallSeconds);
    // Writes the file and returns its instrument path; empty with *problem on failure.
    std::string Store(const std::vector<std::uint8_t>& bytes, std::string* problem) const;
    std::string InstrumentName() const;

    const PathConfinement& m_paths;
    InstrumentState& m_state;
    const Settings m_settings;
    std::mutex m_mutex; // guards everything below
    std::condition_variable m_wake;
    bool m_running = false;
    bool m_stopRequested = false;
    bool m_ending = false;
    std::thread m_worker;
};
