// SPDX-License-Identifier: Apache-2.0
#include "samplemixture.h"

#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

using nlohmann::json;

namespace {

std::string TextOf(const json& object, const char* key, const std::string& fallback) {
    const json value = object.value(key, json());
    return value.is_string() ? value.get<std::string>() : fallback;
}

} // namespace

bool SampleMixture::LoadFile(const std::string& path, std::string* problem) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        *problem = "cannot read the sample " + path;
        return false;
    }
    std::ostringstream text;
    text << file.rdbuf();
    if (!LoadText(text.str(), problem)) {
        *problem = path + ": " + *problem;
        return false;
    }
    return true;
}

bool SampleMixture::LoadText(const std::string& text, std::string* problem) {
    const json document = json::parse(text, nullptr, false);
    if (document.is_discarded() || !document.is_object() || !document.value("compounds", json()).is_array()) {
        *problem = "a sample is a JSON object with a \"compounds\" array";
        return false;
    }
    std::vector<SampleCompound> read;
    for (const json& item : document["compounds"]) {
        SampleCompound compound;
        const json spectrum = item.is_object() ? item.value("spectrum", json()) : json();
        const auto number = [&item](const char* key, double* out) {
            const json value = item.value(key, json());
            if (!value.is_number())
                return false;
            *out = value.get<double>();
            return true;
        };
        if (!item.is_object() || !number("elutionTemp", &compound.elutionTemp) ||
            !number("amount", &compound.amount) || !number("peakWidth", &compound.peakWidth) ||
            compound.amount < 0 || compound.peakWidth <= 0 || !spectrum.is_array()) {
            *problem = "compound " + std::to_string(read.size() + 1) +
                       " needs elutionTemp, amount >= 0, peakWidth > 0 and a spectrum";
            return false;
        }
        compound.name = TextOf(item, "name", "Compound " + std::to_string(read.size() + 1));
        for (const json& peak : spectrum) {
            if (!peak.is_array() || peak.size() != 2 || !peak[0].is_number() || !peak[1].is_number() ||
                peak[0].get<double>() < 1 || peak[0].get<double>() > 2000 || peak[1].get<double>() < 0) {
                *problem = "compound " + std::to_string(read.size() + 1) +
                           ": a spectrum peak is [m/z 1..2000, abundance >= 0]";
                return false;
            }
            compound.spectrum.emplace_back(peak[0].get<double>(), peak[1].get<double>());
        }
        read.push_back(std::move(compound));
    }
    name = TextOf(document, "name", "Sample");
    compounds = std::move(read);
    return true;
}
