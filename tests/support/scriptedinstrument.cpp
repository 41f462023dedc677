// SPDX-License-Identifier: Apache-2.0
#include "scriptedinstrument.h"

#include <chrono>
#include <cstring>
#include <thread>

namespace {

uint32_t LE32(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}
uint16_t LE16(const uint8_t* p) {
    return uint16_t(p[0] | p[1] << 8);
}

} // namespace

uint16_t PeerFrame::kind() const {
    return LE16(&header[4]);
}
uint16_t PeerFrame::flags() const {
    return LE16(&header[6]);
}
uint32_t PeerFrame::length() const {
    return LE32(&header[12]);
}
uint32_t PeerFrame::argument() const {
    return LE32(&header[16]);
}
uint16_t PeerFrame::subArgument() const {
    return LE16(&header[22]);
}
uint32_t PeerFrame::extra() const {
    return LE32(&header[28]);
}
uint32_t PeerFrame::command() const {
    return payload.size() >= 4 ? LE32(payload.data()) : 0;
}

std::string PeerFrame::firstArgument() const {
    if (payload.size() < 4 + 1024)
        return {};
    const char* text = reinterpret_cast<const char*>(payload.data() + 4);
    return std::string(text, strnlen(text, 1024));
}

std::vector<uint8_t> PeerFrame::bytes() const {
    std::vector<uint8_t> out = header;
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

uint32_t ReadU32(const std::vector<uint8_t>& bytes, size_t offset) {
    return LE32(&bytes.at(offset + 3) - 3);
}

void AppendU16(std::vector<uint8_t>& out, uint16_t v) {
    out.push_back(uint8_t(v));
    out.push_back(uint8_t(v >> 8));
}

void AppendU32(std::vector<uint8_t>& out, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        out.push_back(uint8_t(v >> (8 * i)));
}

std::vector<uint8_t> WireFrame(uint16_t kind, uint16_t flags, uint32_t argument,
                               const std::vector<uint8_t>& payload, uint32_t extra, uint16_t subArgument,
                               int64_t lengthField) {
    std::vector<uint8_t> out;
    AppendU32(out, 0x0A0B0C0D);
    AppendU16(out, kind);
    AppendU16(out, flags);
    AppendU32(out, 1);
    AppendU32(out, lengthField < 0 ? uint32_t(payload.size()) : uint32_t(lengthField));
    AppendU32(out, argument);
    AppendU16(out, 0);
    AppendU16(out, subArgument);
    AppendU32(out, 0);
    AppendU32(out, extra);
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

std::vector<uint8_t> DataFrame(uint32_t id, uint16_t flags, const std::vector<uint8_t>& payload,
                               uint32_t extra) {
    return WireFrame(9, flags, id, payload, extra);
}

std::vector<uint8_t> ReplyFrame(uint32_t id, uint32_t status, const std::string& text) {
    std::vector<uint8_t> payload;
    AppendU32(payload, status);
    payload.insert(payload.end(), text.begin(), text.end());
    return WireFrame(1, 0, id, payload);
}

std::vector<uint8_t> ExpectedRequest(uint32_t command, uint16_t flags, uint32_t id,
                                     const std::string& firstField, const std::string& secondField,
                                     uint32_t extra) {
    std::vector<uint8_t> payload;
    AppendU32(payload, command);
    std::vector<uint8_t> first(1024, 0), second(1024, 0);
    std::memcpy(first.data(), firstField.data(), std::min<size_t>(firstField.size(), 1024));
    std::memcpy(second.data(), secondField.data(), std::min<size_t>(secondField.size(), 1024));
    payload.insert(payload.end(), first.begin(), first.end());
    payload.insert(payload.end(), second.begin(), second.end());
    return WireFrame(8, flags, id, payload, extra);
}

std::vector<uint8_t> Record(const std::string& name, uint32_t size, int32_t t1, int32_t t2, int32_t t3,
                            uint32_t attributes) {
    std::vector<uint8_t> out(1024, 0);
    std::memcpy(out.data(), name.data(), std::min<size_t>(name.size(), 1023));
    AppendU32(out, size);
    AppendU32(out, uint32_t(t1));
    AppendU32(out, uint32_t(t2));
    AppendU32(out, uint32_t(t3));
    AppendU32(out, attributes);
    out.resize(1104, 0xEE); // the unread tail may hold anything
    return out;
}

std::vector<uint8_t> ToBytes(const std::string& text) {
    return std::vector<uint8_t>(text.begin(), text.end());
}

void Send(int socket, const std::vector<uint8_t>& bytes) {
    LoopbackPeer::WriteAll(socket, bytes.data(), bytes.size());
}

std::vector<uint8_t> Concat(std::initializer_list<std::vector<uint8_t>> parts) {
    std::vector<uint8_t> out;
    for (const auto& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

ScriptedInstrument::ScriptedInstrument(Responder responder)
    : m_responder(std::move(responder)), m_peer([this](int s) { Serve(s); }) {}

ScriptedInstrument::~ScriptedInstrument() = default;

ScriptedInstrument::Responder
ScriptedInstrument::Answering(std::function<std::vector<uint8_t>(const PeerFrame& request)> script) {
    return [script](const PeerFrame& frame, int socket) {
        if (frame.kind() != 8)
            return;
        Send(socket, script(frame));
    };
}

void ScriptedInstrument::Serve(int socket) {
    uint8_t hello[42];
    if (!LoopbackPeer::ReadExactly(socket, hello, sizeof hello))
        return;
    while (!m_peer.stopping()) {
        if (!LoopbackPeer::WaitReadable(socket, 50))
            continue;
        PeerFrame frame;
        frame.header.resize(32);
        if (!LoopbackPeer::ReadExactly(socket, frame.header.data(), 32))
            return;
        const uint32_t length = frame.length();
        if (length > 1u << 20)
            return; // not a frame this module would send
        frame.payload.resize(length);
        if (length > 0 && !LoopbackPeer::ReadExactly(socket, frame.payload.data(), length))
            return;
        {
            std::lock_guard lock(m_mutex);
            m_frames.push_back(frame);
        }
        if (m_responder)
            m_responder(frame, socket);
    }
}

std::vector<PeerFrame> ScriptedInstrument::frames() const {
    std::lock_guard lock(m_mutex);
    return m_frames;
}

size_t ScriptedInstrument::frameCount() const {
    std::lock_guard lock(m_mutex);
    return m_frames.size();
}

bool ScriptedInstrument::waitForFrames(size_t count, int timeoutMs) const {
    for (int waited = 0; waited < timeoutMs; waited += 5) {
        if (frameCount() >= count)
            return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return frameCount() >= count;
}
