// SPDX-License-Identifier: Apache-2.0
#include "vexamethodsequence.h"

#include "text.h"
#include "vexafileref.h"
#include "vexajson.h"

using nlohmann::json;

namespace {
constexpr char kFormat[] = "VexaMethodSequence";
}

VexaMethodSequence::VexaMethodSequence() : m_document(VexaJson::NewDocument(kFormat)) {
    m_document["steps"] = json::array();
}

VexaMethodSequence::VexaMethodSequence(const VexaFileRef& file) : m_document(file.Document()) {}

bool VexaMethodSequence::IsValid() const {
    return GetInvalidReason().empty();
}

std::wstring VexaMethodSequence::GetInvalidReason() const {
    std::wstring reason;
    VexaJson::CheckHeader(m_document, kFormat, &reason);
    return reason;
}

std::vector<std::wstring> VexaMethodSequence::GetUnsetSettings() const {
    std::vector<std::wstring> unset;
    if (!IsValid())
        return unset;
    if (!m_document.contains("steps") || !m_document["steps"].is_array()) {
        unset.push_back(L"steps");
        return unset;
    }
    const json& steps = m_document["steps"];
    for (size_t i = 0; i < steps.size(); ++i) {
        const std::wstring row = L"steps[" + std::to_wstring(i + 1) + L"].";
        if (!steps[i].is_object() || !steps[i].contains("method") || !steps[i]["method"].is_string())
            unset.push_back(row + L"method");
        if (!VexaJson::HasInt(steps[i], "repeat"))
            unset.push_back(row + L"repeat");
    }
    return unset;
}

int VexaMethodSequence::GetNumSteps() const {
    return static_cast<int>(VexaJson::ArrayAt(m_document, "steps").size());
}

VexaSequenceStep VexaMethodSequence::GetStep(int index) const {
    const json& steps = VexaJson::ArrayAt(m_document, "steps");
    if (index < 0 || static_cast<size_t>(index) >= steps.size())
        return {};
    const json& step = steps[static_cast<size_t>(index)];
    const int64_t repeat = VexaJson::IntOr(step, "repeat", 1);
    return {VexaJson::StringOr(step, "method", {}),
            repeat < INT32_MIN || repeat > INT32_MAX ? 0 : static_cast<int>(repeat)};
}

std::vector<VexaSequenceStep> VexaMethodSequence::GetSteps() const {
    std::vector<VexaSequenceStep> steps;
    for (int i = 0, count = GetNumSteps(); i < count; ++i)
        steps.push_back(GetStep(i));
    return steps;
}

void VexaMethodSequence::SetSteps(const std::vector<VexaSequenceStep>& steps) {
    json& table = m_document["steps"];
    const json old = table.is_array() ? table : json::array();
    table = json::array();
    for (size_t i = 0; i < steps.size(); ++i) {
        // A step keeps the unknown keys of the step that stood at its place.
        json row = i < old.size() && old[i].is_object() ? old[i] : json::object();
        row["method"] = ToUtf8(steps[i].method);
        row["repeat"] = steps[i].repeat;
        table.push_back(std::move(row));
    }
}

std::vector<std::wstring> VexaMethodSequence::CheckSettings() const {
    std::vector<std::wstring> problems;
    if (!IsValid()) {
        problems.push_back(GetInvalidReason());
        return problems;
    }
    for (const std::wstring& name : GetUnsetSettings())
        problems.push_back(L"Not set: " + name + L".");
    if (!problems.empty())
        return problems;
    if (GetNumSteps() == 0)
        problems.push_back(L"The sequence has no steps.");
    const std::vector<VexaSequenceStep> steps = GetSteps();
    for (size_t i = 0; i < steps.size(); ++i) {
        const std::wstring row = L"Step " + std::to_wstring(i + 1) + L": ";
        if (steps[i].method.empty())
            problems.push_back(row + L"no method is named.");
        if (steps[i].repeat < 1 || steps[i].repeat > kMaxRepeat)
            problems.push_back(row + L"the repeat count must lie between 1 and " +
                               std::to_wstring(kMaxRepeat) + L".");
    }
    return problems;
}

bool VexaMethodSequence::Save(VexaFileRef& file, const std::wstring& name) const {
    file.SetDocument(m_document);
    return name.empty() ? file.Save() : file.Save(name);
}
