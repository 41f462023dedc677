// SPDX-License-Identifier: Apache-2.0
// Reading a file over the link while the instrument sends the fuzzer's bytes: frame headers, data
// frames (compressed or not, "more follows" or not), replies for this and other transfers, frames cut
// short. The first byte chooses how the module reads; the rest is the instrument's stream.
#include "fuzzsensor.h"
#include "scriptedlink.h"
#include "vxsstdiofileimpl.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1)
        return 0;
    OnlineFuzzSensor();
    const uint8_t how = data[0];
    SetLinkScript(data + 1, size - 1);
    const bool lines = (how & 1) != 0;
    auto file = std::make_unique<VXSStdioFileImpl>(kFuzzHost, FuzzRemoteName(L"/Data/run1.vxs"),
                                                   lines ? L"rt" : L"rbz");
    if (lines) {
        std::wstring line;
        while (file->ReadString(line)) {
        }
    } else {
        // Odd block sizes cross frame boundaries at every place.
        std::vector<uint8_t> block((how & 2) ? 7 : 16384);
        while (file->Read(block.data(), int(block.size())) > 0) {
        }
    }
    file->GetLength();
    // Closing early drains what the instrument still sends for this file.
    file.reset();
    SetLinkScript(nullptr, 0);
    return 0;
}
