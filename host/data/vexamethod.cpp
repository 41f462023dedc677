// SPDX-License-Identifier: Apache-2.0
#include "vexamethod.h"

#include "text.h"
#include "vexafileref.h"
#include "vexajson.h"
#include "vexamodels.h"

#include <algorithm>

using nlohmann::json;

namespace {

constexpr char kFormat[] = "VexaMethod";

// Every integer field of a valid method, by the object that holds it ("" = the document itself).
struct IntField {
    const char* object;
    const char* key;
};
constexpr IntField kIntFields[] = {
    {"", "model"},        {"", "accessory"},     {"", "methodMode"},    {"", "scanMode"},
    {"", "concentrator"}, {"gc", "initialTemp"}, {"gc", "initialHold"}, {"gc", "rate"},
    {"gc", "finalTemp"},  {"gc", "finalHold"},   {"ms", "massLow"},     {"ms", "massHigh"},
};

int ToInt(int64_t value) {
    return value < INT32_MIN || value > INT32_MAX ? 0 : static_cast<int>(value);
}

std::wstring EventText(int row) {
    return L"Event " + std::to_wstring(row + 1) + L": ";
}

void CheckEvents(const std::vector<VexaMethodEvent>& events, std::vector<std::wstring>* problems) {
    for (size_t i = 0; i < events.size(); ++i) {
        const VexaMethodEvent& event = events[i];
        const int row = static_cast<int>(i);
        if (event.getTime() < 0 || event.getTime() > VexaMethod::kMaxTimeMs)
            problems->push_back(EventText(row) + L"the time must lie between 0 and 24 hours.");
        if (i > 0 && event.getTime() < events[i - 1].getTime())
            problems->push_back(EventText(row) + L"the times must be in ascending order.");
        if (event.getValveState() < 0 || event.getValveState() >= kValveStateCount)
            problems->push_back(EventText(row) + L"unknown valve state " +
                                std::to_wstring(event.getValveState()) + L".");
    }
}

void CheckRanges(const VexaMethod& method, std::vector<std::wstring>* problems) {
    const VexaGcProgram gc = method.getGcProgram();
    const auto temperatureOk = [](int t) { return t >= 0 && t <= VexaMethod::kMaxTemp; };
    if (!temperatureOk(gc.initialTemp) || !temperatureOk(gc.finalTemp))
        problems->push_back(L"Oven temperatures must lie between 0 and " +
                            std::to_wstring(VexaMethod::kMaxTemp) + L" °C.");
    if (gc.finalTemp < gc.initialTemp)
        problems->push_back(L"The final oven temperature must not be below the initial one.");
    if (gc.rate <= 0 && gc.finalTemp != gc.initialTemp)
        problems->push_back(L"A temperature ramp needs a rate above 0 °C/min.");
    if (gc.rate < 0 || gc.rate > VexaMethod::kMaxTemp || gc.initialHold < 0 || gc.finalHold < 0)
        problems->push_back(L"Hold times and the rate must not be negative.");
    const VexaMassRange ms = method.getMassRange();
    if (ms.massLow < VexaMethod::kMinMass || ms.massHigh > VexaMethod::kMaxMass || ms.massLow >= ms.massHigh)
        problems->push_back(L"The mass range must lie within " + std::to_wstring(VexaMethod::kMinMass) +
                            L"-" + std::to_wstring(VexaMethod::kMaxMass) + L" amu, low below high.");
    if (method.getScanMode() == VexaMethod::kSim && ms.simIons.empty())
        problems->push_back(L"SIM needs at least one ion.");
    for (int ion : ms.simIons) {
        if (ion < VexaMethod::kMinMass || ion > VexaMethod::kMaxMass) {
            problems->push_back(L"SIM ion " + std::to_wstring(ion) + L" lies outside the mass range.");
            break;
        }
    }
}

} // namespace

VexaMethod::VexaMethod() : m_document(VexaJson::NewDocument(kFormat)) {
    m_document["description"] = "";
    m_document["model"] = Vexa::kDefaultModel;
    m_document["accessory"] = 0;
    m_document["methodMode"] = kGcMs;
    m_document["scanMode"] = kFullScan;
    m_document["concentrator"] = kNone;
    setGcProgram({50, 60, 20, 280, 120});
    setMassRange({40, 300, {}});
    SetEvents({{0, kValveInject}, {600000, kValveEnd}});
}

VexaMethod::VexaMethod(const VexaFileRef& file) : m_document(file.Document()) {}

bool VexaMethod::IsValid() const {
    return GetInvalidReason().empty();
}

std::wstring VexaMethod::GetInvalidReason() const {
    std::wstring reason;
    VexaJson::CheckHeader(m_document, kFormat, &reason);
    return reason;
}

std::vector<std::wstring> VexaMethod::GetUnsetSettings() const {
    std::vector<std::wstring> unset;
    if (!IsValid())
        return unset;
    if (!m_document.contains("description") || !m_document["description"].is_string())
        unset.push_back(L"description");
    for (const IntField& field : kIntFields) {
        const json& object = *field.object ? VexaJson::ObjectAt(m_document, field.object) : m_document;
        if (!VexaJson::HasInt(object, field.key))
            unset.push_back((*field.object ? FromUtf8(field.object) + L"." : L"") + FromUtf8(field.key));
    }
    const json& ms = VexaJson::ObjectAt(m_document, "ms");
    if (ms.contains("simIons") &&
        (!ms["simIons"].is_array() || !std::all_of(ms["simIons"].begin(), ms["simIons"].end(),
                                                   [](const json& ion) { return ion.is_number_integer(); })))
        unset.push_back(L"ms.simIons");
    const json& events = m_document.contains("events") ? m_document["events"] : json();
    if (!events.is_array() || !std::all_of(events.begin(), events.end(), [](const json& event) {
            return VexaJson::HasInt(event, "time") && VexaJson::HasInt(event, "valveState");
        }))
        unset.push_back(L"events");
    return unset;
}

bool VexaMethod::IsSet(const std::wstring& setting) const {
    const std::vector<std::wstring> unset = GetUnsetSettings();
    return std::find(unset.begin(), unset.end(), setting) == unset.end();
}

bool VexaMethod::operator==(const VexaMethod& other) const {
    // nlohmann's objects are ordered maps, so key order and spacing of the files do not matter.
    return m_document == other.m_document;
}

int VexaMethod::IntSetting(const char* key) const {
    return ToInt(VexaJson::IntOr(m_document, key, 0));
}

std::wstring VexaMethod::getDescription() const {
    return VexaJson::StringOr(m_document, "description", {});
}
int VexaMethod::getModel() const {
    return IntSetting("model");
}
int VexaMethod::getAccessory() const {
    return IntSetting("accessory");
}
int VexaMethod::getMethodMode() const {
    return IntSetting("methodMode");
}
int VexaMethod::getScanMode() const {
    return IntSetting("scanMode");
}
int VexaMethod::getConcentrator() const {
    return IntSetting("concentrator");
}

VexaGcProgram VexaMethod::getGcProgram() const {
    const json& gc = VexaJson::ObjectAt(m_document, "gc");
    return {ToInt(VexaJson::IntOr(gc, "initialTemp", 0)), ToInt(VexaJson::IntOr(gc, "initialHold", 0)),
            ToInt(VexaJson::IntOr(gc, "rate", 0)), ToInt(VexaJson::IntOr(gc, "finalTemp", 0)),
            ToInt(VexaJson::IntOr(gc, "finalHold", 0))};
}

VexaMassRange VexaMethod::getMassRange() const {
    const json& ms = VexaJson::ObjectAt(m_document, "ms");
    VexaMassRange range{
        ToInt(VexaJson::IntOr(ms, "massLow", 0)), ToInt(VexaJson::IntOr(ms, "massHigh", 0)), {}};
    for (const json& ion : VexaJson::ArrayAt(ms, "simIons")) {
        if (ion.is_number_integer())
            range.simIons.push_back(ToInt(ion.get<int64_t>()));
    }
    return range;
}

int VexaMethod::GetNumEvents() const {
    return static_cast<int>(VexaJson::ArrayAt(m_document, "events").size());
}

VexaMethodEvent VexaMethod::GetEvent(int index) const {
    const json& events = VexaJson::ArrayAt(m_document, "events");
    if (index < 0 || static_cast<size_t>(index) >= events.size())
        return {};
    const json& event = events[static_cast<size_t>(index)];
    return {VexaJson::IntOr(event, "time", 0), ToInt(VexaJson::IntOr(event, "valveState", 0))};
}

std::vector<VexaMethodEvent> VexaMethod::GetEvents() const {
    std::vector<VexaMethodEvent> events;
    for (int i = 0, count = GetNumEvents(); i < count; ++i)
        events.push_back(GetEvent(i));
    return events;
}

void VexaMethod::setDescription(const std::wstring& description) {
    m_document["description"] = ToUtf8(description);
}
void VexaMethod::setModel(int model) {
    m_document["model"] = model;
}
void VexaMethod::setAccessory(int accessory) {
    m_document["accessory"] = accessory;
}
void VexaMethod::setMethodMode(int mode) {
    m_document["methodMode"] = mode;
}
void VexaMethod::setScanMode(int mode) {
    m_document["scanMode"] = mode;
}
void VexaMethod::setConcentrator(int concentrator) {
    m_document["concentrator"] = concentrator;
}

void VexaMethod::setGcProgram(const VexaGcProgram& program) {
    // Only the known keys are written: anything else in "gc" stays.
    json& gc = m_document["gc"];
    if (!gc.is_object())
        gc = json::object();
    gc["initialTemp"] = program.initialTemp;
    gc["initialHold"] = program.initialHold;
    gc["rate"] = program.rate;
    gc["finalTemp"] = program.finalTemp;
    gc["finalHold"] = program.finalHold;
}

void VexaMethod::setMassRange(const VexaMassRange& range) {
    json& ms = m_document["ms"];
    if (!ms.is_object())
        ms = json::object();
    ms["massLow"] = range.massLow;
    ms["massHigh"] = range.massHigh;
    ms["simIons"] = range.simIons;
}

void VexaMethod::SetEvents(const std::vector<VexaMethodEvent>& events) {
    json& table = m_document["events"];
    const json old = table.is_array() ? table : json::array();
    table = json::array();
    for (size_t i = 0; i < events.size(); ++i) {
        // An edited row keeps the unknown keys of the row that stood at its place.
        json row = i < old.size() && old[i].is_object() ? old[i] : json::object();
        row["time"] = events[i].getTime();
        row["valveState"] = events[i].getValveState();
        table.push_back(std::move(row));
    }
}

int64_t VexaMethod::GetRunTimeSeconds() const {
    int64_t start = 0;
    int64_t end = 0;
    bool started = false;
    for (int i = 0, count = GetNumEvents(); i < count; ++i) {
        const VexaMethodEvent event = GetEvent(i);
        const int state = event.getValveState();
        if (state == kValveInject || (state == kValveDirectStart && !started)) {
            start = event.getTime();
            started = true;
        }
        if (state == kValveEnd) {
            end = event.getTime();
            break;
        }
    }
    return (end - start) / 1000;
}

std::vector<std::wstring> VexaMethod::CheckSettings() const {
    std::vector<std::wstring> problems;
    if (!IsValid()) {
        problems.push_back(GetInvalidReason());
        return problems;
    }
    if (const std::vector<std::wstring> unset = GetUnsetSettings(); !unset.empty()) {
        std::wstring names;
        for (const std::wstring& name : unset)
            names += (names.empty() ? L"" : L", ") + name;
        problems.push_back(L"Not set: " + names + L".");
        return problems;
    }
    if (!Vexa::IsKnownModel(getModel()))
        problems.push_back(L"Unknown instrument model " + std::to_wstring(getModel()) + L".");
    else if (!Vexa::SupportsAccessory(getModel(), getAccessory()))
        problems.push_back(L"The model does not support the sample input device " +
                           Vexa::GetAccessoryName(getAccessory(), getModel()) + L".");
    if (getMethodMode() < kGcMs || getMethodMode() > kSurvey || getScanMode() < kFullScan ||
        getScanMode() > kSim || getConcentrator() < kNone || getConcentrator() > kCarbon)
        problems.push_back(L"Unknown method mode, collection mode or concentrator.");
    CheckRanges(*this, &problems);
    CheckEvents(GetEvents(), &problems);
    return problems;
}

bool VexaMethod::Save(VexaFileRef& file, const std::wstring& name) const {
    file.SetDocument(m_document);
    return name.empty() ? file.Save() : file.Save(name);
}
