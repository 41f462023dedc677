// SPDX-License-Identifier: Apache-2.0
#pragma once
// The scans of a simulated acquisition: the sample's compounds as Gaussian peaks at their retention
// times, column bleed (m/z 207 and 281) that rises with the oven, a baseline, and noise from a seeded
// generator, so that the same seed gives the same scans.
#include <cstdint>
#include <random>
#include <vector>

#include "acquisitionplan.h"
#include "samplemixture.h"

struct SynthesizedScan {
    std::uint32_t timeMs = 0;
    std::vector<float> intensity; // one per plan mass
};

class ScanSynthesizer {
public:
    ScanSynthesizer(const AcquisitionPlan& plan, const SampleMixture& sample, std::uint32_t seed);

    // The scans in order; call once per scan, from the first.
    SynthesizedScan Next();

private:
    struct Elution {
        double retentionSeconds;
        double width;
        std::vector<std::pair<std::size_t, double>> peaks; // plan mass index, apex intensity
    };

    const AcquisitionPlan& m_plan;
    std::vector<Elution> m_elutions;
    std::size_t m_bleed207 = SIZE_MAX, m_bleed281 = SIZE_MAX;
    std::uint32_t m_next = 0;
    std::mt19937 m_noise;
};
