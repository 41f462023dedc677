// SPDX-License-Identifier: Apache-2.0
#pragma once
// A scripted instrument for the link's clients: a loopback peer that takes the hello, then reads
// whole frames and hands each to the test's responder, which may answer on the socket. Every frame
// is also recorded, so a test can compare the exact bytes the module sent.
//
// Frames for the wire are written here byte by byte, never with the module's or the simulator's own
// encoders, so a layout mistake cannot cancel out.
#include "loopbackpeer.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

struct PeerFrame {
    std::vector<uint8_t> header; // 32 bytes
    std::vector<uint8_t> payload;

    uint16_t kind() const;
    uint16_t flags() const;
    uint32_t length() const;
    uint32_t argument() const;
    uint16_t subArgument() const;
    uint32_t extra() const;
    // Request frames: the command code and the first text argument up to its NUL.
    uint32_t command() const;
    std::string firstArgument() const;
    std::vector<uint8_t> bytes() const;
};

// Little-endian writers and reader for the tests' own frames.
void AppendU16(std::vector<uint8_t>& out, uint16_t v);
void AppendU32(std::vector<uint8_t>& out, uint32_t v);
uint32_t ReadU32(const std::vector<uint8_t>& bytes, size_t offset);

// A frame header followed by `payload`; the length field is the payload's size unless given.
std::vector<uint8_t> WireFrame(uint16_t kind, uint16_t flags, uint32_t argument,
                               const std::vector<uint8_t>& payload, uint32_t extra = 0,
                               uint16_t subArgument = 0, int64_t lengthField = -1);
std::vector<uint8_t> DataFrame(uint32_t id, uint16_t flags, const std::vector<uint8_t>& payload,
                               uint32_t extra = 0);
std::vector<uint8_t> ReplyFrame(uint32_t id, uint32_t status, const std::string& text = {});
// The request frame the module must send, built field by field: 2,084 bytes.
std::vector<uint8_t> ExpectedRequest(uint32_t command, uint16_t flags, uint32_t id,
                                     const std::string& firstField, const std::string& secondField = {},
                                     uint32_t extra = 0);
// One directory record of 1,104 bytes.
std::vector<uint8_t> Record(const std::string& name, uint32_t size, int32_t t1, int32_t t2, int32_t t3,
                            uint32_t attributes);
std::vector<uint8_t> ToBytes(const std::string& text);
// Writes frames to a peer's socket (a responder's answer).
void Send(int socket, const std::vector<uint8_t>& bytes);
std::vector<uint8_t> Concat(std::initializer_list<std::vector<uint8_t>> parts);

class ScriptedInstrument {
public:
    using Responder = std::function<void(const PeerFrame& frame, int socket)>;

    explicit ScriptedInstrument(Responder responder = {});
    // A responder that answers each request frame (kind 8) with the bytes `script` makes for it.
    static Responder Answering(std::function<std::vector<uint8_t>(const PeerFrame& request)> script);
    ~ScriptedInstrument();

    std::wstring host() const { return m_peer.host(); }
    std::vector<PeerFrame> frames() const;
    size_t frameCount() const;
    // Waits (bounded) until at least `count` frames arrived.
    bool waitForFrames(size_t count, int timeoutMs = 5000) const;

private:
    void Serve(int socket);

    Responder m_responder;
    mutable std::mutex m_mutex;
    std::vector<PeerFrame> m_frames;
    LoopbackPeer m_peer;
};
