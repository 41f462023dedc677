// SPDX-License-Identifier: Apache-2.0
#pragma once
// A method (.mth) or default method (.dmth): what the instrument runs. The method keeps the whole JSON
// document of its file, so keys this library does not know survive an edit and a save; the getters
// read the document and the setters write it.
//
// Reading is lenient: only a file of another format or a newer version is not valid (IsValid false,
// GetInvalidReason says why). A setting that is missing or malformed reads as "not set"
// (GetUnsetSettings names it; its getter returns zero); saving refuses it (CheckSettings).
#include "vexamethodevent.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

class VexaFileRef;

// The GC oven's temperature programme: hold, ramp, hold.
struct VexaGcProgram {
    int initialTemp = 0; // °C
    int initialHold = 0; // s
    int rate = 0;        // °C/min
    int finalTemp = 0;   // °C
    int finalHold = 0;   // s
    bool operator==(const VexaGcProgram&) const = default;
};

// The mass spectrometer's scan: full scan over [massLow, massHigh], or the SIM ions.
struct VexaMassRange {
    int massLow = 0;  // amu
    int massHigh = 0; // amu
    std::vector<int> simIons;
    bool operator==(const VexaMassRange&) const = default;
};

class VexaMethod {
public:
    enum MethodMode { kGcMs = 0, kSurvey = 1 };
    enum ScanMode { kFullScan = 0, kSim = 1 };
    enum Concentrator { kNone = 0, kTenax = 1, kCarbon = 2 };
    // Limits the editor holds a method to.
    static constexpr int kMaxTemp = 350;            // °C, oven and ramp
    static constexpr int kMinMass = 1;              // amu
    static constexpr int kMaxMass = 1000;           // amu
    static constexpr int64_t kMaxTimeMs = 86400000; // one day

    // A new method with the settings a new method starts from.
    VexaMethod();
    // The method in an open file (a copy of its document: closing the file later is fine).
    explicit VexaMethod(const VexaFileRef& file);

    bool IsValid() const;
    std::wstring GetInvalidReason() const;
    // The settings a valid method lacks or holds in a form that cannot be read, by their names in the
    // file: "description", "model", "gc.rate", "ms.simIons", "events", ...
    std::vector<std::wstring> GetUnsetSettings() const;
    bool IsSet(const std::wstring& setting) const;
    // Equal content: same settings and events, whatever the key order or spacing of the files.
    bool operator==(const VexaMethod& other) const;

    std::wstring getDescription() const;
    int getModel() const;
    int getAccessory() const;
    int getMethodMode() const;
    int getScanMode() const;
    int getConcentrator() const;
    VexaGcProgram getGcProgram() const;
    VexaMassRange getMassRange() const;
    int GetNumEvents() const;
    // Event `index` (0-based); a default event for an index out of range.
    VexaMethodEvent GetEvent(int index) const;
    std::vector<VexaMethodEvent> GetEvents() const;

    void setDescription(const std::wstring& description);
    void setModel(int model);
    void setAccessory(int accessory);
    void setMethodMode(int mode);
    void setScanMode(int mode);
    void setConcentrator(int concentrator);
    void setGcProgram(const VexaGcProgram& program);
    void setMassRange(const VexaMassRange& range);
    void SetEvents(const std::vector<VexaMethodEvent>& events);

    // Seconds from the run's start to its end, as the event table gives them: an inject event, or the
    // first direct start while no start is known, sets the start; the first end event sets the end and
    // stops the walk. Without an end event the end stays 0, so the result may be negative.
    int64_t GetRunTimeSeconds() const;

    // What an editor must not save: settings not set, times out of order or range, temperatures or
    // masses that make no sense. Empty when the settings are sane. Each entry is a message for the user.
    std::vector<std::wstring> CheckSettings() const;

    // Puts the method into the file's document and saves the file under `name` (its own name when
    // empty). The file's error tells why a save failed.
    bool Save(VexaFileRef& file, const std::wstring& name = {}) const;

    const nlohmann::json& Document() const { return m_document; }

private:
    int IntSetting(const char* key) const;

    nlohmann::json m_document;
};
