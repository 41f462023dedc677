// SPDX-License-Identifier: Apache-2.0
#pragma once
// What every JSON format of the data library shares: a "format" name and a "version" (1), readers
// that reject another format or a newer version, and field access that never throws on a file of the
// wrong shape (a missing or mistyped field reads as the fallback; the validity checks say why).
#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>

namespace VexaJson {

inline constexpr int kVersion = 1;

// {"format": format, "version": 1}.
nlohmann::json NewDocument(const char* format);
// True when the document is an object of `format` in a version this library reads; otherwise false
// with the reason for the user in *reason.
bool CheckHeader(const nlohmann::json& document, const char* format, std::wstring* reason);

// Whether object[key] is an integer (files hold times and settings as integers).
bool HasInt(const nlohmann::json& object, const char* key);
int64_t IntOr(const nlohmann::json& object, const char* key, int64_t fallback);
std::wstring StringOr(const nlohmann::json& object, const char* key, const std::wstring& fallback);
// object[key] when it is an object/array, else an empty one of that kind.
const nlohmann::json& ObjectAt(const nlohmann::json& object, const char* key);
const nlohmann::json& ArrayAt(const nlohmann::json& object, const char* key);

} // namespace VexaJson
