// SPDX-License-Identifier: Apache-2.0
// Data files fed to the reader as they come, compressed or not. A file the reader accepts must be
// walkable by every view of the run model and must read back the same after it is written again.
#include "compression.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {
// Enough for any input the fuzzer makes, small enough that bombs fail fast.
constexpr size_t kMaxExpanded = 16 * 1024 * 1024;
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    VexaRun run;
    std::string reason;
    if (!VexaDataFile::ReadRun(bytes, &run, &reason, kMaxExpanded)) {
        if (reason.empty() || run.ScanCount() != 0)
            std::abort(); // a refusal always says why and leaves nothing half read
        return 0;
    }
    if (run.HasSpectra() && run.ScanCount() > 0) {
        const size_t last = run.ScanCount() - 1;
        const VexaSpectrum sum = run.Sum(0, last);
        run.Average(last / 2, last).Minus(run.Spectrum(0));
        const std::vector<double> masses = {sum.empty() ? 50.0 : sum.mz[sum.BasePeakIndex()], 207};
        if (run.ExtractedIon(masses, 0.5).size() != run.ScanCount())
            std::abort();
        run.ScansBetween(run.RunSeconds(), 0);
        run.MassRange();
    }
    const std::string written = VexaDataFile::MakeFile(run);
    VexaRun again;
    if (!VexaDataFile::ReadRun(written, &again, &reason, kMaxExpanded) ||
        VexaDataFile::MakeFile(again) != written)
        std::abort();
    return 0;
}
