// SPDX-License-Identifier: Apache-2.0
#pragma once
// A deliberately plain link client for the simulator's tests; its frames come from the tests' own
// byte-by-byte writers (scriptedinstrument.h), never from the simulator's or the module's encoders.
#include "scriptedinstrument.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

// The link's frame kinds, request commands and request flags, named for these tests (the simulator and the
// module keep their own names, so a wrong number on one side cannot hide behind a shared constant).
enum WireKind : std::uint16_t {
    kWireReply = 1,
    kWireHello = 4,
    kWireRequest = 8,
    kWireData = 9,
};
enum WireCommand : std::uint32_t {
    kWireList = 1,
    kWireOpenWrite = 2,
    kWireOpenRead = 3,
    kWireDelete = 4,
    kWireRename = 5,
    kWireMkDir = 7,
    kWireRun = 8,
    kWireDescribe = 9,
};
enum WireFlag : std::uint16_t {
    kWireListOption = 0x0001, // a listing that shows hidden entries
    kWireRecursive = 0x0004,
    kWireOpenWriteFlag = 0x0010,
    kWireListing = 0x0100,
    kWireCompressed = 0x0400, // the payload is zlib data
    kWireMore = 0x8000,       // another data frame of this transfer follows
};
// The sub-argument of the data frames that carry an upload.
constexpr std::uint16_t kWireUploadSubArgument = 2;

struct ReceivedFrame {
    std::uint32_t marker = 0;
    std::uint16_t kind = 0;
    std::uint16_t flags = 0;
    std::uint32_t version = 0;
    std::uint32_t length = 0;
    std::uint32_t argument = 0;
    std::uint16_t subArgument = 0;
    std::uint32_t extra = 0;
    Bytes payload;

    // For replies (kWireReply).
    std::uint32_t status() const { return payload.size() >= 4 ? ReadU32(payload, 0) : 0xFFFFFFFF; }
    std::string message() const;
    std::string text() const { return std::string(payload.begin(), payload.end()); }
};

class RawLinkClient {
public:
    // Connects to address:4840; every receive gives up after `timeoutMs`.
    explicit RawLinkClient(const std::string& address, int timeoutMs = 3000);
    ~RawLinkClient();
    RawLinkClient(const RawLinkClient&) = delete;
    RawLinkClient& operator=(const RawLinkClient&) = delete;

    bool connected() const { return m_fd >= 0; }
    bool SendRaw(const Bytes& bytes);
    bool SendHello();
    // A request: command, two quoted NUL-padded arguments (an empty second argument stays empty).
    bool SendRequest(std::uint32_t id, std::uint32_t command, const std::string& first,
                     const std::string& second = {}, std::uint16_t flags = 0, std::uint32_t extra = 0);
    // One data frame of an upload (sub-argument 2).
    bool SendUploadData(std::uint32_t transfer, bool more, const Bytes& payload);
    // Sends a whole file the way the workstation does: 65,536-byte frames, the last without kWireMore.
    bool Upload(std::uint32_t transfer, const std::string& path, const Bytes& content);

    // One frame, payload read as announced; nothing on time-out, close or an announced length above
    // 65,536 (then only the header is read).
    std::optional<ReceivedFrame> ReadFrame();
    // Reads up to `count` bytes, returning what came before the time-out or the close.
    Bytes ReadUpTo(std::size_t count);
    // Whether the peer has closed the connection (waits at most the receive time-out).
    bool PeerClosed();
    // Reads data frames until one without kWireMore; false when a reply or nothing came instead.
    bool ReadTransfer(std::vector<ReceivedFrame>* frames);

    // Whether the last ReadUpTo/ReadFrame ended because the peer closed (rather than by time-out).
    bool sawClose() const { return m_sawClose; }

private:
    int m_fd = -1;
    bool m_sawClose = false;
};
