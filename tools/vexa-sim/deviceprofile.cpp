// SPDX-License-Identifier: Apache-2.0
#include "deviceprofile.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

using nlohmann::json;

namespace {

// Numbers may also be given as text, so that "nan" and "inf" (which JSON lacks) can be profiled.
bool ReadDouble(const json& value, double* out) {
    if (value.is_number()) {
        *out = value.get<double>();
        return true;
    }
    if (value.is_string()) {
        const std::string text = value.get<std::string>();
        char* end = nullptr;
        *out = std::strtod(text.c_str(), &end);
        return !text.empty() && *end == '\0';
    }
    return false;
}

bool ReadHeaters(const json& value, std::map<int, int>* heaters) {
    if (!value.is_object())
        return false;
    for (const auto& [key, temperature] : value.items()) {
        char* end = nullptr;
        const long id = std::strtol(key.c_str(), &end, 10);
        if (key.empty() || *end != '\0' || !temperature.is_number_integer())
            return false;
        (*heaters)[static_cast<int>(id)] = temperature.get<int>();
    }
    return true;
}

bool ReadTexts(const json& value, std::vector<std::string>* texts) {
    if (!value.is_array())
        return false;
    std::vector<std::string> read;
    for (const json& item : value) {
        if (!item.is_string())
            return false;
        read.push_back(item.get<std::string>());
    }
    *texts = std::move(read);
    return true;
}

} // namespace

DeviceProfile DeviceProfile::Default() {
    DeviceProfile profile;
    const int ids[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 11, 12};
    const int temperatures[] = {1500, 1200, 0, 800, 3000, 1450, 1460, 1800, 1470, 2000, 2200};
    for (std::size_t i = 0; i < std::size(ids); ++i)
        profile.heaters[ids[i]] = temperatures[i];
    profile.heaters[10] = 0;
    for (int id = 25; id <= 32; ++id)
        profile.accessoryHeaters[id] = 0;
    profile.accessoryHeaters[26] = 1000;
    profile.accessoryHeaters[29] = 1200;
    profile.isSupplyPres = 550;
    profile.carrierSupplyPres = 520;
    profile.carrierControlPres = 140;
    profile.totalPres = 2.5e-3;
    profile.methodMRU = {"/Method/Default.mth", "/Method/Survey.mth"};
    return profile;
}

bool DeviceProfile::LoadFile(const std::string& path, std::string* problem) {
    std::ifstream file(path);
    if (!file) {
        *problem = "cannot read the profile " + path;
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

bool DeviceProfile::LoadText(const std::string& text, std::string* problem) {
    const json document = json::parse(text, nullptr, false);
    if (document.is_discarded() || !document.is_object()) {
        *problem = "not a JSON object";
        return false;
    }
    struct IntegerKey {
        const char* name;
        int* value;
    };
    const IntegerKey integers[] = {{"model", &model},
                                   {"cartridge", &cartridge},
                                   {"injectionPort", &injectionPort},
                                   {"accessory", &accessory},
                                   {"concentrator", &concentrator},
                                   {"neg", &neg},
                                   {"isSupplyPres", &isSupplyPres},
                                   {"carrierSupplyPres", &carrierSupplyPres},
                                   {"carrierControlPres", &carrierControlPres}};
    for (const auto& [key, value] : document.items()) {
        bool good = true;
        const IntegerKey* integer =
            std::find_if(std::begin(integers), std::end(integers),
                         [&name = key](const IntegerKey& item) { return name == item.name; });
        if (integer != std::end(integers)) {
            good = value.is_number_integer() || value.is_boolean();
            if (good)
                *integer->value = value.is_boolean() ? value.get<bool>() : value.get<int>();
        } else if (key == "heaters") {
            good = ReadHeaters(value, &heaters);
        } else if (key == "accessoryHeaters") {
            good = ReadHeaters(value, &accessoryHeaters);
        } else if (key == "totalPres") {
            good = ReadDouble(value, &totalPres);
        } else if (key == "methodSeconds") {
            good = ReadDouble(value, &methodSeconds) && methodSeconds >= 0;
        } else if (key == "drift") {
            good = value.is_boolean();
            if (good)
                drift = value.get<bool>();
        } else if (key == "methodMRU") {
            good = ReadTexts(value, &methodMRU);
        } else if (key == "serial" || key == "firmware") {
            good = value.is_string();
            if (good)
                (key == "serial" ? serial : firmware) = value.get<std::string>();
        } else if (key == "omitKeys") {
            good = ReadTexts(value, &omitKeys);
        } else if (key == "parameters") {
            good = value.is_object();
            for (const auto& [id, hex] : value.items()) {
                good = good && hex.is_string();
                if (good)
                    parameters[id] = hex.get<std::string>();
            }
        } else if (key.rfind("_", 0) == 0) {
            // Keys beginning with "_" are comments.
        } else {
            *problem = "unknown key \"" + key + "\"";
            return false;
        }
        if (!good) {
            *problem = "wrong value for \"" + key + "\"";
            return false;
        }
    }
    return true;
}
