// SPDX-License-Identifier: Apache-2.0
#include "compression.h"

#include <algorithm>
#include <climits>
#include <zlib.h>

bool UncompressBuffer(void* out, size_t* outSize, const void* in, size_t inSize) {
    if (out == nullptr || outSize == nullptr || (in == nullptr && inSize != 0))
        return false;
    if (inSize > ULONG_MAX || *outSize > ULONG_MAX)
        return false;
    uLongf expanded = static_cast<uLongf>(*outSize);
    // Z_BUF_ERROR covers both a result too big for the buffer and a truncated stream.
    if (uncompress(static_cast<Bytef*>(out), &expanded, static_cast<const Bytef*>(in),
                   static_cast<uLong>(inSize)) != Z_OK)
        return false;
    *outSize = expanded;
    return true;
}

ExpandOutcome ExpandBounded(std::string_view in, size_t maxSize, std::string* out) {
    out->clear();
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return ExpandOutcome::Damaged;
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.data()));
    stream.avail_in = static_cast<uInt>(std::min<size_t>(in.size(), UINT_MAX));
    size_t produced = 0;
    char probe = 0; // where a stream already at maxSize shows whether it goes on
    ExpandOutcome outcome = ExpandOutcome::Damaged;
    for (;;) {
        if (produced == out->size() && out->size() < maxSize)
            out->resize(std::min(maxSize, std::max<size_t>(out->size() * 2, in.size() * 4 + 4096)));
        const bool full = produced == out->size();
        stream.next_out = reinterpret_cast<Bytef*>(full ? &probe : out->data() + produced);
        stream.avail_out = full ? 1 : static_cast<uInt>(std::min<size_t>(out->size() - produced, UINT_MAX));
        const int result = inflate(&stream, Z_NO_FLUSH);
        if (full && stream.avail_out == 0) {
            outcome = ExpandOutcome::TooLarge;
            break;
        }
        if (!full)
            produced = out->size() - stream.avail_out;
        if (result == Z_STREAM_END) {
            outcome = ExpandOutcome::Expanded;
            break;
        }
        // Input used up with room to spare, yet no end: the stream is truncated.
        const bool stuck = stream.avail_in == 0 && stream.avail_out != 0;
        if ((result != Z_OK && result != Z_BUF_ERROR) || stuck)
            break;
    }
    inflateEnd(&stream);
    if (outcome != ExpandOutcome::Expanded)
        out->clear();
    else
        out->resize(produced);
    return outcome;
}

std::string CompressBytes(std::string_view in) {
    uLongf size = compressBound(static_cast<uLong>(in.size()));
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(in.data()),
             static_cast<uLong>(in.size()));
    out.resize(size);
    return out;
}
