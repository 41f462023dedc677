// SPDX-License-Identifier: Apache-2.0
#pragma once
// A centroided mass spectrum: m/z ascending, one intensity each.
#include <cstddef>
#include <vector>

struct VexaSpectrum {
    // Points whose m/z differ by no more than this are one mass when spectra are combined.
    static constexpr double kSameMass = 0.005;

    std::vector<float> mz;
    std::vector<float> intensity;

    size_t size() const { return mz.size(); }
    bool empty() const { return mz.empty(); }
    // The largest intensity (0 for an empty spectrum) and where it is (size() when empty).
    float BasePeak() const;
    size_t BasePeakIndex() const;
    // Intensity at the mass within kSameMass of `mass`; 0 when the spectrum has none there.
    float IntensityAt(double mass) const;

    // Adds `other` point by point (masses within kSameMass add up; the rest are merged in order).
    void Accumulate(const VexaSpectrum& other);
    // Every intensity times `factor`.
    void Scale(double factor);
    // This spectrum minus `background` at the same masses; points that fall to zero or below go.
    VexaSpectrum Minus(const VexaSpectrum& background) const;
};
