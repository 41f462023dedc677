// SPDX-License-Identifier: Apache-2.0
// The data library's formats fed with the fuzzer's bytes: method and sequence files through the file
// reference (JSON, or a data file's parameter block), tune files and tune report files. The first
// byte chooses the reader; the rest is the file.
#include "vexadatafile.h"
#include "vexafileref.h"
#include "vexamethod.h"
#include "vexamethodsequence.h"
#include "vexatune.h"
#include "vexatunereport.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <map>
#include <string>

#include <unistd.h>

namespace {

// The file reference reads names, not bytes: the input goes through one scratch file per process.
const std::string& ScratchFile() {
    static const std::string path = "/tmp/vexa-data-fuzz-" + std::to_string(::getpid()) + ".mth";
    return path;
}

void ReadAsFile(const std::string& bytes) {
    {
        std::ofstream out(ScratchFile(), std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), std::streamsize(bytes.size()));
    }
    VexaFileRef file;
    if (!file.Open(std::wstring(ScratchFile().begin(), ScratchFile().end())))
        return;
    file.GetParameter(VexaFileRef::kSensorParameter);
    const VexaMethod method(file);
    if (method.IsValid()) {
        method.GetInvalidReason();
        method.getDescription();
        for (int i = -1; i <= method.GetNumEvents(); ++i)
            method.GetEvent(i);
        method.CheckSettings();
        (void)(method == VexaMethod(file));
    }
    const VexaMethodSequence sequence(file);
    if (sequence.IsValid()) {
        for (int i = -1; i <= sequence.GetNumSteps(); ++i)
            sequence.GetStep(i);
        sequence.CheckSettings();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    const std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 4) {
    case 0: {
        VexaTune tune;
        if (tune.Parse(bytes))
            VexaTune().Parse(tune.Serialize());
        break;
    }
    case 1: {
        VexaTuneReport report;
        if (report.Parse(bytes))
            VexaTuneReport().Parse(report.Serialize());
        break;
    }
    case 2: {
        std::map<std::wstring, std::wstring> parameters;
        if (VexaDataFile::LooksLikeDataFile(bytes))
            VexaDataFile::ReadParameters(bytes, &parameters);
        break;
    }
    default:
        ReadAsFile(bytes);
        break;
    }
    return 0;
}
