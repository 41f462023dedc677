// SPDX-License-Identifier: Apache-2.0
#include "vexajson.h"

#include "text.h"

namespace VexaJson {

nlohmann::json NewDocument(const char* format) {
    return nlohmann::json{{"format", format}, {"version", kVersion}};
}

bool CheckHeader(const nlohmann::json& document, const char* format, std::wstring* reason) {
    if (!document.is_object()) {
        *reason = L"The file is not a JSON object.";
        return false;
    }
    const std::wstring found = StringOr(document, "format", {});
    if (found != FromUtf8(format)) {
        *reason = found.empty() ? L"The file names no format."
                                : L"The file is a " + found + L", not a " + FromUtf8(format) + L".";
        return false;
    }
    if (!HasInt(document, "version") || document["version"].get<int64_t>() < 1) {
        *reason = L"The file has no valid version.";
        return false;
    }
    if (document["version"].get<int64_t>() > kVersion) {
        *reason = L"The file was written by a newer version (" +
                  std::to_wstring(document["version"].get<int64_t>()) + L"); this program reads version " +
                  std::to_wstring(kVersion) + L".";
        return false;
    }
    return true;
}

bool HasInt(const nlohmann::json& object, const char* key) {
    if (!object.is_object())
        return false;
    auto found = object.find(key);
    return found != object.end() && found->is_number_integer();
}

int64_t IntOr(const nlohmann::json& object, const char* key, int64_t fallback) {
    if (!HasInt(object, key))
        return fallback;
    const nlohmann::json& value = object[key];
    // Values beyond the signed range read as the fallback rather than wrapping.
    if (value.is_number_unsigned() && value.get<uint64_t>() > uint64_t{INT64_MAX})
        return fallback;
    return value.get<int64_t>();
}

std::wstring StringOr(const nlohmann::json& object, const char* key, const std::wstring& fallback) {
    if (!object.is_object())
        return fallback;
    auto found = object.find(key);
    if (found == object.end() || !found->is_string())
        return fallback;
    return FromUtf8(found->get<std::string>());
}

const nlohmann::json& ObjectAt(const nlohmann::json& object, const char* key) {
    static const nlohmann::json empty = nlohmann::json::object();
    if (!object.is_object())
        return empty;
    auto found = object.find(key);
    return found != object.end() && found->is_object() ? *found : empty;
}

const nlohmann::json& ArrayAt(const nlohmann::json& object, const char* key) {
    static const nlohmann::json empty = nlohmann::json::array();
    if (!object.is_object())
        return empty;
    auto found = object.find(key);
    return found != object.end() && found->is_array() ? *found : empty;
}

} // namespace VexaJson
