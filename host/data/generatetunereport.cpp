// SPDX-License-Identifier: Apache-2.0
#include "generatetunereport.h"

#include "pxformat.h"
#include "remotename.h"
#include "timeformat.h"

#include <cmath>

namespace {

const VexaTuneResult* FindResult(const VexaTuneReportSection& report, int mass) {
    for (const VexaTuneResult& result : report.results) {
        if (result.mass == mass)
            return &result;
    }
    return nullptr;
}

bool WithinLimits(const VexaTuneMass& target, const VexaTuneResult& measured) {
    return std::fabs(measured.abundance - target.abundance) <=
               target.abundance * kTuneAbundanceTolerance + 1e-9 &&
           std::fabs(measured.width - target.width) <= kTuneWidthTolerance + 1e-9;
}

void AddHeader(std::vector<std::wstring>& lines, const std::wstring& tuneFileName,
               const VexaTuneReportSection& report) {
    std::wstring name;
    ParseFilename(tuneFileName, nullptr, &name, nullptr);
    const int64_t ms = report.time / 1000;
    const int offset = PXLocalTimeDiff(ms) / 60;
    lines.push_back(L"Tune Report");
    lines.push_back(L"===========");
    lines.push_back(L"Tune file:   " + (name.empty() ? tuneFileName : name));
    lines.push_back(L"Instrument:  " +
                    (report.instrument.empty() ? std::wstring(L"(unknown)") : report.instrument));
    lines.push_back(L"Date:        " + FormatDate(ms, offset));
    lines.push_back(L"Time:        " + FormatTime(ms, offset));
    lines.push_back(L"");
}

void AddSettings(std::vector<std::wstring>& lines, const VexaTuneSection& tune) {
    lines.push_back(L"Tune settings");
    lines.push_back(L"  Calibrant:        " + (tune.calibrant.empty() ? std::wstring(L"-") : tune.calibrant));
    lines.push_back(PXFormat(L"  Electron energy:  %.1f eV", tune.electronEnergy));
    lines.push_back(PXFormat(L"  Emission:         %.1f uA", tune.emission));
    lines.push_back(PXFormat(L"  Repeller:         %.2f V", tune.repeller));
    lines.push_back(L"");
}

// One row per mass of the tune; a mass the instrument did not measure reads "not measured" and fails.
int AddMassTable(std::vector<std::wstring>& lines, const VexaTuneReportSection& report,
                 const VexaTuneSection& tune) {
    lines.push_back(L"Mass table");
    lines.push_back(L"   Mass  Target %  Measured %  Limits %         Width  Limits       Result");
    int passed = 0;
    for (const VexaTuneMass& target : tune.masses) {
        const double low = target.abundance * (1 - kTuneAbundanceTolerance);
        const double high = target.abundance * (1 + kTuneAbundanceTolerance);
        const VexaTuneResult* measured = FindResult(report, target.mass);
        if (measured == nullptr) {
            lines.push_back(PXFormat(L"  %5d  %8.1f  not measured", target.mass, target.abundance));
            continue;
        }
        const bool pass = WithinLimits(target, *measured);
        passed += pass ? 1 : 0;
        lines.push_back(PXFormat(L"  %5d  %8.1f  %10.1f  %6.1f - %-6.1f  %5.2f  %4.2f - %4.2f  %s",
                                 target.mass, target.abundance, measured->abundance, low, high,
                                 measured->width, target.width - kTuneWidthTolerance,
                                 target.width + kTuneWidthTolerance, pass ? L"PASS" : L"FAIL"));
    }
    return passed;
}

} // namespace

std::vector<std::wstring> GenerateTuneReport(const std::wstring& tuneFileName,
                                             const VexaTuneReportSection& report, const VexaTuneSection& tune,
                                             bool withHeader) {
    std::vector<std::wstring> lines;
    if (withHeader)
        AddHeader(lines, tuneFileName, report);
    AddSettings(lines, tune);
    const int passed = AddMassTable(lines, report, tune);
    const int total = int(tune.masses.size());
    lines.push_back(L"");
    lines.push_back(PXFormat(L"Result: %s (%d of %d masses within limits)",
                             total > 0 && passed == total ? L"PASS" : L"FAIL", passed, total));
    return lines;
}
