// SPDX-License-Identifier: Apache-2.0
#pragma once
// Numbers of the instrument link as the instrument sees them. Kept apart from the module's own
// definitions on purpose: the simulator must not share a mistake with the code it tests.
#include <cstddef>
#include <cstdint>

namespace wire {

constexpr std::uint32_t kMarker = 0x0A0B0C0D;
constexpr std::size_t kHeaderSize = 32;
constexpr std::size_t kMaxPayload = 65536;
constexpr std::size_t kArgumentSize = 1024;
constexpr std::size_t kRequestPayloadSize = 4 + 2 * kArgumentSize;
constexpr std::size_t kHelloPayloadSize = 10;

// Frame kinds.
constexpr std::uint16_t kKindReply = 1;
constexpr std::uint16_t kKindHello = 4;
constexpr std::uint16_t kKindRequest = 8;
constexpr std::uint16_t kKindData = 9;

// Header flags.
constexpr std::uint16_t kFlagListingOption = 0x0001;
constexpr std::uint16_t kFlagRecursive = 0x0004;
constexpr std::uint16_t kFlagOpenForWriting = 0x0010;
constexpr std::uint16_t kFlagHello = 0x0080;
constexpr std::uint16_t kFlagListing = 0x0100;
constexpr std::uint16_t kFlagCompressed = 0x0400;
constexpr std::uint16_t kFlagMore = 0x8000;

// Request command codes.
constexpr std::uint32_t kCommandList = 1;
constexpr std::uint32_t kCommandWrite = 2;
constexpr std::uint32_t kCommandRead = 3;
constexpr std::uint32_t kCommandDelete = 4;
constexpr std::uint32_t kCommandRename = 5;
constexpr std::uint32_t kCommandMakeFolder = 7;
constexpr std::uint32_t kCommandRun = 8;
constexpr std::uint32_t kCommandDescribe = 9;

// Sub-argument of the data frames that carry an upload.
constexpr std::uint16_t kUploadSubArgument = 2;

// Directory record.
constexpr std::size_t kRecordSize = 1104;
constexpr std::size_t kRecordNameSize = 1024;
constexpr std::uint32_t kAttributeFolder = 0x0001;
constexpr std::size_t kPreviewLimit = 4096;

// Reply statuses: errno-like codes, 0 = success.
constexpr std::uint32_t kStatusOk = 0;
constexpr std::uint32_t kStatusNotFound = 2;
constexpr std::uint32_t kStatusIoError = 5;
constexpr std::uint32_t kStatusRefused = 13;
constexpr std::uint32_t kStatusExists = 17;
constexpr std::uint32_t kStatusNotFolder = 20;
constexpr std::uint32_t kStatusIsFolder = 21;
constexpr std::uint32_t kStatusInvalid = 22;
constexpr std::uint32_t kStatusTooLarge = 27;
constexpr std::uint32_t kStatusNameTooLong = 36;
constexpr std::uint32_t kStatusUnknownCommand = 38;
constexpr std::uint32_t kStatusNotEmpty = 39;
constexpr std::uint32_t kStatusBusy = 16;

} // namespace wire
