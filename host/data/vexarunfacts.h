// SPDX-License-Identifier: Apache-2.0
#pragma once
// What a run's file says about the run, in the words the review window and `vexa data info` show.
#include <cstddef>
#include <cstdint>
#include <string>

class VexaRun;

struct VexaRunFacts {
    std::string sample;     // the parameter block's SAMPLE, else the header's sample name
    std::string startTime;  // "2026-11-24 20:13:50 UTC"
    std::string method;     // SENSOR: the method the run used
    std::string instrument; // INSTRUMENT
    std::string scanMode;   // "Full Scan" or "SIM"
    double massLow = 0;
    double massHigh = 0;
    size_t scans = 0;
    double runSeconds = 0;
    bool stopped = false; // ended early by `method stop`
    uint32_t version = 0;

    static VexaRunFacts Of(const VexaRun& run);
};
