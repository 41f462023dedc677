// SPDX-License-Identifier: Apache-2.0
#pragma once
// The suite's settings ("the registry"): sections and values in one INI file, or on Windows in the
// registry. The store is the file $VEXA_SETTINGS when set, else the platform's default: the key
// HKEY_CURRENT_USER\Software\VexaSuite on Windows (section "A/B" is its sub-key A\B), the file
// <config folder>/VexaSuite/vexa.ini elsewhere. Reads and writes are thread-safe; every write is saved
// at once (a file is written to a temporary name, then renamed).
#include <map>
#include <mutex>
#include <optional>
#include <string>

class CPXRegistry {
public:
    // The process-wide store over the default file.
    static CPXRegistry& Instance();
    // `path` is an INI file, or the name of the platform's store (Path() of the default store).
    explicit CPXRegistry(std::string path);

    // Section "FTP/HostMap" and key "h" address the value FTP/HostMap/h.
    std::optional<std::wstring> GetString(const std::wstring& section, const std::wstring& key) const;
    std::wstring GetString(const std::wstring& section, const std::wstring& key,
                           const std::wstring& fallback) const;
    int GetInt(const std::wstring& section, const std::wstring& key, int fallback) const;
    bool SetString(const std::wstring& section, const std::wstring& key, const std::wstring& value);
    bool SetInt(const std::wstring& section, const std::wstring& key, int value);
    bool Remove(const std::wstring& section, const std::wstring& key);
    const std::string& Path() const { return m_path; }
    // Re-reads the file (another process may have changed it).
    void Reload();

private:
    void LoadLocked();
    bool SaveLocked() const;

    std::string m_path;
    mutable std::mutex m_mutex;
    std::map<std::string, std::map<std::string, std::string>> m_sections; // UTF-8
};
