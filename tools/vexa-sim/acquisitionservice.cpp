// SPDX-License-Identifier: Apache-2.0
#include "acquisitionservice.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <sstream>
#include <unistd.h>

#include "datafilewriter.h"
#include "instrumentstate.h"
#include "pathconfinement.h"
#include "samplemixture.h"
#include "scansynthesizer.h"
#include "wireconstants.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kDataFolder = "/Data";
constexpr const char* kTemporaryName = ".vexa-sim-acquisition.part";

bool ReadText(const fs::path& path, std::string* text) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    std::ostringstream content;
    content << file.rdbuf();
    *text = content.str();
    return true;
}

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    return text;
}

// The number of "RunNNN.vxs" (any case, any count of digits); 0 for other names.
long RunNumber(const std::string& name) {
    const std::string lower = Lower(name);
    if (lower.size() < 8 || lower.rfind("run", 0) != 0 || !lower.ends_with(".vxs"))
        return 0;
    const std::string digits = lower.substr(3, lower.size() - 7);
    if (digits.empty() || digits.size() > 9 || !std::all_of(digits.begin(), digits.end(), ::isdigit))
        return 0;
    return std::stol(digits);
}

std::string Format(double value) {
    std::ostringstream text;
    text << value;
    return text.str();
}

} // namespace

AcquisitionService::AcquisitionService(const PathConfinement& paths, InstrumentState& state,
                                       Settings settings)
    : m_paths(paths), m_state(state), m_settings(std::move(settings)) {}

AcquisitionService::~AcquisitionService() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_ending = true;
    }
    m_wake.notify_all();
    if (m_worker.joinable())
        m_worker.join();
}

bool AcquisitionService::IsMethodName(const std::string& word) {
    return Lower(word).ends_with(".mth");
}

std::uint32_t AcquisitionService::Start(const std::string& method, const std::string& commandLine,
                                        std::string* problem) {
    const PathConfinement::Resolved resolved = m_paths.Resolve(method);
    std::string methodJson;
    std::error_code error;
    if (!resolved.ok()) {
        *problem = resolved.message;
        return resolved.status;
    }
    if (!fs::is_regular_file(resolved.real, error) || !ReadText(resolved.real, &methodJson)) {
        *problem = "no method file " + resolved.instrumentPath;
        return wire::kStatusNotFound;
    }
    AcquisitionPlan plan;
    if (!plan.Load(methodJson, problem))
        return wire::kStatusInvalid;
    std::string sampleJson;
    const bool ownSample = !m_settings.sampleFile.empty();
    const PathConfinement::Resolved instrumentSample = m_paths.Resolve(kDefaultSample);
    if (ownSample ? !ReadText(m_settings.sampleFile, &sampleJson)
                  : instrumentSample.ok() && fs::exists(instrumentSample.real, error) &&
                        !ReadText(instrumentSample.real, &sampleJson)) {
        *problem = "cannot read the sample";
        return wire::kStatusIoError;
    }
    SampleMixture sample;
    if (!sampleJson.empty() && !sample.LoadText(sampleJson, problem))
        return wire::kStatusInvalid;

    std::lock_guard<std::mutex> lock(m_mutex);
    const double wallSeconds = plan.runSeconds / m_settings.timeScale;
    if (m_running || !m_state.StartAcquisition(commandLine, wallSeconds)) {
        *problem = "a method is already running";
        return wire::kStatusBusy;
    }
    if (m_worker.joinable())
        m_worker.join(); // finished: it only had to say so
    m_running = true;
    m_stopRequested = false;
    m_worker = std::thread(&AcquisitionService::Run, this, std::move(plan), resolved.instrumentPath,
                           std::move(sampleJson), wallSeconds);
    return wire::kStatusOk;
}

bool AcquisitionService::Stop() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_running || m_stopRequested)
            return false;
        m_stopRequested = true;
    }
    m_wake.notify_all();
    return true;
}

void AcquisitionService::Run(AcquisitionPlan plan, std::string method, std::string sampleJson,
                             double wallSeconds) {
    const Clock::time_point start = Clock::now();
    const auto end =
        start + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(wallSeconds));
    bool stopped = false;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_wake.wait_until(lock, end, [this] { return m_stopRequested || m_ending; });
        if (m_ending)
            return;
        stopped = m_stopRequested;
    }
    std::uint32_t scans = plan.ScanCount();
    if (stopped) {
        const double acquired =
            std::chrono::duration<double>(Clock::now() - start).count() * m_settings.timeScale;
        scans =
            std::min(scans, static_cast<std::uint32_t>(acquired * 1000.0 / AcquisitionPlan::kScanIntervalMs));
    }

    SampleMixture sample;
    std::string problem;
    if (!sampleJson.empty())
        sample.LoadText(sampleJson, &problem); // checked when the run started
    DataFileWriter writer(static_cast<std::uint32_t>(std::time(nullptr)), sample.name);
    ScanSynthesizer synthesizer(plan, sample, m_settings.seed);
    const std::uint32_t flags = plan.sim ? DataFileWriter::kSimFlag : 0;
    for (std::uint32_t i = 0; i < scans; ++i) {
        const SynthesizedScan scan = synthesizer.Next();
        writer.AddScan(scan.timeMs, flags, plan.masses, scan.intensity);
    }
    writer.AddParameter("SENSOR", method);
    writer.AddParameter("SAMPLE", sample.name);
    writer.AddParameter("INSTRUMENT", InstrumentName());
    writer.AddParameter("SCANMODE", plan.sim ? "1" : "0");
    writer.AddParameter("MASSLOW", Format(plan.sim ? plan.masses.front() : plan.massLow));
    writer.AddParameter("MASSHIGH", Format(plan.sim ? plan.masses.back() : plan.massHigh));
    writer.AddParameter("STOPPED", stopped ? "1" : "0");
    const std::string path = Store(writer.Bytes(), &problem);

    std::string text = path.empty() ? "method failed: " + problem
                                    : std::string(stopped ? "method stopped " : "method finished ") + path;
    std::lock_guard<std::mutex> lock(m_mutex);
    m_running = false;
    m_state.FinishAcquisition(text);
}

std::string AcquisitionService::Store(const std::vector<std::uint8_t>& bytes, std::string* problem) const {
    const PathConfinement::Resolved folder = m_paths.Resolve(kDataFolder);
    std::error_code error;
    if (!folder.ok() ||
        (!fs::is_directory(folder.real, error) && !fs::create_directories(folder.real, error))) {
        *problem = "no data folder";
        return {};
    }
    const fs::path temporary = folder.real / kTemporaryName;
    {
        std::ofstream file(temporary, std::ios::binary | std::ios::trunc);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!file.flush()) {
            fs::remove(temporary, error);
            *problem = "cannot write the data file";
            return {};
        }
    }
    // A hard link never replaces a file: a name taken meanwhile just moves the number on.
    for (int attempt = 0; attempt < 100; ++attempt) {
        long highest = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(folder.real, error))
            highest = std::max(highest, RunNumber(entry.path().filename().string()));
        char name[32];
        std::snprintf(name, sizeof name, "Run%03ld.vxs", highest + 1);
        if (::link(temporary.c_str(), (folder.real / name).c_str()) == 0) {
            fs::remove(temporary, error);
            return std::string(kDataFolder) + "/" + name;
        }
        if (errno != EEXIST)
            break;
    }
    fs::remove(temporary, error);
    *problem = "cannot name the data file";
    return {};
}

std::string AcquisitionService::InstrumentName() const {
    const PathConfinement::Resolved hostname = m_paths.Resolve("/hostname");
    std::string name;
    if (hostname.ok() && ReadText(hostname.real, &name))
        name = name.substr(0, name.find_first_of("\r\n"));
    return name.empty() ? "VEXARON" : name;
}
