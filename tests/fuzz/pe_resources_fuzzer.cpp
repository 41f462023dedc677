// SPDX-License-Identifier: Apache-2.0
// The resource reader of default-method modules fed with the fuzzer's bytes as a module file: the
// headers, the section table, the resource directory tree, string tables and named resource types.
#include "peresourcereader.h"

#include <cstdint>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    PEResourceReader reader;
    if (!reader.OpenBytes(std::vector<uint8_t>(data, data + size)))
        return 0;
    for (uint32_t id : {0u, 1u, 15u, 16u, 17u, 999u, 1000u, 1001u, 65535u, 65536u})
        reader.LoadString(id);
    for (uint32_t id : {1u, 1001u, 1002u, 1003u})
        if (const auto bytes = reader.FindResource(L"defaultmethod", id); bytes && !bytes->empty())
            (void)(bytes->front() + bytes->back()); // the span must lie inside the file
    reader.FindResource(PEResourceReader::kTypeString, 1);
    return 0;
}
