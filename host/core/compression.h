#pragma once
#include <cstddef>
// Expands a zlib stream into `out` (room for *outSize bytes); on success stores the expanded size in
// *outSize and returns true. Fails when the result would not fit.
bool UncompressBuffer(void* out, size_t* outSize, const void* in, size_t inSize);
