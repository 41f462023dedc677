// SPDX-License-Identifier: Apache-2.0
#pragma once
// A method sequence (.xmth): methods run one after another, each a number of times. Like a method, it
// keeps its file's whole document, so unknown keys survive an edit.
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

class VexaFileRef;

struct VexaSequenceStep {
    std::wstring method; // full name, local or "@HOST:PATH"
    int repeat = 1;
    bool operator==(const VexaSequenceStep&) const = default;
};

class VexaMethodSequence {
public:
    static constexpr int kMaxRepeat = 999;

    VexaMethodSequence(); // empty
    explicit VexaMethodSequence(const VexaFileRef& file);

    // Only another format or a newer version is not valid; a missing or malformed part reads as not
    // set, named by GetUnsetSettings ("steps", "steps[2].repeat"), and saving refuses it.
    bool IsValid() const;
    std::wstring GetInvalidReason() const;
    std::vector<std::wstring> GetUnsetSettings() const;
    bool operator==(const VexaMethodSequence& other) const { return m_document == other.m_document; }

    int GetNumSteps() const;
    VexaSequenceStep GetStep(int index) const; // a default step out of range
    std::vector<VexaSequenceStep> GetSteps() const;
    void SetSteps(const std::vector<VexaSequenceStep>& steps);

    // Messages for what an editor must not save (a part not set, no steps, an unnamed method, a repeat
    // out of range).
    std::vector<std::wstring> CheckSettings() const;
    bool Save(VexaFileRef& file, const std::wstring& name = {}) const;

private:
    nlohmann::json m_document;
};
