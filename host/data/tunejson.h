#pragma once
// JSON forms of the tune library's records, for the library's own files only (the public headers do not
// carry the JSON library). Readers return false for a value that is not the record; they never throw.
#include "vexatunesection.h"

#include <nlohmann/json.hpp>

nlohmann::json TuneSectionToJson(const VexaTuneSection& section);
bool TuneSectionFromJson(const nlohmann::json& value, VexaTuneSection* section);

// The object's keys other than `known`, as JSON text.
std::string OtherKeys(const nlohmann::json& value, std::initializer_list<const char*> known);
// `value` with the keys of the JSON text `other` added where it has none of its own.
void MergeOtherKeys(nlohmann::json& value, const std::string& other);
