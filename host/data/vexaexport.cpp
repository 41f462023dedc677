// SPDX-License-Identifier: Apache-2.0
#include "vexaexport.h"

#include <charconv>
#include <cmath>
#include <vector>

namespace VexaExport {

namespace {

std::string Fixed(double value, int decimals) {
    char text[64];
    const auto result = std::to_chars(text, text + sizeof text, value, std::chars_format::fixed, decimals);
    return std::string(text, result.ptr);
}

std::string Range(double from, double to) {
    return Fixed(from, 3) + "-" + Fixed(to, 3) + " s";
}

} // namespace

std::string FormatNumber(double value) {
    char text[64];
    const float single = static_cast<float>(value);
    const float magnitude = std::abs(single);
    // Plain digits where they stay short; an exponent only for the very large and very small.
    const bool plain = magnitude == 0 || (magnitude >= 1e-4f && magnitude < 1e15f);
    const auto result = plain ? std::to_chars(text, text + sizeof text, single, std::chars_format::fixed)
                              : std::to_chars(text, text + sizeof text, single);
    return std::string(text, result.ptr);
}

std::string MakeMsp(const VexaSpectrum& spectrum, const SpectrumOrigin& origin) {
    const double base = spectrum.BasePeak();
    std::vector<std::pair<float, long>> peaks;
    for (size_t i = 0; i < spectrum.size() && base > 0; ++i) {
        const long scaled = std::lround(spectrum.intensity[i] * 999.0 / base);
        if (scaled > 0)
            peaks.emplace_back(spectrum.mz[i], scaled);
    }
    std::string comments = "file=" + origin.file + " time=" + Range(origin.fromSeconds, origin.toSeconds);
    if (origin.hasBackground)
        comments += " background=" + Range(origin.backgroundFrom, origin.backgroundTo);
    std::string text = "Name: " + origin.name + "\nComments: " + comments +
                       "\nNum Peaks: " + std::to_string(peaks.size()) + "\n";
    for (const auto& [mz, intensity] : peaks)
        text += FormatNumber(mz) + " " + std::to_string(intensity) + "\n";
    return text + "\n";
}

std::string SpectrumCsv(const VexaSpectrum& spectrum) {
    const double base = spectrum.BasePeak();
    std::string text = "mz,intensity,relative\n";
    for (size_t i = 0; i < spectrum.size(); ++i)
        text += FormatNumber(spectrum.mz[i]) + "," + FormatNumber(spectrum.intensity[i]) + "," +
                Fixed(base > 0 ? spectrum.intensity[i] * 100.0 / base : 0.0, 2) + "\n";
    return text;
}

std::string ChromatogramCsv(const VexaRun& run, std::span<const double> masses, double tolerance) {
    std::vector<std::vector<float>> traces;
    std::string text = "time_s,tic";
    for (double mass : masses) {
        traces.push_back(run.ExtractedIon(std::span<const double>(&mass, 1), tolerance));
        text += ",mz_" + FormatNumber(mass);
    }
    text += "\n";
    for (size_t scan = 0; scan < run.Tic().size(); ++scan) {
        text += Fixed(run.TimeSeconds(scan), 3) + "," + FormatNumber(run.Tic()[scan]);
        for (const std::vector<float>& trace : traces)
            text += "," + FormatNumber(trace[scan]);
        text += "\n";
    }
    return text;
}

} // namespace VexaExport
