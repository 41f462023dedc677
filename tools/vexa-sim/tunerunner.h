// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's tune: `tune run [n]` tunes with manual tune file n (3 when not given, the number the
// workstation sets; the demo's /Tune/Default.tun while none is set) and appends a report section to that
// tune file's report file in the "Reports" folder beside it. Thread-safe: one tune at a time.
#include <cstdint>
#include <mutex>
#include <random>
#include <string>

#include <nlohmann/json.hpp>

class InstrumentState;
class PathConfinement;

class TuneRunner {
public:
    struct Outcome {
        std::uint32_t status = 0; // 0, or the reply status that says why the tune failed
        std::string text;         // the report file's instrument path, or why the tune failed
    };

    TuneRunner(const PathConfinement& paths, InstrumentState& state);

    Outcome Run(int number);

    // "/Tune/Default.tun" -> "/Tune/Reports/Default.rpt": the name loses its last three characters
    // (a shorter name is kept whole) and gains "rpt".
    static std::string ReportPath(const std::string& tunePath);
    // One report section: the time stamp (microseconds since 1970 UTC), the instrument's name, the tune
    // settings and the measured results, each a little off the tune's targets.
    static nlohmann::json MakeReport(const nlohmann::json& tuneSection, std::int64_t timeUs,
                                     const std::string& instrument, std::mt19937& noise);

private:
    // The first line of the served /hostname file, or "VEXARON".
    std::string InstrumentName() const;

    const PathConfinement& m_paths;
    InstrumentState& m_state;
    std::mutex m_mutex;
    std::mt19937 m_noise;
};
