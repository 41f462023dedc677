// SPDX-License-Identifier: Apache-2.0
#pragma once
// What a method file asks the instrument to acquire: how long (from the injection to the end event,
// the rule the workstation's default methods use), the oven programme that sets the retention times,
// and the masses each scan covers.
#include <cstdint>
#include <string>
#include <vector>

struct AcquisitionPlan {
    static constexpr std::uint32_t kScanIntervalMs = 500;

    // Reads a method file's JSON; false with the reason when it is not a method that can run.
    bool Load(const std::string& methodJson, std::string* problem);

    // Oven temperature (°C) `seconds` after the injection.
    double OvenTemp(double seconds) const;
    // When the oven first reaches `temperature` (the initial temperature is reached at once).
    double SecondsToReach(double temperature) const;
    // Scans in the whole run: one every kScanIntervalMs from 0 up to (not including) the run time.
    std::uint32_t ScanCount() const;

    double runSeconds = 0;
    double initialTemp = 0, initialHold = 0, rate = 0, finalTemp = 0;
    bool sim = false;
    int massLow = 0, massHigh = 0;
    // The masses of every scan, ascending: massLow..massHigh, or the SIM ions.
    std::vector<float> masses;
};
