// SPDX-License-Identifier: Apache-2.0
#pragma once
// Frames of the instrument link: a fixed 32-byte little-endian header and a payload of at most
// 65,536 bytes. The layouts are plain records on the wire; these helpers write and read them byte by
// byte, so the host's byte order and struct padding never matter.
#include <cstddef>
#include <cstdint>
#include <string>

inline constexpr uint32_t kFrameMarker = 0x0A0B0C0D;
inline constexpr int kFrameHeaderSize = 32;
inline constexpr int kMaxPayload = 65536;
inline constexpr int kRequestArgSize = 1024;
inline constexpr int kRequestPayloadSize = 4 + 2 * kRequestArgSize;              // 2,052
inline constexpr int kRequestFrameSize = kFrameHeaderSize + kRequestPayloadSize; // 2,084

enum FrameKind : uint16_t {
    kFrameReply = 1,
    kFrameHello = 4,
    kFrameRequest = 8,
    kFrameData = 9,
};

enum FrameFlag : uint16_t {
    kFlagListOption = 0x0001,
    kFlagRecursive = 0x0004,
    kFlagOpenWrite = 0x0010,
    kFlagHello = 0x0080,
    kFlagListing = 0x0100,
    kFlagCompressed = 0x0400,
    kFlagMore = 0x8000,
};

enum RequestCommand : uint32_t {
    kCmdList = 1,
    kCmdOpenWrite = 2,
    kCmdOpenRead = 3,
    kCmdDelete = 4,
    kCmdRename = 5,
    kCmdMkDir = 7,
    kCmdRun = 8,
    kCmdDescribe = 9,
};

struct FrameHeader {
    uint32_t marker = kFrameMarker;
    uint16_t kind = kFrameData;
    uint16_t flags = 0;
    uint32_t version = 1;
    uint32_t length = 0;
    uint32_t argument = 0;
    uint16_t reserved1 = 0;
    uint16_t subArgument = 0;
    uint32_t reserved2 = 0;
    uint32_t extra = 0;
};

void PutU16(uint8_t* p, uint16_t v);
void PutU32(uint8_t* p, uint32_t v);
uint16_t GetU16(const uint8_t* p);
uint32_t GetU32(const uint8_t* p);

void EncodeHeader(const FrameHeader& header, uint8_t out[kFrameHeaderSize]);
FrameHeader DecodeHeader(const uint8_t in[kFrameHeaderSize]);

// Writes a complete request frame (2,084 bytes) into `out`: header of kind 8 with the given flags,
// argument (the transfer or request id) and extra word, then the command and the two text arguments,
// each quoted ("\"%s\"") and cut to fit its 1024-byte NUL-padded field. An empty second argument stays
// all zeros.
void BuildRequestFrame(uint8_t out[kRequestFrameSize], uint32_t command, uint16_t flags, uint32_t id,
                       const std::string& firstUtf8, const std::string& secondUtf8, uint32_t extra = 0);

// Drops an "@HOST:" prefix from a UTF-8 path. False when the path starts with '@' but has no ':'.
bool StripHostPrefix(std::string& pathUtf8);
