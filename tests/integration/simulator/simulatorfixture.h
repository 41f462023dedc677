// SPDX-License-Identifier: Apache-2.0
#pragma once
// A copy of the demo tree served by a fresh simulator, and helpers to read what comes back.
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "rawlinkclient.h"
#include "simulator.h"
#include "tempdir.h"

struct ListedEntry {
    std::string name;
    std::uint32_t size = 0;
    std::uint32_t attributes = 0;
};

// The 1,104-byte records of a listing payload, decoded by hand.
std::vector<ListedEntry> DecodeRecords(const Bytes& payload);
std::vector<std::string> Names(const std::vector<ListedEntry>& entries);
Bytes Inflate(const Bytes& packed);
// The content of a read transfer, compressed payloads expanded.
Bytes Content(const std::vector<ReceivedFrame>& frames);

class SimulatorTest : public ::testing::Test {
protected:
    // <temp>/root holds a copy of the demo tree; <temp>/outside is a sibling folder that no request
    // may reach.
    SimulatorTest();

    void Start(const std::vector<std::string>& extraArgs = {});
    // A connected client that has sent the hello.
    std::unique_ptr<RawLinkClient> Connect(int timeoutMs = 3000);
    // One request answered by one frame.
    ReceivedFrame Ask(RawLinkClient& client, std::uint32_t id, std::uint32_t command,
                      const std::string& first, const std::string& second = {}, std::uint16_t flags = 0,
                      std::uint32_t extra = 0);

    std::string root() const { return m_temp.file("root"); }
    std::string outside() const { return m_temp.file("outside"); }

    TempDir m_temp;
    std::unique_ptr<SimulatorProcess> m_simulator;
};
