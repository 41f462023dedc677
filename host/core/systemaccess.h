// SPDX-License-Identifier: Apache-2.0
#pragma once
// Access levels of the logged-in user. Level 1 gates changing commands, level 0 the service features.
// The granted levels come from the setting Access/Levels (e.g. "0,1"); the environment variable
// VEXA_ACCESS overrides it ("" or "none" grants nothing). Without either, levels 0 and 1 are granted.
class CSystemAccess {
public:
    static bool Accessible(int level);
};
