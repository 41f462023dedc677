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
    bool CanEditFile(const std::wstring& suffix) const override;
    // "vxs" for kind 1, "mth" for kind 2, empty for every other kind.
    std::wstring GetDefaultSuffix(int kind) const override;
    bool HasTools() const override;
    // Acts on category 6031 only; every other category is the host's.
    void RunTool(int category, int index) override;

private:
    void RegisterFileTypes();
    void BuildToolList();
    void OpenSafetyDatabase();
};
