// SPDX-License-Identifier: Apache-2.0
#pragma once
// JSON forms of the tune library's records. Readers return false for a value that is not the record;
// they never throw.
#include "vexatunesection.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

nlohmann::json TuneSectionToJson(const VexaTuneSection& section);
// Without `unreadable` any malformed part refuses the section; with it, each malformed part (a
// setting, a mass, or the whole section) is left out at its default and named ("tune.emission").
bool TuneSectionFromJson(const nlohmann::json& value, VexaTuneSection* section,
                         std::vector<std::wstring>* unreadable = nullptr);

// The object's keys other than `known`, as an object.
nlohmann::json OtherKeys(const nlohmann::json& value, std::initializer_list<const char*> known);
// Adds the keys of `other` that `value` does not have itself.
void MergeOtherKeys(nlohmann::json& value, const nlohmann::json& other);
