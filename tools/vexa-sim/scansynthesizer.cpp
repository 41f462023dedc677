// SPDX-License-Identifier: Apache-2.0
#include "scansynthesizer.h"

#include <algorithm>
#include <cmath>

namespace {

// Compounds reach the detector this long after the oven lets them go.
constexpr double kDeadSeconds = 30;
// Counts at the apex of a compound of amount 1 at its base peak.
constexpr double kApexCounts = 2.0e5;
constexpr double kBaselineCounts = 40;
constexpr double kBleedCounts = 6000;

std::size_t IndexOf(const std::vector<float>& masses, double mass) {
    const auto found = std::lower_bound(masses.begin(), masses.end(), static_cast<float>(mass - 0.5));
    if (found == masses.end() || std::abs(*found - mass) > 0.5)
        return SIZE_MAX;
    return static_cast<std::size_t>(found - masses.begin());
}

} // namespace

ScanSynthesizer::ScanSynthesizer(const AcquisitionPlan& plan, const SampleMixture& sample, std::uint32_t seed)
    : m_plan(plan), m_noise(seed) {
    for (const SampleCompound& compound : sample.compounds) {
        Elution elution{kDeadSeconds + plan.SecondsToReach(compound.elutionTemp), compound.peakWidth, {}};
        if (!std::isfinite(elution.retentionSeconds))
            continue; // the oven never gets it out
        for (const auto& [mass, abundance] : compound.spectrum) {
            const std::size_t index = IndexOf(plan.masses, mass);
            if (index != SIZE_MAX)
                elution.peaks.emplace_back(index, compound.amount * abundance / 100.0 * kApexCounts);
        }
        m_elutions.push_back(std::move(elution));
    }
    m_bleed207 = IndexOf(plan.masses, 207);
    m_bleed281 = IndexOf(plan.masses, 281);
}

SynthesizedScan ScanSynthesizer::Next() {
    SynthesizedScan scan;
    scan.timeMs = m_next++ * AcquisitionPlan::kScanIntervalMs;
    const double seconds = scan.timeMs / 1000.0;
    std::vector<double> signal(m_plan.masses.size(), kBaselineCounts);
    for (const Elution& elution : m_elutions) {
        const double z = (seconds - elution.retentionSeconds) / elution.width;
        if (std::abs(z) > 6)
            continue;
        const double shape = std::exp(-0.5 * z * z);
        for (const auto& [index, apex] : elution.peaks)
            signal[index] += apex * shape;
    }
    // Bleed grows as the oven heats past 100 °C.
    const double heat = std::max(0.0, (m_plan.OvenTemp(seconds) - 100.0) / 200.0);
    if (m_bleed207 != SIZE_MAX)
        signal[m_bleed207] += kBleedCounts * heat * heat;
    if (m_bleed281 != SIZE_MAX)
        signal[m_bleed281] += 0.5 * kBleedCounts * heat * heat;
    std::normal_distribution<double> unit(0.0, 1.0);
    scan.intensity.resize(signal.size());
    for (std::size_t i = 0; i < signal.size(); ++i) {
        const double noisy = signal[i] + unit(m_noise) * (8.0 + 0.02 * signal[i]);
        scan.intensity[i] = static_cast<float>(std::max(0.0, std::round(noisy)));
    }
    return scan;
}
