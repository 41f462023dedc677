#pragma once
// A tune file (".tun"): JSON with format "VexaTune", version 1, the tune section under `tune` and the
// method it was made with under parameters/SENSOR. Keys this version does not know are kept.
#include "vexatunesection.h"

#include <string>

class VexaTune {
public:
    // An empty tune: default settings, no masses.
    VexaTune() = default;

    // Reads a tune file's text; false (and the tune unchanged) for anything else, including a newer
    // version.
    bool Parse(const std::string& utf8);
    std::string Serialize() const;

    VexaTuneSection& GetTuneSection() { return m_section; }
    const VexaTuneSection& GetTuneSection() const { return m_section; }
    // The method named by parameters/SENSOR; empty when none.
    const std::wstring& GetSensorMethod() const { return m_sensorMethod; }
    void SetSensorMethod(const std::wstring& method) { m_sensorMethod = method; }

private:
    VexaTuneSection m_section;
    std::wstring m_sensorMethod;
    std::string m_otherKeys = "{}";
    std::string m_otherParameters = "{}";
};
