// SPDX-License-Identifier: Apache-2.0
#pragma once
// The simulator's command line.
#include <cstdint>
#include <string>

#include "faultplan.h"

class SimOptions {
public:
    enum class Outcome { Run, Help, Version, Error };

    // Reads argv; on Error `problem` says what is wrong.
    Outcome Parse(int argc, char** argv, std::string* problem);
    static std::string Usage();

    std::string root;
    // Serve a copy of the demo tree (in `root`, or the default demo folder without --root).
    bool demo = false;
    std::string address = "127.0.0.1";
    std::uint16_t port = 4840;
    std::string profile;
    bool trace = false;
    bool compress = true;
    // Every answer waits this long before it leaves: a field network's latency.
    int replyDelayMs = 0;
    FaultPlan faults;
    // Acquisitions: how much faster than the method they run, the sample they measure (empty: the
    // instrument's own /Lib/Mixture.json), and the seed of their noise.
    double timeScale = 1;
    std::string sample;
    std::uint32_t seed = 1;
};
