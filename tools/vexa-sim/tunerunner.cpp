// SPDX-License-Identifier: Apache-2.0
#include "tunerunner.h"

#include <chrono>
#include <cmath>
#include <fstream>
#include <sstream>
#include <system_error>
#include <unistd.h>

#include "instrumentstate.h"
#include "pathconfinement.h"
#include "wireconstants.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

constexpr const char* kDemoTune = "/Tune/Default.tun";
// The instrument's own acceptance: abundance within 20 % of the target, peak width within 0.1 amu.
constexpr double kAbundanceTolerance = 0.20;
constexpr double kWidthTolerance = 0.10;

// 0, or the status that refuses the file.
std::uint32_t ReadJson(const fs::path& file, json* value, std::string* problem) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
        *problem = "cannot open " + file.filename().string();
        return wire::kStatusNotFound;
    }
    *value = json::parse(in, nullptr, false);
    if (value->is_discarded() || !value->is_object()) {
        *problem = file.filename().string() + " is not a valid JSON file";
        return wire::kStatusInvalid;
    }
    return wire::kStatusOk;
}

// Written beside the target and renamed onto it, so a failed write never leaves half a report file.
bool WriteJson(const fs::path& file, const json& value, std::string* problem) {
    const fs::path temporary = file.parent_path() / (".vexa-sim-tune." + std::to_string(::getpid()));
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        out << value.dump(2) << '\n';
        if (!out.flush()) {
            *problem = "cannot write " + temporary.string();
            std::error_code ignored;
            fs::remove(temporary, ignored);
            return false;
        }
    }
    std::error_code error;
    fs::rename(temporary, file, error);
    if (error) {
        *problem = "cannot replace " + file.string() + ": " + error.message();
        fs::remove(temporary, error);
        return false;
    }
    return true;
}

std::int64_t NowMicroseconds() {
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch()).count();
}

double Round(double value, double step) {
    return std::round(value / step) * step;
}

} // namespace

TuneRunner::TuneRunner(const PathConfinement& paths, InstrumentState& state)
    : m_paths(paths), m_state(state), m_noise(std::random_device{}()) {}

std::string TuneRunner::ReportPath(const std::string& tunePath) {
    const std::size_t slash = tunePath.find_last_of('/');
    const std::string folder = slash == std::string::npos ? std::string() : tunePath.substr(0, slash);
    std::string name = slash == std::string::npos ? tunePath : tunePath.substr(slash + 1);
    if (name.size() >= 3)
        name.resize(name.size() - 3);
    return folder + "/Reports/" + name + "rpt";
}

json TuneRunner::MakeReport(const json& tuneSection, std::int64_t timeUs, const std::string& instrument,
                            std::mt19937& noise) {
    std::normal_distribution<double> abundanceNoise(0.0, 0.07);
    std::normal_distribution<double> widthNoise(0.0, 0.035);
    json results = json::object();
    for (const json& target : tuneSection.value("masses", json::array())) {
        if (!target.is_object() || !target.contains("mass"))
            continue;
        const double abundance = target.value("abundance", 100.0);
        const double width = target.value("width", 0.6);
        // The base peak is scaled to 100 by definition; only the others wander.
        const double measured =
            abundance >= 100.0 ? 100.0 : Round(abundance * (1 + abundanceNoise(noise)), 0.1);
        const double measuredWidth = Round(width + widthNoise(noise), 0.01);
        const bool pass = std::fabs(measured - abundance) <= abundance * kAbundanceTolerance &&
                          std::fabs(measuredWidth - width) <= kWidthTolerance;
        results[std::to_string(target.value("mass", 0))] =
            json{{"abundance", measured}, {"width", measuredWidth}, {"pass", pass}};
    }
    return json{{"time", timeUs}, {"instrument", instrument}, {"tune", tuneSection}, {"results", results}};
}

std::string TuneRunner::InstrumentName() const {
    std::string name;
    if (const PathConfinement::Resolved file = m_paths.Resolve("/hostname"); file.ok()) {
        std::ifstream in(file.real);
        std::getline(in, name);
    }
    return name.empty() ? "VEXARON" : name;
}

TuneRunner::Outcome TuneRunner::Run(int number) {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::string tunePath = m_state.ManualTune(number);
    if (tunePath.empty())
        tunePath = kDemoTune;
    // The workstation may name the file in its remote form, "@HOST:/Tune/x.tun".
    if (tunePath.front() == '@' && tunePath.find(':') != std::string::npos)
        tunePath.erase(0, tunePath.find(':') + 1);
    const PathConfinement::Resolved tune = m_paths.Resolve(tunePath);
    if (!tune.ok())
        return {tune.status, tunePath + ": " + tune.message};
    json tuneFile;
    std::string problem;
    if (const std::uint32_t status = ReadJson(tune.real, &tuneFile, &problem); status != wire::kStatusOk)
        return {status, problem};
    if (tuneFile.value("format", "") != "VexaTune" || !tuneFile.value("tune", json()).is_object())
        return {wire::kStatusInvalid, tunePath + " is not a tune file"};

    const std::string reportPath = ReportPath(tune.instrumentPath);
    const PathConfinement::Resolved report = m_paths.Resolve(reportPath);
    if (!report.ok())
        return {report.status, reportPath + ": " + report.message};
    std::error_code error;
    fs::create_directories(report.entry.parent_path(), error);
    json reports = json{{"format", "VexaTuneReport"}, {"version", 1}, {"reports", json::array()}};
    if (fs::exists(report.real, error)) {
        if (const std::uint32_t status = ReadJson(report.real, &reports, &problem); status != wire::kStatusOk)
            return {status, problem};
    }
    if (!reports.contains("reports") || !reports["reports"].is_array())
        return {wire::kStatusInvalid, reportPath + " is not a tune report file"};
    reports["reports"].push_back(MakeReport(tuneFile["tune"], NowMicroseconds(), InstrumentName(), m_noise));
    if (!WriteJson(report.real, reports, &problem))
        return {wire::kStatusIoError, problem};
    return {wire::kStatusOk, reportPath};
}
