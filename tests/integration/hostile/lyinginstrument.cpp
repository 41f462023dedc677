// SPDX-License-Identifier: Apache-2.0
#include "lyinginstrument.h"

#include "loopbackpeer.h"

#include <algorithm>
#include <cstdio>

namespace {

constexpr uint16_t kListing = 0x0100;
constexpr uint16_t kMore = 0x8000;
constexpr uint32_t kRecordsPerFrame = 59; // 59 * 1,104 bytes fit one 64 KiB payload

std::string Unquoted(std::string text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    return text;
}

std::string ParentOf(const std::string& path) {
    const size_t cut = path.find_last_of('/');
    return cut == 0 || cut == std::string::npos ? "/" : path.substr(0, cut);
}

std::vector<uint8_t> RecordOf(const LyingEntry& entry) {
    return Record(entry.name, entry.size, 1700000000, 1700000000, 1700000000, entry.folder ? 1 : 0);
}

} // namespace

LyingInstrument::LyingInstrument()
    : m_peer(std::make_unique<ScriptedInstrument>(
          [this](const PeerFrame& frame, int socket) { Answer(frame, socket); })) {}

void LyingInstrument::SetFolder(const std::string& path, std::vector<LyingEntry> entries) {
    m_folders[path] = std::move(entries);
}

void LyingInstrument::SetHugeFolder(const std::string& path, uint32_t count) {
    m_huge[path] = count;
}

void LyingInstrument::SetStream(const std::string& path, FileStream stream) {
    m_streams[path] = std::move(stream);
}

std::string LyingInstrument::Remote(const std::string& path) const {
    const std::wstring address = host(); // a dotted loopback address: ASCII
    return "@" + std::string(address.begin(), address.end()) + ":" + path;
}

bool LyingInstrument::Write(int socket, const std::vector<uint8_t>& bytes) {
    return LoopbackPeer::WriteAll(socket, bytes.data(), bytes.size());
}

void LyingInstrument::SendContent(int socket, uint32_t id, const std::string& content, uint32_t announced) {
    size_t at = 0;
    do {
        const size_t n = std::min<size_t>(content.size() - at, 65536);
        const bool last = at + n == content.size();
        const std::vector<uint8_t> payload(content.begin() + long(at), content.begin() + long(at + n));
        if (!Write(socket, DataFrame(id, last ? 0 : kMore, payload, at == 0 ? announced : 0)))
            return;
        at += n;
    } while (at < content.size());
}

void LyingInstrument::Answer(const PeerFrame& request, int socket) {
    if (request.kind() != 8)
        return; // upload data: nothing answers it
    const uint32_t id = request.argument();
    const std::string path = Unquoted(request.firstArgument());
    switch (request.command()) {
    case 1:
        List(socket, id, path);
        return;
    case 3: {
        const auto stream = m_streams.find(path);
        if (stream != m_streams.end())
            stream->second(socket, id, path);
        else
            SendContent(socket, id, path, uint32_t(path.size()));
        return;
    }
    case 8:
        Send(socket, DataFrame(id, 0, {}));
        return;
    case 9:
        Describe(socket, id, path);
        return;
    case 2:
        return; // an upload: its data frames follow and nothing answers
    default:
        Send(socket, ReplyFrame(id, 0));
    }
}

void LyingInstrument::List(int socket, uint32_t id, const std::string& path) {
    const auto huge = m_huge.find(path);
    if (huge != m_huge.end()) {
        // Stops only when the workstation stops reading (or after `count` entries).
        for (uint32_t sent = 0; huge->second == 0 || sent < huge->second;) {
            std::vector<uint8_t> payload;
            const uint32_t n =
                huge->second == 0 ? kRecordsPerFrame : std::min(kRecordsPerFrame, huge->second - sent);
            for (uint32_t i = 0; i < n; ++i) {
                char name[32];
                std::snprintf(name, sizeof name, "f%07u.vxs", sent + i);
                const std::vector<uint8_t> record = RecordOf({name, false, 10});
                payload.insert(payload.end(), record.begin(), record.end());
            }
            sent += n;
            const bool last = huge->second != 0 && sent == huge->second;
            if (!Write(socket, DataFrame(id, uint16_t(kListing | (last ? 0 : kMore)), payload)))
                return;
        }
        return;
    }
    const auto folder = m_folders.find(path);
    if (folder == m_folders.end()) {
        Send(socket, ReplyFrame(id, 2, "No such folder"));
        return;
    }
    std::vector<uint8_t> payload;
    for (const LyingEntry& entry : folder->second) {
        const std::vector<uint8_t> record = RecordOf(entry);
        payload.insert(payload.end(), record.begin(), record.end());
    }
    Send(socket, DataFrame(id, kListing, payload));
}

void LyingInstrument::Describe(int socket, uint32_t id, const std::string& path) {
    if (m_folders.count(path) || m_huge.count(path)) {
        Send(socket, DataFrame(id, 0, RecordOf({path.substr(path.find_last_of('/') + 1), true, 0})));
        return;
    }
    const auto folder = m_folders.find(ParentOf(path));
    if (folder != m_folders.end()) {
        const std::string name = path.substr(path.find_last_of('/') + 1);
        for (const LyingEntry& entry : folder->second)
            if (entry.name == name) {
                Send(socket, DataFrame(id, 0, RecordOf(entry)));
                return;
            }
    }
    Send(socket, ReplyFrame(id, 2, "No such file"));
}
