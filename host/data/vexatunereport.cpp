// SPDX-License-Identifier: Apache-2.0
#include "vexatunereport.h"

#include "remotename.h"
#include "text.h"
#include "tunejson.h"
#include "vexajson.h"
#include "winsockerror.h"

#include <algorithm>
#include <cstdlib>

using nlohmann::json;

namespace {

constexpr const char* kFormat = "VexaTuneReport";

bool ResultsFromJson(const json& value, std::vector<VexaTuneResult>* results) {
    if (!value.is_object())
        return false;
    for (const auto& [key, item] : value.items()) {
        char* end = nullptr;
        const long mass = std::strtol(key.c_str(), &end, 10);
        if (end == key.c_str() || *end != '\0' || !item.is_object())
            return false;
        VexaTuneResult result;
        result.mass = int(mass);
        const json abundance = item.value("abundance", json(0.0));
        const json width = item.value("width", json(0.0));
        const json pass = item.value("pass", json(false));
        if (!abundance.is_number() || !width.is_number() || !pass.is_boolean())
            return false;
        result.abundance = abundance.get<double>();
        result.width = width.get<double>();
        result.pass = pass.get<bool>();
        results->push_back(result);
    }
    std::sort(results->begin(), results->end(),
              [](const VexaTuneResult& a, const VexaTuneResult& b) { return a.mass < b.mass; });
    return true;
}

bool ReportFromJson(const json& value, VexaTuneReportSection* report) {
    if (!value.is_object())
        return false;
    const auto time = value.find("time");
    if (time == value.end() || !time->is_number_integer())
        return false;
    report->time = time->get<int64_t>();
    const json instrument = value.value("instrument", json(""));
    if (!instrument.is_string())
        return false;
    report->instrument = FromUtf8(instrument.get<std::string>());
    if (!TuneSectionFromJson(value.value("tune", json::object()), &report->tune))
        return false;
    if (!ResultsFromJson(value.value("results", json::object()), &report->results))
        return false;
    report->otherKeys = OtherKeys(value, {"time", "instrument", "tune", "results"});
    return true;
}

json ReportToJson(const VexaTuneReportSection& report) {
    json results = json::object();
    for (const VexaTuneResult& result : report.results)
        results[std::to_string(result.mass)] = {
            {"abundance", result.abundance}, {"width", result.width}, {"pass", result.pass}};
    json value = {{"time", report.time}, {"tune", TuneSectionToJson(report.tune)}, {"results", results}};
    if (!report.instrument.empty())
        value["instrument"] = ToUtf8(report.instrument);
    MergeOtherKeys(value, report.otherKeys);
    return value;
}

} // namespace

bool VexaTuneReport::Fail(int error, const std::wstring& text) {
    m_lastError = error;
    m_lastErrorText = text;
    return false;
}

bool VexaTuneReport::Open(const std::wstring& name) {
    Close();
    if (!m_file.Open(name))
        return Fail(m_file.GetLastError(), m_file.GetLastErrorText());
    if (!FromDocument(m_file.Document())) {
        m_file.Close();
        return Fail(kErrInvalid,
                    name + L" is not a tune report file (error " + DescribeError(kErrInvalid) + L").");
    }
    return true;
}

bool VexaTuneReport::Save() {
    if (!m_file.IsOpen())
        return Fail(kErrBadFile, L"No tune report file is open (error " + DescribeError(kErrBadFile) + L").");
    m_file.SetDocument(ToDocument());
    if (!m_file.Save())
        return Fail(m_file.GetLastError(), m_file.GetLastErrorText());
    return true;
}

void VexaTuneReport::Close() {
    m_file.Close();
    m_sections.Clear();
    m_otherKeys = json::object();
    m_unreadReports = json::array();
    m_unreadable.clear();
    m_lastError = 0;
    m_lastErrorText.clear();
}

bool VexaTuneReport::Parse(const std::string& utf8) {
    return FromDocument(json::parse(utf8, nullptr, false));
}

bool VexaTuneReport::FromDocument(const json& value) {
    std::wstring reason;
    if (!VexaJson::CheckHeader(value, kFormat, &reason))
        return false;
    std::vector<std::wstring> unreadable;
    json unread = json::array();
    json reports = value.value("reports", json::array());
    if (!reports.is_array()) {
        unreadable.push_back(L"reports");
        reports = json::array();
    }
    VexaTuneReportSections_ sections;
    for (size_t i = 0; i < reports.size(); ++i) {
        VexaTuneReportSection report;
        if (ReportFromJson(reports[i], &report)) {
            sections.AddReport(std::move(report));
        } else {
            // Left out of the list, but written back on save: a removal must not lose it.
            unreadable.push_back(L"reports[" + std::to_wstring(i + 1) + L"]");
            unread.push_back(reports[i]);
        }
    }
    m_sections = std::move(sections);
    m_otherKeys = OtherKeys(value, {"format", "version", "reports"});
    if (!value.value("reports", json::array()).is_array())
        m_otherKeys["reports"] = value["reports"];
    m_unreadReports = std::move(unread);
    m_unreadable = std::move(unreadable);
    return true;
}

json VexaTuneReport::ToDocument() const {
    json reports = json::array();
    for (int i = 0; i < m_sections.GetNumReports(); ++i)
        reports.push_back(ReportToJson(*m_sections.GetReport(i)));
    for (const json& item : m_unreadReports)
        reports.push_back(item);
    json value = VexaJson::NewDocument(kFormat);
    MergeOtherKeys(value, m_otherKeys);
    // A "reports" that was no list stays as it was until there is a report to write.
    if (!reports.empty() || !value.contains("reports"))
        value["reports"] = reports;
    return value;
}

std::string VexaTuneReport::Serialize() const {
    return ToDocument().dump(2) + "\n";
}

std::wstring VexaTuneReport::ReportFileName(const std::wstring& tuneFileName) {
    std::wstring folder, name, host;
    ParseFilename(tuneFileName, &folder, &name, &host);
    if (name.size() >= 3)
        name.resize(name.size() - 3);
    name += L"rpt";
    // A local name keeps its own separator; MakeFilename joins with '/', which every platform reads.
    return MakeFilename(MakeFilename(folder, L"Reports", L""), name, host);
}
