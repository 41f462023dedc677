#include "vexatune.h"

#include "text.h"
#include "tunejson.h"
#include "vexajson.h"

using nlohmann::json;

namespace {
constexpr const char* kFormat = "VexaTune";
}

bool VexaTune::Parse(const std::string& utf8) {
    const json value = json::parse(utf8, nullptr, false);
    std::wstring reason;
    if (!VexaJson::CheckHeader(value, kFormat, &reason))
        return false;
    VexaTuneSection section;
    if (!TuneSectionFromJson(value.value("tune", json::object()), &section))
        return false;
    const json parameters = value.value("parameters", json::object());
    if (!parameters.is_object())
        return false;
    const json sensor = parameters.value("SENSOR", json(""));
    if (!sensor.is_string())
        return false;
    m_section = std::move(section);
    m_sensorMethod = FromUtf8(sensor.get<std::string>());
    m_otherKeys = OtherKeys(value, {"format", "version", "tune", "parameters"});
    m_otherParameters = OtherKeys(parameters, {"SENSOR"});
    return true;
}

std::string VexaTune::Serialize() const {
    json parameters = json::object();
    if (!m_sensorMethod.empty())
        parameters["SENSOR"] = ToUtf8(m_sensorMethod);
    MergeOtherKeys(parameters, m_otherParameters);
    json value = {{"format", kFormat},
                  {"version", 1},
                  {"tune", TuneSectionToJson(m_section)},
                  {"parameters", parameters}};
    MergeOtherKeys(value, m_otherKeys);
    return value.dump(2) + "\n";
}
