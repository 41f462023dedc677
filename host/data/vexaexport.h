// SPDX-License-Identifier: Apache-2.0
#pragma once
// Exports of a run or of a spectrum: ANDI-MS (netCDF classic, the GC/MS interchange format), MSP (a
// spectrum for library search programs) and CSV. Texts are UTF-8 with "\n" line ends; numbers are
// written in the C locale whatever the program's locale is.
#include <span>
#include <string>

#include "vexarun.h"
#include "vexaspectrum.h"

namespace VexaExport {

// Writes `run` as an ANDI-MS file at `path` (a local path), through a temporary name beside it so that
// a failure leaves whatever was there before. False with the reason.
bool WriteAndi(const VexaRun& run, const std::string& path, std::string* reason);

// What an MSP record says about where its spectrum came from.
struct SpectrumOrigin {
    std::string name;       // the record's Name (e.g. the sample and the time)
    std::string file;       // the data file
    double fromSeconds = 0; // the time range the spectrum covers
    double toSeconds = 0;
    bool hasBackground = false; // a background range was subtracted
    double backgroundFrom = 0;
    double backgroundTo = 0;
};
// One MSP record; intensities scaled to 999 at the base peak (peaks that round to 0 are left out).
std::string MakeMsp(const VexaSpectrum& spectrum, const SpectrumOrigin& origin);
// "mz,intensity,relative" (relative in percent of the base peak).
std::string SpectrumCsv(const VexaSpectrum& spectrum);
// "time_s,tic" plus one column per extracted m/z (each with the tolerance given).
std::string ChromatogramCsv(const VexaRun& run, std::span<const double> masses = {}, double tolerance = 0.5);

// A number as the exports write it: the shortest digits that read back to the same float, without an
// exponent unless it is very large or very small.
std::string FormatNumber(double value);

} // namespace VexaExport
