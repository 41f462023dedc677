// SPDX-License-Identifier: Apache-2.0
#pragma once
// The sample an acquisition measures: compounds, each eluting when the oven reaches its elution
// temperature, with an amount, a peak width and a centroided spectrum (m/z and relative abundance).
// Read from JSON, e.g.
//   {"name": "Demo mixture", "compounds": [{"name": "Toluene", "elutionTemp": 105, "amount": 1.0,
//    "peakWidth": 2.0, "spectrum": [[91, 100], [92, 60], [65, 12]]}]}
// (temperatures in °C, peak width as the peak's standard deviation in seconds).
#include <string>
#include <utility>
#include <vector>

struct SampleCompound {
    std::string name;
    double elutionTemp = 0;
    double amount = 0;
    double peakWidth = 1;
    std::vector<std::pair<double, double>> spectrum; // m/z, relative abundance (100 = base peak)
};

class SampleMixture {
public:
    // False with the reason when the file cannot be read or a compound is malformed.
    bool LoadFile(const std::string& path, std::string* problem);
    bool LoadText(const std::string& json, std::string* problem);

    std::string name = "Blank";
    std::vector<SampleCompound> compounds;
};
