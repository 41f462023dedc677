// SPDX-License-Identifier: Apache-2.0
#include "framecodec.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>

#include "byteorder.h"

FrameCodec::HeaderBytes FrameCodec::EncodeHeader(const FrameHeader& header) {
    HeaderBytes bytes{};
    std::uint8_t* p = bytes.data();
    wire::PutU32(p + 0, header.marker);
    wire::PutU16(p + 4, header.kind);
    wire::PutU16(p + 6, header.flags);
    wire::PutU32(p + 8, header.version);
    wire::PutU32(p + 12, header.length);
    wire::PutU32(p + 16, header.argument);
    wire::PutU16(p + 20, header.reserved1);
    wire::PutU16(p + 22, header.subArgument);
    wire::PutU32(p + 24, header.reserved2);
    wire::PutU32(p + 28, header.extra);
    return bytes;
}

FrameHeader FrameCodec::DecodeHeader(const HeaderBytes& bytes) {
    const std::uint8_t* p = bytes.data();
    FrameHeader header;
    header.marker = wire::GetU32(p + 0);
    header.kind = wire::GetU16(p + 4);
    header.flags = wire::GetU16(p + 6);
    header.version = wire::GetU32(p + 8);
    header.length = wire::GetU32(p + 12);
    header.argument = wire::GetU32(p + 16);
    header.reserved1 = wire::GetU16(p + 20);
    header.subArgument = wire::GetU16(p + 22);
    header.reserved2 = wire::GetU32(p + 24);
    header.extra = wire::GetU32(p + 28);
    return header;
}

std::vector<std::uint8_t> FrameCodec::Encode(const Frame& frame) {
    const HeaderBytes header = EncodeHeader(frame.header);
    // Sized once and filled with copies: growing the vector by insert trips a false array-bounds
    // warning of GCC 12 at -O2.
    std::vector<std::uint8_t> bytes(header.size() + frame.payload.size());
    std::copy(header.begin(), header.end(), bytes.begin());
    std::copy(frame.payload.begin(), frame.payload.end(), bytes.begin() + std::ptrdiff_t(header.size()));
    return bytes;
}

std::string FrameCodec::HeaderProblem(const FrameHeader& header) {
    char text[96];
    if (header.marker != wire::kMarker) {
        std::snprintf(text, sizeof text, "bad frame marker 0x%08X", header.marker);
        return text;
    }
    if (header.length > wire::kMaxPayload) {
        std::snprintf(text, sizeof text, "payload length %u exceeds %zu", header.length, wire::kMaxPayload);
        return text;
    }
    return {};
}

Frame FrameCodec::MakeReply(std::uint32_t argument, std::uint32_t status, const std::string& message) {
    Frame frame;
    frame.header.kind = wire::kKindReply;
    frame.header.argument = argument;
    frame.payload.resize(4 + message.size());
    wire::PutU32(frame.payload.data(), status);
    std::copy(message.begin(), message.end(), frame.payload.begin() + 4);
    frame.header.length = static_cast<std::uint32_t>(frame.payload.size());
    return frame;
}

Frame FrameCodec::MakeData(std::uint32_t argument, std::uint16_t flags, std::vector<std::uint8_t> payload) {
    Frame frame;
    frame.header.kind = wire::kKindData;
    frame.header.flags = flags;
    frame.header.argument = argument;
    frame.header.length = static_cast<std::uint32_t>(payload.size());
    frame.payload = std::move(payload);
    return frame;
}

std::string FrameCodec::Describe(const FrameHeader& header) {
    char text[160];
    std::snprintf(text, sizeof text, "kind %u flags 0x%04X length %u argument %u sub %u extra %u",
                  header.kind, header.flags, header.length, header.argument, header.subArgument,
                  header.extra);
    return text;
}
