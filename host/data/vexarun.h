// SPDX-License-Identifier: Apache-2.0
#pragma once
// One acquisition run as the data library holds it: the facts of the file and its scans in flat
// arrays (a scan table plus one contiguous m/z array and one intensity array), so that a chromatogram,
// a spectrum or a trace over thousands of scans is a walk over memory, never a search through objects.
// Scan numbers are 0-based here; users see them 1-based.
#include "vexaspectrum.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

class VexaRun {
public:
    static constexpr uint32_t kSimScanFlag = 1;

    // ---- facts ----
    uint32_t Version() const { return m_version; }
    void SetVersion(uint32_t version) { m_version = version; }
    uint32_t StartTime() const { return m_startTime; } // seconds since 1970 UTC
    void SetStartTime(uint32_t seconds) { m_startTime = seconds; }
    const std::string& SampleName() const { return m_sampleName; } // UTF-8
    void SetSampleName(std::string name) { m_sampleName = std::move(name); }
    const std::map<std::wstring, std::wstring>& Parameters() const { return m_parameters; }
    void SetParameters(std::map<std::wstring, std::wstring> parameters) {
        m_parameters = std::move(parameters);
    }
    // A parameter's value; empty when the file has none.
    std::wstring Parameter(const std::wstring& key) const;

    // ---- scans ----
    // A version-1 file has a scan count but no scans to show.
    bool HasSpectra() const { return m_version >= 2; }
    size_t ScanCount() const { return HasSpectra() ? m_timesMs.size() : m_opaqueScans; }
    void SetOpaqueScanCount(size_t count) { m_opaqueScans = count; }
    // Adds a scan after the others; its total intensity is the sum of its points.
    void AddScan(uint32_t timeMs, std::span<const float> mz, std::span<const float> intensity,
                 uint32_t flags = 0);
    // Adds a scan with a stated total intensity (as a file holds it).
    void AddScan(uint32_t timeMs, float totalIntensity, uint32_t flags, std::span<const float> mz,
                 std::span<const float> intensity);
    void Reserve(size_t scans, size_t points);

    const std::vector<uint32_t>& TimesMs() const { return m_timesMs; }
    double TimeSeconds(size_t scan) const { return m_timesMs[scan] / 1000.0; }
    // The total ion chromatogram: one total intensity per scan.
    const std::vector<float>& Tic() const { return m_tic; }
    uint32_t Flags(size_t scan) const { return m_flags[scan]; }
    size_t FirstPoint(size_t scan) const { return m_firstPoint[scan]; }
    size_t PointCount(size_t scan) const { return m_firstPoint[scan + 1] - m_firstPoint[scan]; }
    size_t TotalPoints() const { return m_mz.size(); }
    std::span<const float> Masses(size_t scan) const;
    std::span<const float> Intensities(size_t scan) const;
    const std::vector<float>& AllMasses() const { return m_mz; }
    const std::vector<float>& AllIntensities() const { return m_intensity; }

    // The run time in seconds: the last scan's retention time (0 without scans).
    double RunSeconds() const;
    // Whether the run scanned selected ions (SCANMODE=1, or else its first scan's flag).
    bool IsSim() const;
    // The scanned mass range: MASSLOW/MASSHIGH when the file names them, else the masses' extremes.
    std::pair<double, double> MassRange() const;
    bool WasStopped() const { return Parameter(L"STOPPED") == L"1"; }

    // ---- views ----
    // The scan whose time is nearest `seconds` (ScanCount() when there are no scans).
    size_t ScanNearest(double seconds) const;
    // The first and last scans with times in [from, to] (either order); the nearest scan when none
    // lies inside. {ScanCount(), ScanCount()} without scans.
    std::pair<size_t, size_t> ScansBetween(double fromSeconds, double toSeconds) const;
    VexaSpectrum Spectrum(size_t scan) const;
    // Scans first..last inclusive added up, or their mean.
    VexaSpectrum Sum(size_t first, size_t last) const;
    VexaSpectrum Average(size_t first, size_t last) const;
    // Per scan, the intensities within ±tolerance of any of the masses (a point near two masses counts
    // once).
    std::vector<float> ExtractedIon(std::span<const double> masses, double tolerance) const;

private:
    uint32_t m_version = 2;
    uint32_t m_startTime = 0;
    std::string m_sampleName;
    std::map<std::wstring, std::wstring> m_parameters;
    size_t m_opaqueScans = 0;

    std::vector<uint32_t> m_timesMs;
    std::vector<float> m_tic;
    std::vector<uint32_t> m_flags;
    std::vector<size_t> m_firstPoint{0}; // ScanCount() + 1 entries
    std::vector<float> m_mz;
    std::vector<float> m_intensity;
};
