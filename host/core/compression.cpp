#include "compression.h"

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
