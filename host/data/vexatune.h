// SPDX-License-Identifier: Apache-2.0
#pragma once
// A tune file (".tun"): JSON with format "VexaTune", version 1, the tune section under `tune` and the
// method it was made with under parameters/SENSOR. Keys this version does not know are kept.
#include "vexafileref.h"
#include "vexatunesection.h"

#include <string>
#include <vector>

class VexaTune {
public:
    // An empty tune: default settings, no masses.
    VexaTune() = default;

    // Reads a tune file's text; false (and the tune unchanged) for another format or a newer version.
    // A part that is missing keeps its default; one that is malformed too, and GetUnreadable names it.
    bool Parse(const std::string& utf8);
    std::string Serialize() const;

    // Reads a tune file; false when it cannot be read or is not a tune file (error 22).
    bool Open(const std::wstring& name);
    // Writes the tune to `name` through a temporary name, so a failed save leaves the old file as it was.
    bool Save(const std::wstring& name);
    int GetLastError() const { return m_lastError; }
    // What failed, with the error number and its meaning.
    const std::wstring& GetLastErrorText() const { return m_lastErrorText; }

    VexaTuneSection& GetTuneSection() { return m_section; }
    const VexaTuneSection& GetTuneSection() const { return m_section; }
    // The method named by parameters/SENSOR; empty when none.
    const std::wstring& GetSensorMethod() const { return m_sensorMethod; }
    void SetSensorMethod(const std::wstring& method) { m_sensorMethod = method; }
    // The malformed parts of the file last read ("tune.emission", "parameters.SENSOR").
    const std::vector<std::wstring>& GetUnreadable() const { return m_unreadable; }

private:
    bool FromDocument(const nlohmann::json& document);
    nlohmann::json ToDocument() const;

    VexaFileRef m_file;
    int m_lastError = 0;
    std::wstring m_lastErrorText;
    VexaTuneSection m_section;
    std::wstring m_sensorMethod;
    nlohmann::json m_otherKeys = nlohmann::json::object();
    nlohmann::json m_otherParameters = nlohmann::json::object();
    std::vector<std::wstring> m_unreadable;
};
