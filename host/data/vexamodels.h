// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument models (by the number the instrument's getModel reports), the sample input devices
// (accessory codes) that each model supports, and the names of a method's coded settings.
#include <string>
#include <vector>

namespace Vexa {

inline constexpr int kDefaultModel = 1;
// Accessory code of the injection port accessory.
inline constexpr int kAccessoryInjectionPort = 7;

// The model numbers, in the order an editor lists them.
std::vector<int> GetModels();
bool IsKnownModel(int model);
// "Brisk", ...; "Unknown (n)" for a number that is not a model.
std::wstring GetModelName(int model);

// The accessory codes that `model` supports, in the order an editor lists them (empty for an unknown
// model).
std::vector<int> GetAccessories(int model);
bool SupportsAccessory(int model, int accessory);
// The name of a sample input device on `model`; "Unknown (n)" for a code the model does not support.
std::wstring GetAccessoryName(int accessory, int model);

// Names of a method's coded settings: "GC/MS"/"Survey", "Full Scan"/"SIM", "None"/"Tenax"/"Carbon";
// empty for any other code.
std::wstring GetMethodModeName(int mode);
std::wstring GetScanModeName(int mode);
std::wstring GetConcentratorName(int concentrator);

} // namespace Vexa
