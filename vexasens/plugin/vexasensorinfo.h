// SPDX-License-Identifier: Apache-2.0
#pragma once
// The VEXARON sensor type: what the host learns about it (description, file types, tools), how it
// makes addresses and sensor objects, which files the operator may edit, and the tools of category
// 6031 (NIST, AMDIS, the safety databases) that it starts itself. One static object per loaded module
// (moduleobjects.cpp); constructing it makes the type known to the host.
#include "sensorinfo.h"

#include <string>

class VEXASensorInfo : public ISensorInfo {
public:
    // Tool categories and indexes the host dispatches on.
    static constexpr int kCategoryExternalPrograms = 6031;
    static constexpr int kToolNist = 1;
    static constexpr int kToolAmdis = 2;
    static constexpr int kToolSafetyDatabase = 3;

    VEXASensorInfo();

    // ---- overrides, in the host's order ----
    ~VEXASensorInfo() override;
    std::wstring GetDescription() const override;
    // Registers the eight file types and the ten tools (texts from this module's string table), then
    // runs the base's Initialize and returns its result.
    bool Initialize(void* moduleInstance) override;
    // A new, initialised VEXASensorObject for a valid address; null otherwise.
    ISensorObject* CreateSensorObject(void* owner, const ISensorAddress& address) override;
    ISensorAddress MakeSensorAddress(const std::wstring& text, bool empty) override;
    // Only with access level 1, and only for exactly "mth", "xmth" or "dmth" (case matters).
    // Opens a method in the method editor, a sequence (.xmth) in the sequence editor; needs access level
    // 1 for a non-empty path. A file that cannot be read as one is reported (39513) and nothing opens.
    bool OpenFile(const std::wstring& path) override;
    // An empty editor for the suffix: "xmth" a sequence, "dmth" a default method, else a method.
    bool NewFile(const std::wstring& suffix) override;
    bool CanEditFile(const std::wstring& suffix) const override;
    // Opens the method that a data or tune file names in its "SENSOR" parameter.
    bool EditMethodOfFile(const std::wstring& file) override;
    // "vxs" for kind 1, "mth" for kind 2, empty for every other kind.
    std::wstring GetDefaultSuffix(int kind) const override;
    bool HasTools() const override;
    // Acts on category 6031 only; every other category is the host's.
    void RunTool(int category, int index) override;

private:
    void RegisterFileTypes();
    void BuildToolList();
    void OpenSafetyDatabase();
    bool EditMethodFile(const std::wstring& path);
    bool EditSequenceFile(const std::wstring& path);
};
