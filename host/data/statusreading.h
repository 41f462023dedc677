// SPDX-License-Identifier: Apache-2.0
#pragma once
// The numeric readings of a sensor's status report, as the operator sees them: every status line whose
// value is a number, named by its label. Read through the sensor's public status interface, so a
// reading is exactly what the status sections show.
#include <string>
#include <vector>

class ISensorObject;

struct StatusReading {
    // Section title and name: unique within one report, stable across polls.
    std::string key;
    // The label without its colon: "Total MS Pressure (Pa)", "Column".
    std::wstring name;
    // The unit in parentheses in the label or else in the section title ("kPa", "Pa", "C"); may be empty.
    std::wstring unit;
    double value = 0;
};

// Every line of every section whose value parses whole as a number; lines without a label (a reading
// shown twice, an unused heater) are left out. Empty when the sensor has no report.
std::vector<StatusReading> ReadNumericStatus(ISensorObject& sensor);

// The unit in the last "(...)" of a text, empty when none.
std::wstring UnitOf(const std::wstring& text);
