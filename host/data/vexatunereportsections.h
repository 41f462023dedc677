// SPDX-License-Identifier: Apache-2.0
#pragma once
// The reports of a tune report file, oldest first as the instrument appended them. Each report is the
// time the instrument tuned, the tune settings it tuned with and what it measured for each mass.
#include "vexatunesection.h"

#include <cstdint>
#include <string>
#include <vector>

struct VexaTuneResult {
    int mass = 0;
    double abundance = 0; // measured, percent of the base peak
    double width = 0;     // measured peak width, amu
    bool pass = false;    // the instrument's own verdict
};

struct VexaTuneReportSection {
    int64_t time = 0; // microseconds since 1970-01-01 UTC (signed)
    std::wstring instrument;
    VexaTuneSection tune;
    std::vector<VexaTuneResult> results;                 // by mass, ascending
    nlohmann::json otherKeys = nlohmann::json::object(); // keys this version does not know
};

class VexaTuneReportSections_ {
public:
    int GetNumReports() const { return int(m_reports.size()); }
    // Null for an index out of range.
    const VexaTuneReportSection* GetReport(int index) const;
    const VexaTuneSection* GetTune(int index) const;
    // False for an index out of range.
    bool RemoveReport(int index);
    void AddReport(VexaTuneReportSection report);
    void Clear() { m_reports.clear(); }

private:
    std::vector<VexaTuneReportSection> m_reports;
};
