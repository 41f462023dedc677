// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

// Expands a zlib stream into `out` (room for *outSize bytes); on success stores the expanded size in
// *outSize and returns true. Fails when the result would not fit.
bool UncompressBuffer(void* out, size_t* outSize, const void* in, size_t inSize);

enum class ExpandOutcome { Expanded, Damaged, TooLarge };
// Expands a whole zlib stream, never holding more than `maxSize` expanded bytes: a stream that would
// expand further stops early with TooLarge (a "zlib bomb" costs at most maxSize of memory).
ExpandOutcome ExpandBounded(std::string_view in, size_t maxSize, std::string* out);

// One zlib stream of `in` (default level).
std::string CompressBytes(std::string_view in);
