// SPDX-License-Identifier: Apache-2.0
#include "vexamodels.h"

#include <algorithm>
#include <initializer_list>

namespace Vexa {

namespace {

struct Accessory {
    int code;
    const wchar_t* name;
};

constexpr Accessory kAccessories[] = {
    {0, L"None"},
    {1, L"Air Probe"},
    {2, L"Headspace Sampler"},
    {3, L"SPME Fiber"},
    {4, L"Thermal Desorber"},
    {5, L"Purge and Trap"},
    {6, L"Water Sampler"},
    {kAccessoryInjectionPort, L"Injection Port"},
    {8, L"Soil Sampler"},
};

struct Model {
    int number;
    const wchar_t* name;
    std::vector<int> accessories;
};

// Models 2 and 5 are the portable frames without a reservoir: no purge and trap, no water sampler.
const std::vector<Model>& Models() {
    static const std::vector<Model> models = {
        {1, L"Brisk", {0, 1, 2, 3, 4, 5, 6, 7, 8}},
        {2, L"Tarn", {0, 1, 3, 7}},
        {3, L"Corvo", {0, 1, 2, 3, 4, 7}},
        {4, L"QV", {0, 1, 2, 3, 5, 6, 7}},
        {5, L"RJW", {0, 1, 3}},
        {6, L"ZLK", {0, 1, 2, 4, 8}},
    };
    return models;
}

const Model* FindModel(int number) {
    for (const Model& model : Models()) {
        if (model.number == number)
            return &model;
    }
    return nullptr;
}

std::wstring Unknown(int code) {
    return L"Unknown (" + std::to_wstring(code) + L")";
}

} // namespace

std::vector<int> GetModels() {
    std::vector<int> numbers;
    for (const Model& model : Models())
        numbers.push_back(model.number);
    return numbers;
}

bool IsKnownModel(int model) {
    return FindModel(model) != nullptr;
}

std::wstring GetModelName(int model) {
    const Model* found = FindModel(model);
    return found != nullptr ? found->name : Unknown(model);
}

std::vector<int> GetAccessories(int model) {
    const Model* found = FindModel(model);
    return found != nullptr ? found->accessories : std::vector<int>{};
}

bool SupportsAccessory(int model, int accessory) {
    const std::vector<int> codes = GetAccessories(model);
    return std::find(codes.begin(), codes.end(), accessory) != codes.end();
}

std::wstring GetAccessoryName(int accessory, int model) {
    if (!SupportsAccessory(model, accessory))
        return Unknown(accessory);
    for (const Accessory& entry : kAccessories) {
        if (entry.code == accessory)
            return entry.name;
    }
    return Unknown(accessory);
}

static std::wstring NameOf(std::initializer_list<const wchar_t*> names, int code) {
    return code >= 0 && static_cast<size_t>(code) < names.size() ? names.begin()[code] : L"";
}

std::wstring GetMethodModeName(int mode) {
    return NameOf({L"GC/MS", L"Survey"}, mode);
}

std::wstring GetScanModeName(int mode) {
    return NameOf({L"Full Scan", L"SIM"}, mode);
}

std::wstring GetConcentratorName(int concentrator) {
    return NameOf({L"None", L"Tenax", L"Carbon"}, concentrator);
}

} // namespace Vexa
