// SPDX-License-Identifier: Apache-2.0
#include "simulatorfixture.h"

#include "demotree.h"

#include <zlib.h>

std::vector<ListedEntry> DecodeRecords(const Bytes& payload) {
    std::vector<ListedEntry> entries;
    for (std::size_t at = 0; at + 1104 <= payload.size(); at += 1104) {
        ListedEntry entry;
        const char* name = reinterpret_cast<const char*>(payload.data() + at);
        entry.name = std::string(name, strnlen(name, 1024));
        entry.size = ReadU32(payload, at + 1024);
        entry.attributes = ReadU32(payload, at + 1040);
        entries.push_back(entry);
    }
    return entries;
}

std::vector<std::string> Names(const std::vector<ListedEntry>& entries) {
    std::vector<std::string> names;
    for (const ListedEntry& entry : entries)
        names.push_back(entry.name);
    return names;
}

Bytes Inflate(const Bytes& packed) {
    Bytes out(65536);
    uLongf size = out.size();
    if (uncompress(out.data(), &size, packed.data(), packed.size()) != Z_OK)
        return {};
    out.resize(size);
    return out;
}

Bytes Content(const std::vector<ReceivedFrame>& frames) {
    Bytes content;
    for (const ReceivedFrame& frame : frames) {
        const Bytes chunk = (frame.flags & kWireCompressed) ? Inflate(frame.payload) : frame.payload;
        content.insert(content.end(), chunk.begin(), chunk.end());
    }
    return content;
}

SimulatorTest::SimulatorTest() {
    CopyDemoTree(root());
    m_temp.createFile("outside/secret.txt", "not for the instrument");
}

void SimulatorTest::Start(const std::vector<std::string>& extraArgs) {
    m_simulator = std::make_unique<SimulatorProcess>(root(), extraArgs);
}

std::unique_ptr<RawLinkClient> SimulatorTest::Connect(int timeoutMs) {
    auto client = std::make_unique<RawLinkClient>(m_simulator->address(), timeoutMs);
    EXPECT_TRUE(client->connected());
    EXPECT_TRUE(client->SendHello());
    return client;
}

ReceivedFrame SimulatorTest::Ask(RawLinkClient& client, std::uint32_t id, std::uint32_t command,
                                 const std::string& first, const std::string& second, std::uint16_t flags,
                                 std::uint32_t extra) {
    EXPECT_TRUE(client.SendRequest(id, command, first, second, flags, extra));
    std::optional<ReceivedFrame> frame = client.ReadFrame();
    EXPECT_TRUE(frame.has_value()) << "no answer to command " << command << " \"" << first << "\"";
    return frame.value_or(ReceivedFrame{});
}
