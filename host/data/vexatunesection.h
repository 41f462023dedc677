// SPDX-License-Identifier: Apache-2.0
#pragma once
// The tune settings of a tune file or of one tune report: the calibrant, the ion source's settings
// and the calibrant's masses with their target abundance (percent of the base peak) and peak width
// (amu). Keys this version does not know are kept, so a newer file survives being saved by it.
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

struct VexaTuneMass {
    int mass = 0;
    double abundance = 0; // percent of the base peak
    double width = 0;     // peak width at half height, amu
};

class VexaTuneSection {
public:
    std::wstring calibrant;
    double electronEnergy = 70; // eV
    double emission = 0;        // µA
    double repeller = 0;        // V
    std::vector<VexaTuneMass> masses;

    // The other keys of the section's JSON object.
    const nlohmann::json& OtherKeys() const { return m_otherKeys; }
    void SetOtherKeys(nlohmann::json keys) { m_otherKeys = std::move(keys); }

private:
    nlohmann::json m_otherKeys = nlohmann::json::object();
};
