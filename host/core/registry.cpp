// SPDX-License-Identifier: Apache-2.0
#include "registry.h"

#include "paths.h"
#include "registrystore.h"
#include "text.h"

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <vector>

namespace {

std::string DefaultSettingsPath() {
    if (const char* explicitPath = std::getenv("VEXA_SETTINGS"); explicitPath && *explicitPath)
        return explicitPath;
    return PlatformSettingsLocation();
}

// Values that the INI readers would otherwise trim or split (QSettings reads "a,b" as a list) are
// written in double quotes with backslash escapes.
bool NeedsQuotes(const std::string& value) {
    if (value.empty())
        return false;
    if (value.front() == ' ' || value.back() == ' ' || value.front() == '\t' || value.back() == '\t')
        return true;
    return value.find_first_of(",;\"\\\n\r\t=#") != std::string::npos;
}

std::string Quote(const std::string& value) {
    std::string out = "\"";
    for (char c : value) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            out += c;
        }
    }
    return out + "\"";
}

std::string Unquote(const std::string& value) {
    if (value.size() < 2 || value.front() != '"' || value.back() != '"')
        return value;
    std::string out;
    for (size_t i = 1; i + 1 < value.size(); ++i) {
        char c = value[i];
        if (c == '\\' && i + 2 < value.size()) {
            c = value[++i];
            if (c == 'n')
                c = '\n';
            else if (c == 'r')
                c = '\r';
            else if (c == 't')
                c = '\t';
        }
        out += c;
    }
    return out;
}

// A key path "A/B/c" in a section is stored as section "A/B", key "c"; QSettings writes sub-keys with
// '\' inside a section, and keys of its "General" section belong to no section.
void SplitKeyPath(const std::string& section, const std::string& key, std::string* outSection,
                  std::string* outKey) {
    std::string full = section == "General" || section.empty() ? std::string() : section + "/";
    for (char c : key)
        full += c == '\\' ? '/' : c;
    const size_t slash = full.rfind('/');
    if (slash == std::string::npos) {
        outSection->clear();
        *outKey = full;
    } else {
        *outSection = full.substr(0, slash);
        *outKey = full.substr(slash + 1);
    }
}

std::atomic<unsigned> g_tempCounter{0};

} // namespace

CPXRegistry& CPXRegistry::Instance() {
    // The store follows $VEXA_SETTINGS, so a process (or a test) that changes it gets the new file.
    // Earlier stores stay alive: callers may still hold references to them.
    static std::mutex mutex;
    static std::vector<std::unique_ptr<CPXRegistry>> stores;
    const std::string path = DefaultSettingsPath();
    std::lock_guard lock(mutex);
    for (auto& store : stores) {
        if (store->Path() == path)
            return *store;
    }
    stores.push_back(std::make_unique<CPXRegistry>(path));
    return *stores.back();
}

CPXRegistry::CPXRegistry(std::string path) : m_path(std::move(path)) {
    std::lock_guard lock(m_mutex);
    LoadLocked();
}

void CPXRegistry::Reload() {
    std::lock_guard lock(m_mutex);
    LoadLocked();
}

void CPXRegistry::LoadLocked() {
    m_sections.clear();
    if (IsPlatformSettingsStore(m_path)) {
        LoadPlatformSettings(m_sections);
        return;
    }
    // The path is UTF-8: taken as a wide path, so a profile folder beyond ASCII works on Windows too.
    std::ifstream in(ToFsPath(FromUtf8(m_path)), std::ios::binary);
    if (!in)
        return;
    std::string line;
    std::string section;
    bool first = true;
    while (std::getline(in, line)) {
        if (first && line.starts_with("\xEF\xBB\xBF"))
            line.erase(0, 3);
        first = false;
        line = std::string(TrimBlanks(line));
        if (line.empty() || line[0] == ';' || line[0] == '#')
            continue;
        if (line.front() == '[' && line.back() == ']') {
            section = std::string(TrimBlanks(line.substr(1, line.size() - 2)));
            continue;
        }
        const size_t eq = line.find('=');
        if (eq == std::string::npos)
            continue;
        std::string keySection, key;
        SplitKeyPath(section, std::string(TrimBlanks(line.substr(0, eq))), &keySection, &key);
        if (key.empty())
            continue;
        m_sections[keySection][key] = Unquote(std::string(TrimBlanks(line.substr(eq + 1))));
    }
}

bool CPXRegistry::SaveLocked() const {
    std::ostringstream text;
    bool firstSection = true;
    for (const auto& [section, values] : m_sections) {
        if (values.empty())
            continue;
        if (!firstSection)
            text << '\n';
        firstSection = false;
        text << '[' << (section.empty() ? std::string("General") : section) << "]\n";
        for (const auto& [key, value] : values)
            text << key << '=' << (NeedsQuotes(value) ? Quote(value) : value) << '\n';
    }
    std::error_code ec;
    const std::filesystem::path target = ToFsPath(FromUtf8(m_path));
    if (target.has_parent_path())
        std::filesystem::create_directories(target.parent_path(), ec);
    const long pid = CurrentProcessId();
    const std::filesystem::path temp =
        ToFsPath(FromUtf8(m_path + ".tmp." + std::to_string(pid) + "." + std::to_string(++g_tempCounter)));
    {
        std::ofstream out(temp, std::ios::binary | std::ios::trunc);
        if (!out)
            return false;
        const std::string data = text.str();
        out.write(data.data(), static_cast<std::streamsize>(data.size()));
        out.flush();
        if (!out) {
            out.close();
            std::filesystem::remove(temp, ec);
            return false;
        }
    }
    std::filesystem::rename(temp, target, ec);
    if (ec) {
        std::filesystem::remove(temp, ec);
        return false;
    }
    return true;
}

std::optional<std::wstring> CPXRegistry::GetString(const std::wstring& section,
                                                   const std::wstring& key) const {
    std::string s, k;
    SplitKeyPath(ToUtf8(section), ToUtf8(key), &s, &k);
    std::lock_guard lock(m_mutex);
    auto sectionIt = m_sections.find(s);
    if (sectionIt == m_sections.end())
        return std::nullopt;
    auto valueIt = sectionIt->second.find(k);
    if (valueIt == sectionIt->second.end())
        return std::nullopt;
    return FromUtf8(valueIt->second);
}

std::wstring CPXRegistry::GetString(const std::wstring& section, const std::wstring& key,
                                    const std::wstring& fallback) const {
    return GetString(section, key).value_or(fallback);
}

int CPXRegistry::GetInt(const std::wstring& section, const std::wstring& key, int fallback) const {
    const auto value = GetString(section, key);
    if (!value)
        return fallback;
    try {
        size_t used = 0;
        const long long number = std::stoll(*value, &used, 0);
        if (number < INT32_MIN || number > INT32_MAX)
            return fallback;
        return static_cast<int>(number);
    } catch (...) {
        return fallback;
    }
}

bool CPXRegistry::SetString(const std::wstring& section, const std::wstring& key, const std::wstring& value) {
    std::string s, k;
    SplitKeyPath(ToUtf8(section), ToUtf8(key), &s, &k);
    if (k.empty() || k.find_first_of("=\n\r[]") != std::string::npos ||
        s.find_first_of("\n\r[]") != std::string::npos)
        return false;
    std::lock_guard lock(m_mutex);
    // Pick up what other processes saved meanwhile, so a write changes only its own value.
    LoadLocked();
    m_sections[s][k] = ToUtf8(value);
    if (IsPlatformSettingsStore(m_path))
        return SetPlatformSetting(s, k, m_sections[s][k]);
    return SaveLocked();
}

bool CPXRegistry::SetInt(const std::wstring& section, const std::wstring& key, int value) {
    return SetString(section, key, std::to_wstring(value));
}

bool CPXRegistry::Remove(const std::wstring& section, const std::wstring& key) {
    std::string s, k;
    SplitKeyPath(ToUtf8(section), ToUtf8(key), &s, &k);
    std::lock_guard lock(m_mutex);
    LoadLocked();
    auto sectionIt = m_sections.find(s);
    if (sectionIt == m_sections.end() || sectionIt->second.erase(k) == 0)
        return true;
    if (sectionIt->second.empty())
        m_sections.erase(sectionIt);
    if (IsPlatformSettingsStore(m_path))
        return RemovePlatformSetting(s, k);
    return SaveLocked();
}
