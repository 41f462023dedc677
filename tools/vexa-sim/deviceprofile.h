// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the simulated instrument reports about itself: model codes, heater temperatures (tenths of
// a degree C), pressures, the method list. Built-in defaults, overridden key by key from a JSON
// profile (--profile), e.g.
//   {"model": 2, "heaters": {"1": 1510}, "totalPres": "nan", "drift": false, "omitKeys": ["neg"]}
#include <cstdint>
#include <map>
#include <string>
#include <vector>

class DeviceProfile {
public:
    static DeviceProfile Default();
    // Applies the file's values over this profile; false with the reason when the file cannot be
    // read or a value has the wrong type.
    bool LoadFile(const std::string& path, std::string* problem);
    bool LoadText(const std::string& json, std::string* problem);

    int model = 1;
    int cartridge = 0;
    int injectionPort = 1;
    int accessory = 7;
    int concentrator = 1;
    int neg = 1;
    std::map<int, int> heaters;          // ids 1..12
    std::map<int, int> accessoryHeaters; // ids 25..32
    int isSupplyPres = 0;                // kPa
    int carrierSupplyPres = 0;
    int carrierControlPres = 0;
    double totalPres = 0; // Pa
    std::vector<std::string> methodMRU;
    std::string serial = "VX-0427";
    std::string firmware = "4.2.1";
    double methodSeconds = 5;
    // Readings wander a little around their values, as a real instrument's do.
    bool drift = true;
    // Status keys left out of the `status` answer (to simulate an instrument that lacks them).
    std::vector<std::string> omitKeys;
    // Parameter values by "id:index", as hex bytes.
    std::map<std::string, std::string> parameters;
};
