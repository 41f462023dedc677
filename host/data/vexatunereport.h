#pragma once
// A tune report file: JSON with format "VexaTuneReport", version 1, and its reports under `reports`.
// It lies in the "Reports" folder beside its tune file (ReportFileName). Keys this version does not
// know are kept.
#include "vexatunereportsections.h"

#include <string>

class VexaTuneReport {
public:
    // Reads a report file's text; false (and the reports unchanged) for anything else: another format,
    // a newer version, or a report without a time stamp.
    bool Parse(const std::string& utf8);
    std::string Serialize() const;

    VexaTuneReportSections_& Sections() { return m_sections; }
    const VexaTuneReportSections_& Sections() const { return m_sections; }

    // The report file of a tune file: "Reports" is appended to the tune file's folder, its name loses
    // the last three characters (a shorter name is kept whole) and gains "rpt"; local or remote alike.
    // "/d/Tune/Default.tun" -> "/d/Tune/Reports/Default.rpt".
    static std::wstring ReportFileName(const std::wstring& tuneFileName);

private:
    VexaTuneReportSections_ m_sections;
    std::string m_otherKeys = "{}";
};
