// SPDX-License-Identifier: Apache-2.0
#pragma once
// The text an operator reads for one tune report: a header (title, tune file, instrument, date and time
// in local time), the tune settings, and the calibrant's mass table with the target and measured
// abundance and peak width, their limits and pass/fail. Lines carry no line ends.
#include "vexatunereportsections.h"

#include <string>
#include <vector>

// The acceptance limits: abundance within 20 % of the target, peak width within 0.1 amu of it.
inline constexpr double kTuneAbundanceTolerance = 0.20;
inline constexpr double kTuneWidthTolerance = 0.10;

// `withHeader` false leaves out the header block (for a caller that prints its own).
std::vector<std::wstring> GenerateTuneReport(const std::wstring& tuneFileName,
                                             const VexaTuneReportSection& report, const VexaTuneSection& tune,
                                             bool withHeader);
