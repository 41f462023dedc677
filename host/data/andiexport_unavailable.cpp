// SPDX-License-Identifier: Apache-2.0
// Builds without the netCDF library cannot write ANDI-MS files, and say so.
#include "vexaexport.h"

namespace VexaExport {

bool WriteAndi(const VexaRun&, const std::string&, std::string* reason) {
    *reason = "this build cannot write ANDI-MS files (it was made without the netCDF library)";
    return false;
}

} // namespace VexaExport
