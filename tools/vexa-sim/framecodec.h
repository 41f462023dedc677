// SPDX-License-Identifier: Apache-2.0
#pragma once
// The 32-byte frame header and whole frames, encoded and decoded field by field.
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "wireconstants.h"

struct FrameHeader {
    std::uint32_t marker = wire::kMarker;
    std::uint16_t kind = 0;
    std::uint16_t flags = 0;
    std::uint32_t version = 1;
    std::uint32_t length = 0;
    std::uint32_t argument = 0;
    std::uint16_t reserved1 = 0;
    std::uint16_t subArgument = 0;
    std::uint32_t reserved2 = 0;
    std::uint32_t extra = 0;
};

struct Frame {
    FrameHeader header;
    std::vector<std::uint8_t> payload;
};

class FrameCodec {
public:
    using HeaderBytes = std::array<std::uint8_t, wire::kHeaderSize>;

    static HeaderBytes EncodeHeader(const FrameHeader& header);
    static FrameHeader DecodeHeader(const HeaderBytes& bytes);
    // Header followed by the payload. The header's length field is written as it stands (a fault may
    // make it lie about the payload).
    static std::vector<std::uint8_t> Encode(const Frame& frame);

    // Why a received header cannot be followed (empty when it can).
    static std::string HeaderProblem(const FrameHeader& header);

    // A reply: u32 status followed by the UTF-8 message.
    static Frame MakeReply(std::uint32_t argument, std::uint32_t status, const std::string& message);
    // A data frame; the length field is set from the payload.
    static Frame MakeData(std::uint32_t argument, std::uint16_t flags, std::vector<std::uint8_t> payload);

    // One line for the trace log: kind, flags, length, argument, sub-argument, extra word.
    static std::string Describe(const FrameHeader& header);
};
