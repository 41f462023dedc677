// SPDX-License-Identifier: Apache-2.0
#include "vexatune.h"

#include "text.h"
#include "tunejson.h"
#include "vexajson.h"
#include "winsockerror.h"

using nlohmann::json;

namespace {
constexpr const char* kFormat = "VexaTune";
}

bool VexaTune::Parse(const std::string& utf8) {
    return FromDocument(json::parse(utf8, nullptr, false));
}

bool VexaTune::FromDocument(const json& value) {
    std::wstring reason;
    if (!VexaJson::CheckHeader(value, kFormat, &reason))
        return false;
    std::vector<std::wstring> unreadable;
    VexaTuneSection section;
    TuneSectionFromJson(value.value("tune", json::object()), &section, &unreadable);
    json parameters = value.value("parameters", json::object());
    if (!parameters.is_object()) {
        unreadable.push_back(L"parameters");
        parameters = json::object();
    }
    const json sensor = parameters.value("SENSOR", json(""));
    if (!sensor.is_string())
        unreadable.push_back(L"parameters.SENSOR");
    m_section = std::move(section);
    m_sensorMethod = sensor.is_string() ? FromUtf8(sensor.get<std::string>()) : std::wstring();
    m_otherKeys = OtherKeys(value, {"format", "version", "tune", "parameters"});
    m_otherParameters = OtherKeys(parameters, {"SENSOR"});
    m_unreadable = std::move(unreadable);
    return true;
}

bool VexaTune::Open(const std::wstring& name) {
    m_lastError = 0;
    m_lastErrorText.clear();
    if (!m_file.Open(name)) {
        m_lastError = m_file.GetLastError();
        m_lastErrorText = m_file.GetLastErrorText();
        return false;
    }
    if (!FromDocument(m_file.Document())) {
        m_lastError = kErrInvalid;
        m_lastErrorText = name + L" is not a tune file (error " + DescribeError(kErrInvalid) + L").";
        return false;
    }
    return true;
}

bool VexaTune::Save(const std::wstring& name) {
    m_lastError = 0;
    m_lastErrorText.clear();
    m_file.SetDocument(ToDocument());
    if (m_file.Save(name))
        return true;
    m_lastError = m_file.GetLastError();
    m_lastErrorText = m_file.GetLastErrorText();
    return false;
}

json VexaTune::ToDocument() const {
    json parameters = json::object();
    if (!m_sensorMethod.empty())
        parameters["SENSOR"] = ToUtf8(m_sensorMethod);
    MergeOtherKeys(parameters, m_otherParameters);
    json value = VexaJson::NewDocument(kFormat);
    value["tune"] = TuneSectionToJson(m_section);
    value["parameters"] = parameters;
    MergeOtherKeys(value, m_otherKeys);
    return value;
}

std::string VexaTune::Serialize() const {
    return ToDocument().dump(2) + "\n";
}
