// SPDX-License-Identifier: Apache-2.0
#pragma once
// A tune report file: JSON with format "VexaTuneReport", version 1, and its reports under `reports`.
// It lies in the "Reports" folder beside its tune file (ReportFileName). Keys this version does not
// know are kept.
#include "vexafileref.h"
#include "vexatunereportsections.h"

#include <string>
#include <vector>

class VexaTuneReport {
public:
    // ---- the file ----
    // Opens and reads a report file. False for a missing or unreadable file, and with error 22 for a
    // file that is not a report file; the reports are then empty and nothing is open.
    bool Open(const std::wstring& name);
    // Writes the reports to the file they were read from (through a temporary name, so a failed save
    // leaves the old file as it was).
    bool Save();
    void Close();
    bool IsOpen() const { return m_file.IsOpen(); }
    int GetLastError() const { return m_lastError; }
    // What failed, with the error number and its meaning.
    const std::wstring& GetLastErrorText() const { return m_lastErrorText; }

    // ---- the content ----
    // Reads a report file's text; false (and the reports unchanged) for another format or a newer
    // version. A report that cannot be read (no time stamp, a malformed part) is left out of the list
    // and named by GetUnreadable ("reports[3]"); Save writes it back as it was.
    bool Parse(const std::string& utf8);
    std::string Serialize() const;

    VexaTuneReportSections_& Sections() { return m_sections; }
    const VexaTuneReportSections_& Sections() const { return m_sections; }

    // The report file of a tune file: "Reports" is appended to the tune file's folder, its name loses
    // the last three characters (a shorter name is kept whole) and gains "rpt"; local or remote alike.
    // "/d/Tune/Default.tun" -> "/d/Tune/Reports/Default.rpt".
    static std::wstring ReportFileName(const std::wstring& tuneFileName);

    // The parts of the file last read that could not be read.
    const std::vector<std::wstring>& GetUnreadable() const { return m_unreadable; }

private:
    bool FromDocument(const nlohmann::json& document);
    nlohmann::json ToDocument() const;
    bool Fail(int error, const std::wstring& text);

    VexaFileRef m_file;
    int m_lastError = 0;
    std::wstring m_lastErrorText;
    VexaTuneReportSections_ m_sections;
    nlohmann::json m_otherKeys = nlohmann::json::object();
    nlohmann::json m_unreadReports = nlohmann::json::array();
    std::vector<std::wstring> m_unreadable;
};
