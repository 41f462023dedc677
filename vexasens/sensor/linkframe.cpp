// SPDX-License-Identifier: Apache-2.0
#include "linkframe.h"

#include <cstring>

void PutU16(uint8_t* p, uint16_t v) {
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
}

void PutU32(uint8_t* p, uint32_t v) {
    p[0] = uint8_t(v);
    p[1] = uint8_t(v >> 8);
    p[2] = uint8_t(v >> 16);
    p[3] = uint8_t(v >> 24);
}

uint16_t GetU16(const uint8_t* p) {
    return uint16_t(p[0] | (p[1] << 8));
}

uint32_t GetU32(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

void EncodeHeader(const FrameHeader& h, uint8_t out[kFrameHeaderSize]) {
    PutU32(out + 0, h.marker);
    PutU16(out + 4, h.kind);
    PutU16(out + 6, h.flags);
    PutU32(out + 8, h.version);
    PutU32(out + 12, h.length);
    PutU32(out + 16, h.argument);
    PutU16(out + 20, h.reserved1);
    PutU16(out + 22, h.subArgument);
    PutU32(out + 24, h.reserved2);
    PutU32(out + 28, h.extra);
}

FrameHeader DecodeHeader(const uint8_t in[kFrameHeaderSize]) {
    FrameHeader h;
    h.marker = GetU32(in + 0);
    h.kind = GetU16(in + 4);
    h.flags = GetU16(in + 6);
    h.version = GetU32(in + 8);
    h.length = GetU32(in + 12);
    h.argument = GetU32(in + 16);
    h.reserved1 = GetU16(in + 20);
    h.subArgument = GetU16(in + 22);
    h.reserved2 = GetU32(in + 24);
    h.extra = GetU32(in + 28);
    return h;
}

namespace {

// Writes "\"text\"" into a NUL-padded field, cut to leave room for the terminating NUL.
void PutQuotedArgument(uint8_t* field, const std::string& text) {
    std::string quoted = "\"" + text + "\"";
    size_t n = std::min(quoted.size(), size_t(kRequestArgSize - 1));
    std::memcpy(field, quoted.data(), n);
}

} // namespace

void BuildRequestFrame(uint8_t out[kRequestFrameSize], uint32_t command, uint16_t flags, uint32_t id,
                       const std::string& firstUtf8, const std::string& secondUtf8, uint32_t extra) {
    std::memset(out, 0, kRequestFrameSize);
    FrameHeader h;
    h.kind = kFrameRequest;
    h.flags = flags;
    h.length = kRequestPayloadSize;
    h.argument = id;
    h.extra = extra;
    EncodeHeader(h, out);
    uint8_t* payload = out + kFrameHeaderSize;
    PutU32(payload, command);
    PutQuotedArgument(payload + 4, firstUtf8);
    if (!secondUtf8.empty())
        PutQuotedArgument(payload + 4 + kRequestArgSize, secondUtf8);
}

bool StripHostPrefix(std::string& path) {
    if (path.empty() || path[0] != '@')
        return true;
    size_t colon = path.find(':');
    if (colon == std::string::npos)
        return false;
    path.erase(0, colon + 1);
    return true;
}
