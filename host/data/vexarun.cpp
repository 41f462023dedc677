// SPDX-License-Identifier: Apache-2.0
#include "vexarun.h"

#include <algorithm>
#include <cmath>
#include <cwchar>

std::wstring VexaRun::Parameter(const std::wstring& key) const {
    const auto found = m_parameters.find(key);
    return found == m_parameters.end() ? std::wstring() : found->second;
}

void VexaRun::Reserve(size_t scans, size_t points) {
    m_timesMs.reserve(scans);
    m_tic.reserve(scans);
    m_flags.reserve(scans);
    m_firstPoint.reserve(scans + 1);
    m_mz.reserve(points);
    m_intensity.reserve(points);
}

void VexaRun::AddScan(uint32_t timeMs, std::span<const float> mz, std::span<const float> intensity,
                      uint32_t flags) {
    double sum = 0;
    for (float value : intensity)
        sum += value;
    AddScan(timeMs, static_cast<float>(sum), flags, mz, intensity);
}

void VexaRun::AddScan(uint32_t timeMs, float totalIntensity, uint32_t flags, std::span<const float> mz,
                      std::span<const float> intensity) {
    const size_t count = std::min(mz.size(), intensity.size());
    m_timesMs.push_back(timeMs);
    m_tic.push_back(totalIntensity);
    m_flags.push_back(flags);
    m_mz.insert(m_mz.end(), mz.begin(), mz.begin() + static_cast<std::ptrdiff_t>(count));
    m_intensity.insert(m_intensity.end(), intensity.begin(),
                       intensity.begin() + static_cast<std::ptrdiff_t>(count));
    m_firstPoint.push_back(m_mz.size());
}

std::span<const float> VexaRun::Masses(size_t scan) const {
    return {m_mz.data() + m_firstPoint[scan], PointCount(scan)};
}

std::span<const float> VexaRun::Intensities(size_t scan) const {
    return {m_intensity.data() + m_firstPoint[scan], PointCount(scan)};
}

double VexaRun::RunSeconds() const {
    return m_timesMs.empty() ? 0.0 : m_timesMs.back() / 1000.0;
}

bool VexaRun::IsSim() const {
    const std::wstring mode = Parameter(L"SCANMODE");
    if (!mode.empty())
        return mode == L"1";
    return !m_flags.empty() && (m_flags.front() & kSimScanFlag) != 0;
}

std::pair<double, double> VexaRun::MassRange() const {
    const std::wstring low = Parameter(L"MASSLOW");
    const std::wstring high = Parameter(L"MASSHIGH");
    wchar_t* lowEnd = nullptr;
    wchar_t* highEnd = nullptr;
    const double lowValue = std::wcstod(low.c_str(), &lowEnd);
    const double highValue = std::wcstod(high.c_str(), &highEnd);
    if (!low.empty() && !high.empty() && *lowEnd == 0 && *highEnd == 0)
        return {lowValue, highValue};
    if (m_mz.empty())
        return {0.0, 0.0};
    double least = m_mz.front();
    double most = m_mz.front();
    for (size_t scan = 0; scan < m_timesMs.size(); ++scan) {
        if (PointCount(scan) == 0)
            continue;
        least = std::min<double>(least, m_mz[m_firstPoint[scan]]);
        most = std::max<double>(most, m_mz[m_firstPoint[scan + 1] - 1]);
    }
    return {least, most};
}

size_t VexaRun::ScanNearest(double seconds) const {
    if (m_timesMs.empty())
        return 0;
    const double ms = seconds * 1000.0;
    const auto after = std::lower_bound(m_timesMs.begin(), m_timesMs.end(), ms,
                                        [](uint32_t time, double value) { return time < value; });
    if (after == m_timesMs.begin())
        return 0;
    if (after == m_timesMs.end())
        return m_timesMs.size() - 1;
    const auto before = after - 1;
    const size_t index = static_cast<size_t>(after - m_timesMs.begin());
    return ms - *before <= *after - ms ? index - 1 : index;
}

std::pair<size_t, size_t> VexaRun::ScansBetween(double fromSeconds, double toSeconds) const {
    if (m_timesMs.empty())
        return {0, 0};
    if (fromSeconds > toSeconds)
        std::swap(fromSeconds, toSeconds);
    const auto less = [](uint32_t time, double value) { return time < value; };
    const auto first = std::lower_bound(m_timesMs.begin(), m_timesMs.end(), fromSeconds * 1000.0, less);
    const auto end = std::upper_bound(m_timesMs.begin(), m_timesMs.end(), toSeconds * 1000.0,
                                      [](double value, uint32_t time) { return value < time; });
    if (first >= end) {
        const size_t nearest = ScanNearest((fromSeconds + toSeconds) / 2);
        return {nearest, nearest};
    }
    return {static_cast<size_t>(first - m_timesMs.begin()), static_cast<size_t>(end - m_timesMs.begin()) - 1};
}

VexaSpectrum VexaRun::Spectrum(size_t scan) const {
    VexaSpectrum spectrum;
    if (scan >= m_timesMs.size())
        return spectrum;
    const std::span<const float> mz = Masses(scan);
    const std::span<const float> intensity = Intensities(scan);
    spectrum.mz.assign(mz.begin(), mz.end());
    spectrum.intensity.assign(intensity.begin(), intensity.end());
    return spectrum;
}

VexaSpectrum VexaRun::Sum(size_t first, size_t last) const {
    VexaSpectrum sum;
    if (m_timesMs.empty())
        return sum;
    last = std::min(last, m_timesMs.size() - 1);
    for (size_t scan = first; scan <= last; ++scan)
        sum.Accumulate(Spectrum(scan));
    return sum;
}

VexaSpectrum VexaRun::Average(size_t first, size_t last) const {
    VexaSpectrum mean = Sum(first, last);
    if (!m_timesMs.empty() && first <= last)
        mean.Scale(1.0 / static_cast<double>(std::min(last, m_timesMs.size() - 1) - first + 1));
    return mean;
}

std::vector<float> VexaRun::ExtractedIon(std::span<const double> masses, double tolerance) const {
    // Overlapping windows join, so that no point is counted twice.
    std::vector<std::pair<double, double>> windows;
    for (double mass : masses)
        windows.emplace_back(mass - std::abs(tolerance), mass + std::abs(tolerance));
    std::sort(windows.begin(), windows.end());
    std::vector<std::pair<float, float>> joined;
    for (const auto& [low, high] : windows) {
        if (!joined.empty() && low <= joined.back().second)
            joined.back().second = std::max(joined.back().second, static_cast<float>(high));
        else
            joined.emplace_back(static_cast<float>(low), static_cast<float>(high));
    }
    std::vector<float> trace(m_timesMs.size(), 0.0f);
    for (size_t scan = 0; scan < m_timesMs.size(); ++scan) {
        const float* begin = m_mz.data() + m_firstPoint[scan];
        const float* end = m_mz.data() + m_firstPoint[scan + 1];
        double sum = 0;
        for (const auto& [low, high] : joined) {
            const float* at = std::lower_bound(begin, end, low);
            for (; at != end && *at <= high; ++at)
                sum += m_intensity[static_cast<size_t>(at - m_mz.data())];
            begin = at;
        }
        trace[scan] = static_cast<float>(sum);
    }
    return trace;
}
