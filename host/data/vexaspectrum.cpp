// SPDX-License-Identifier: Apache-2.0
#include "vexaspectrum.h"

#include <algorithm>

float VexaSpectrum::BasePeak() const {
    const size_t at = BasePeakIndex();
    return at == size() ? 0.0f : intensity[at];
}

size_t VexaSpectrum::BasePeakIndex() const {
    if (intensity.empty())
        return 0;
    return static_cast<size_t>(std::max_element(intensity.begin(), intensity.end()) - intensity.begin());
}

float VexaSpectrum::IntensityAt(double mass) const {
    const auto first = std::lower_bound(mz.begin(), mz.end(), static_cast<float>(mass - kSameMass));
    if (first == mz.end() || *first > mass + kSameMass)
        return 0.0f;
    return intensity[static_cast<size_t>(first - mz.begin())];
}

void VexaSpectrum::Accumulate(const VexaSpectrum& other) {
    if (empty()) {
        *this = other;
        return;
    }
    VexaSpectrum merged;
    merged.mz.reserve(size() + other.size());
    merged.intensity.reserve(size() + other.size());
    size_t a = 0;
    size_t b = 0;
    while (a < size() || b < other.size()) {
        if (b == other.size() || (a < size() && mz[a] < other.mz[b] - kSameMass)) {
            merged.mz.push_back(mz[a]);
            merged.intensity.push_back(intensity[a++]);
        } else if (a == size() || other.mz[b] < mz[a] - kSameMass) {
            merged.mz.push_back(other.mz[b]);
            merged.intensity.push_back(other.intensity[b++]);
        } else {
            merged.mz.push_back(mz[a]);
            merged.intensity.push_back(intensity[a++] + other.intensity[b++]);
        }
    }
    *this = std::move(merged);
}

void VexaSpectrum::Scale(double factor) {
    for (float& value : intensity)
        value = static_cast<float>(value * factor);
}

VexaSpectrum VexaSpectrum::Minus(const VexaSpectrum& background) const {
    VexaSpectrum result;
    for (size_t i = 0; i < size(); ++i) {
        const float left = intensity[i] - background.IntensityAt(mz[i]);
        if (left > 0) {
            result.mz.push_back(mz[i]);
            result.intensity.push_back(left);
        }
    }
    return result;
}
