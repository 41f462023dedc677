// SPDX-License-Identifier: Apache-2.0
#include "vexatunereportsections.h"

const VexaTuneReportSection* VexaTuneReportSections_::GetReport(int index) const {
    if (index < 0 || index >= GetNumReports())
        return nullptr;
    return &m_reports[size_t(index)];
}

const VexaTuneSection* VexaTuneReportSections_::GetTune(int index) const {
    const VexaTuneReportSection* report = GetReport(index);
    return report ? &report->tune : nullptr;
}

bool VexaTuneReportSections_::RemoveReport(int index) {
    if (index < 0 || index >= GetNumReports())
        return false;
    m_reports.erase(m_reports.begin() + index);
    return true;
}

void VexaTuneReportSections_::AddReport(VexaTuneReportSection report) {
    m_reports.push_back(std::move(report));
}
