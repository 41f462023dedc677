// SPDX-License-Identifier: Apache-2.0
#include "instrumentstate.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <numbers>

namespace {

std::vector<std::uint8_t> BytesFromHex(const std::string& hex) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::strtoul(hex.substr(i, 2).c_str(), nullptr, 16)));
    return bytes;
}

std::string FileStamp(const std::string& path) {
    std::error_code error;
    const auto time = std::filesystem::last_write_time(path, error);
    if (error)
        return {};
    const auto size = std::filesystem::file_size(path, error);
    return std::to_string(time.time_since_epoch().count()) + ":" + std::to_string(error ? 0 : size);
}

} // namespace

InstrumentState::InstrumentState(DeviceProfile profile) : m_profile(std::move(profile)) {
    m_parameters[{kReadyParameter, 0}] = {1, 0, 0, 0};
    ApplyProfileParametersLocked();
}

void InstrumentState::ApplyProfileParametersLocked() {
    for (const auto& [key, hex] : m_profile.parameters) {
        unsigned id = 0;
        unsigned index = 0;
        if (std::sscanf(key.c_str(), "%u:%u", &id, &index) == 2)
            m_parameters[{id, index}] = BytesFromHex(hex);
    }
}

void InstrumentState::WatchProfile(const std::string& path) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_profilePath = path;
    m_profileStamp = FileStamp(path);
}

void InstrumentState::ReloadProfileLocked() {
    if (m_profilePath.empty())
        return;
    const std::string stamp = FileStamp(m_profilePath);
    if (stamp.empty() || stamp == m_profileStamp)
        return;
    m_profileStamp = stamp;
    DeviceProfile profile = DeviceProfile::Default();
    std::string problem;
    if (!profile.LoadFile(m_profilePath, &problem)) {
        std::fprintf(stderr, "vexa-sim: profile not changed: %s\n", problem.c_str());
        return;
    }
    m_profile = std::move(profile);
    ApplyProfileParametersLocked();
}

int InstrumentState::Drifted(int value, double amplitude, int salt, double seconds) const {
    // A heater at 0 is off and a pressure at 0 is unread: neither wanders.
    if (!m_profile.drift || value == 0)
        return value;
    const double period = 20.0 + salt % 17;
    return value + static_cast<int>(
                       std::lround(amplitude * std::sin(2 * std::numbers::pi * seconds / period + salt)));
}

std::string InstrumentState::StatusText() {
    std::lock_guard<std::mutex> lock(m_mutex);
    ReloadProfileLocked();
    const Clock::time_point now = Clock::now();
    AdvanceLocked(now);
    const double seconds = std::chrono::duration<double>(now - m_start).count();

    std::vector<std::pair<std::string, std::string>> lines;
    auto add = [&lines](std::string key, std::string value) {
        lines.emplace_back(std::move(key), std::move(value));
    };
    add("model", std::to_string(m_profile.model));
    add("cartridge", std::to_string(m_profile.cartridge));
    add("injectionPort", std::to_string(m_profile.injectionPort));
    add("accessory", std::to_string(m_profile.accessory));
    add("concentrator", std::to_string(m_profile.concentrator));
    add("neg", std::to_string(m_profile.neg));
    for (const auto& [id, tenths] : m_profile.heaters)
        add("heater." + std::to_string(id), std::to_string(Drifted(tenths, 3, id, seconds)));
    for (const auto& [id, tenths] : m_profile.accessoryHeaters)
        add("accessoryHeater." + std::to_string(id), std::to_string(Drifted(tenths, 3, id, seconds)));
    add("isSupplyPres", std::to_string(Drifted(m_profile.isSupplyPres, 1, 41, seconds)));
    add("carrierSupplyPres", std::to_string(Drifted(m_profile.carrierSupplyPres, 1, 42, seconds)));
    add("carrierControlPres", std::to_string(Drifted(m_profile.carrierControlPres, 1, 43, seconds)));
    double total = m_profile.totalPres;
    // 0 and negative totals are the gauge's range codes, not readings.
    if (m_profile.drift && std::isfinite(total) && total > 0 && total < 1e30)
        total *= 1 + 0.02 * std::sin(2 * std::numbers::pi * seconds / 31.0);
    char number[64];
    std::snprintf(number, sizeof number, "%.6g", total);
    add("totalPres", number);
    add("process", m_process);
    if (!m_process.empty()) {
        const auto whole = [](Clock::duration span) {
            return std::chrono::duration_cast<std::chrono::seconds>(span).count();
        };
        const auto total = whole(m_processLength + std::chrono::milliseconds(500));
        add("processElapsed", std::to_string(std::min<long long>(whole(now - m_processStart), total)));
        add("processTotal", std::to_string(total));
    }
    add("backupProgress", std::to_string(m_backupProgress));
    for (std::size_t i = 0; i < m_profile.methodMRU.size(); ++i)
        add("methodMRU." + std::to_string(i), m_profile.methodMRU[i]);
    const std::vector<std::uint8_t>& ready = m_parameters[{kReadyParameter, 0}];
    add("ready", std::any_of(ready.begin(), ready.end(), [](std::uint8_t b) { return b != 0; }) ? "1" : "0");
    add("serial", m_profile.serial);
    add("firmware", m_profile.firmware);

    std::string text;
    for (const auto& [key, value] : lines) {
        const auto& omitted = m_profile.omitKeys;
        if (std::find(omitted.begin(), omitted.end(), key) == omitted.end())
            text += key + "=" + value + "\n";
    }
    return text;
}

std::vector<std::uint8_t> InstrumentState::GetParameter(std::uint32_t id, std::uint32_t index,
                                                        std::size_t size) {
    std::lock_guard<std::mutex> lock(m_mutex);
    std::vector<std::uint8_t> bytes;
    if (auto found = m_parameters.find({id, index}); found != m_parameters.end())
        bytes = found->second;
    bytes.resize(size, 0);
    return bytes;
}

void InstrumentState::SetParameter(std::uint32_t id, std::uint32_t index, std::vector<std::uint8_t> bytes) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_parameters[{id, index}] = std::move(bytes);
}

std::vector<std::string> InstrumentState::TakeEvents() {
    std::lock_guard<std::mutex> lock(m_mutex);
    AdvanceLocked(Clock::now());
    std::vector<std::string> events(m_events.begin(), m_events.end());
    m_events.clear();
    return events;
}

void InstrumentState::QueueEvent(std::uint32_t code, const std::string& text) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_events.push_back(std::to_string(code) + " " + text);
}

bool InstrumentState::StartMethod(const std::string& commandLine) {
    std::lock_guard<std::mutex> lock(m_mutex);
    const Clock::time_point now = Clock::now();
    AdvanceLocked(now);
    if (!m_process.empty())
        return false;
    m_process = commandLine;
    m_processStart = now;
    m_processLength =
        std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(m_profile.methodSeconds));
    m_processEndsByItself = true;
    return true;
}

bool InstrumentState::StartAcquisition(const std::string& commandLine, double seconds) {
    std::lock_guard<std::mutex> lock(m_mutex);
    const Clock::time_point now = Clock::now();
    AdvanceLocked(now);
    if (!m_process.empty())
        return false;
    m_process = commandLine;
    m_processStart = now;
    m_processLength = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    m_processEndsByItself = false;
    return true;
}

void InstrumentState::FinishAcquisition(const std::string& eventText) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_process.clear();
    m_events.push_back(std::to_string(kEventMethodFinished) + " " + eventText);
}

bool InstrumentState::StopMethod() {
    std::lock_guard<std::mutex> lock(m_mutex);
    AdvanceLocked(Clock::now());
    if (m_process.empty() || !m_processEndsByItself)
        return false;
    m_process.clear();
    m_events.push_back(std::to_string(kEventMethodFinished) + " method stopped");
    return true;
}

std::string InstrumentState::RunningProcess() {
    std::lock_guard<std::mutex> lock(m_mutex);
    AdvanceLocked(Clock::now());
    return m_process;
}

void InstrumentState::SetManualTune(int number, const std::string& path) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_manualTunes[number] = path;
}

std::string InstrumentState::ManualTune(int number) {
    std::lock_guard<std::mutex> lock(m_mutex);
    const auto found = m_manualTunes.find(number);
    return found == m_manualTunes.end() ? std::string() : found->second;
}

void InstrumentState::SetBackupProgress(int percent) {
    std::lock_guard<std::mutex> lock(m_mutex);
    m_backupProgress = percent;
}

// Time moves the state on lazily, whenever someone looks: a finished method clears `process` and
// leaves its event in the queue.
void InstrumentState::AdvanceLocked(Clock::time_point now) {
    if (!m_process.empty() && m_processEndsByItself && now - m_processStart >= m_processLength) {
        m_process.clear();
        m_events.push_back(std::to_string(kEventMethodFinished) + " method finished");
    }
}
