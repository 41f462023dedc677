// SPDX-License-Identifier: Apache-2.0
#include "tunejson.h"

#include "text.h"

using nlohmann::json;

namespace {

bool ReadNumber(const json& value, const char* key, double* out) {
    const auto found = value.find(key);
    if (found == value.end())
        return true; // a missing setting keeps its default
    if (!found->is_number())
        return false;
    *out = found->get<double>();
    return true;
}

} // namespace

json OtherKeys(const json& value, std::initializer_list<const char*> known) {
    json other = json::object();
    for (const auto& [key, item] : value.items()) {
        bool isKnown = false;
        for (const char* name : known)
            isKnown = isKnown || key == name;
        if (!isKnown)
            other[key] = item;
    }
    return other;
}

void MergeOtherKeys(json& value, const json& other) {
    if (!other.is_object())
        return;
    for (const auto& [key, item] : other.items()) {
        if (!value.contains(key))
            value[key] = item;
    }
}

json TuneSectionToJson(const VexaTuneSection& section) {
    json masses = json::array();
    for (const VexaTuneMass& mass : section.masses)
        masses.push_back({{"mass", mass.mass}, {"abundance", mass.abundance}, {"width", mass.width}});
    json value = {{"calibrant", ToUtf8(section.calibrant)},
                  {"electronEnergy", section.electronEnergy},
                  {"emission", section.emission},
                  {"repeller", section.repeller},
                  {"masses", masses}};
    MergeOtherKeys(value, section.OtherKeys());
    return value;
}

bool TuneSectionFromJson(const json& value, VexaTuneSection* section, std::vector<std::wstring>* unreadable) {
    if (!value.is_object()) {
        if (!unreadable)
            return false;
        unreadable->push_back(L"tune");
        *section = VexaTuneSection();
        return true;
    }
    // Strict: the first malformed part refuses the section. Lenient: it is named and left out.
    const auto bad = [unreadable](const std::wstring& name) {
        if (unreadable)
            unreadable->push_back(L"tune." + name);
        return unreadable != nullptr;
    };
    VexaTuneSection read;
    if (const auto calibrant = value.find("calibrant"); calibrant != value.end()) {
        if (calibrant->is_string())
            read.calibrant = FromUtf8(calibrant->get<std::string>());
        else if (!bad(L"calibrant"))
            return false;
    }
    const std::pair<const char*, double*> numbers[] = {
        {"electronEnergy", &read.electronEnergy}, {"emission", &read.emission}, {"repeller", &read.repeller}};
    for (const auto& [key, target] : numbers) {
        double number = *target;
        if (ReadNumber(value, key, &number))
            *target = number;
        else if (!bad(FromUtf8(key)))
            return false;
    }
    const json masses = value.value("masses", json::array());
    if (!masses.is_array() && !bad(L"masses"))
        return false;
    for (size_t i = 0; masses.is_array() && i < masses.size(); ++i) {
        const json& item = masses[i];
        VexaTuneMass mass;
        double number = 0;
        if (!item.is_object() || !item.contains("mass") || !ReadNumber(item, "mass", &number) ||
            !ReadNumber(item, "abundance", &mass.abundance) || !ReadNumber(item, "width", &mass.width)) {
            if (!bad(L"masses[" + std::to_wstring(i + 1) + L"]"))
                return false;
            continue;
        }
        mass.mass = int(number);
        read.masses.push_back(mass);
    }
    read.SetOtherKeys(OtherKeys(value, {"calibrant", "electronEnergy", "emission", "repeller", "masses"}));
    *section = std::move(read);
    return true;
}
