// SPDX-License-Identifier: Apache-2.0
#pragma once
// An instrument that lies, on a scripted loopback peer: its folders list what the test says (names
// that are paths, duplicates, a million entries) and its files stream what the test says (more or
// fewer bytes than announced, without end, behind replies for other transfers).
#include "scriptedinstrument.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct LyingEntry {
    std::string name;
    bool folder = false;
    uint32_t size = 0;
};

class LyingInstrument {
public:
    // Writes the answer to a read of `path` (request id `id`) on `socket`, however it likes.
    using FileStream = std::function<void(int socket, uint32_t id, const std::string& path)>;

    LyingInstrument();

    // The entries a folder lists; "/" is listed as holding each folder named here at top level.
    void SetFolder(const std::string& path, std::vector<LyingEntry> entries);
    // A folder that lists `count` files f0000000.vxs ... in frames of 59 records, without end when
    // `count` is 0.
    void SetHugeFolder(const std::string& path, uint32_t count);
    // Files not streamed otherwise read as their name's bytes, announced truthfully.
    void SetStream(const std::string& path, FileStream stream);

    std::wstring host() const { return m_peer->host(); }
    std::string Remote(const std::string& path) const;

    // Writes bytes to a workstation's socket; false once it stopped reading or went away.
    static bool Write(int socket, const std::vector<uint8_t>& bytes);
    // Streams `content` in frames of at most 64 KiB announcing `announced` bytes.
    static void SendContent(int socket, uint32_t id, const std::string& content, uint32_t announced);

private:
    void Answer(const PeerFrame& request, int socket);
    void List(int socket, uint32_t id, const std::string& path);
    void Describe(int socket, uint32_t id, const std::string& path);

    std::map<std::string, std::vector<LyingEntry>> m_folders;
    std::map<std::string, uint32_t> m_huge;
    std::map<std::string, FileStream> m_streams;
    std::unique_ptr<ScriptedInstrument> m_peer;
};
