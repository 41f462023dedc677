// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument's list of recently used methods, as the sensor object reports it to the host.
#include <string>
#include <vector>

class ISensorObject;

// Empty while the sensor is off line (the device is then not asked at all). Otherwise the paths of
// the "VEXA" device's methodMRU entries up to the first empty one: plain file names, or with
// `fullNames` instrument file names ("@HOST:/folder/name") whose folder has every "\Vexa" removed.
std::vector<std::wstring> InstrumentMethodMRU(ISensorObject& sensor, bool fullNames);
