// SPDX-License-Identifier: Apache-2.0
// The command channel against a scripted peer: request bytes, answer frames, parameter texts, faults.
#include "loopback.h"
#include "scriptedinstrument.h"
#include "statusfakes.h"
#include "text.h"
#include "vexacommsensor.h"
#include "winsockerror.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace {

using Raw = std::vector<uint8_t>;

Raw Data(uint32_t id, const std::string& text, uint16_t flags = 0) {
    return DataFrame(id, flags, ToBytes(text));
}

// An instrument that answers each request with what the script returns (nothing: stays silent).
constexpr auto Script = ScriptedInstrument::Answering;

// A sensor on line (its own link is a flag) whose channel is a VexaCommSensor to the instrument.
struct ChannelFixture {
    explicit ChannelFixture(const std::wstring& host) : sensor(host) {
        auto comm = std::make_unique<VexaCommSensor>(sensor);
        channel = comm.get();
        sensor.SetCommSensor(std::move(comm));
        sensor.GoOnline();
    }
    OfflineCapableSensor sensor;
    VexaCommSensor* channel = nullptr;
};

TEST(VexaCommSensorTest, RequestBytesAndDataAnswer) {
    ScriptedInstrument instrument(
        Script([](const PeerFrame& r) { return Data(r.argument(), "model=2\nneg=1\n"); }));
    ChannelFixture f(instrument.host());
    ASSERT_TRUE(f.channel->IsOpen());
    ASSERT_EQ(f.sensor.GetChannel(), f.channel);
    EXPECT_EQ(f.channel->GetChannel(1), nullptr);

    std::wstring answer;
    int error = -1;
    ASSERT_TRUE(f.channel->Command(L"status", &answer, &error));
    EXPECT_EQ(answer, L"model=2\nneg=1\n");
    EXPECT_EQ(error, 0);

    const std::vector<PeerFrame> requests = instrument.frames();
    ASSERT_EQ(requests.size(), 1u);
    // Command 8 with 10 s in the extra word.
    EXPECT_EQ(requests[0].bytes(), ExpectedRequest(8, 0, requests[0].argument(), "\"status\"", "", 10));
}

TEST(VexaCommSensorTest, AnswerShapesAndStreamsOutOfStep) {
    struct Row {
        const char* name;
        std::function<Raw(uint32_t id)> answer;
        bool ok;
        std::wstring text;
        int error;
        bool outOfStep = false; // the channel is lost: closed, the sensor off line
    };
    auto compressed = [](uint32_t id, const std::string& text) {
        Raw packed(compressBound(uLong(text.size())));
        uLongf size = uLongf(packed.size());
        compress(packed.data(), &size, reinterpret_cast<const Bytef*>(text.data()), uLong(text.size()));
        packed.resize(size);
        return WireFrame(9, 0x0400, id, packed);
    };
    const std::vector<Row> rows = {
        {"two data frames joined",
         [](uint32_t id) {
             return Concat({Data(id, "a=1\n", 0x8000), Data(id, "b=2")});
         },
         true, L"a=1\nb=2", 0},
        {"compressed data", [&](uint32_t id) { return compressed(id, std::string(5000, 'x')); }, true,
         std::wstring(5000, L'x'), 0},
        {"other ids are skipped",
         [](uint32_t id) {
             return Concat({Data(id + 1000, "stale"), Data(id, "fresh")});
         },
         true, L"fresh", 0},
        {"utf-8 answer", [](uint32_t id) { return Data(id, "process=M\xC3\xA9thode"); }, true,
         L"process=M\u00e9thode", 0},
        {"empty success reply", [](uint32_t id) { return ReplyFrame(id, 0); }, true, L"", 0},
        {"error reply with message", [](uint32_t id) { return ReplyFrame(id, 7, "unknown command"); }, false,
         L"unknown command", 7},
        {"error reply without message", [](uint32_t id) { return ReplyFrame(id, 5); }, false, L"", 5},
        {"wrong marker",
         [](uint32_t id) {
             Raw frame = DataFrame(id, 0, ToBytes("x"));
             frame[0] = 0x44; // marker 0x0A0B0C44
             return frame;
         },
         false, L"", kErrInvalid, true},
        {"oversize length", [](uint32_t id) { return WireFrame(9, 0, id, {}, 0, 0, 65537); }, false, L"",
         kErrTooLarge, true},
        {"undecodable compressed payload",
         [](uint32_t id) { return WireFrame(9, 0x0400, id, ToBytes("not zlib")); }, false, L"", kErrTooLarge,
         true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ScriptedInstrument instrument(
            Script([&row](const PeerFrame& r) { return row.answer(r.argument()); }));
        ChannelFixture f(instrument.host());
        std::wstring answer;
        int error = -1;
        EXPECT_EQ(f.channel->Command(L"status", &answer, &error), row.ok);
        EXPECT_EQ(error, row.error);
        if (row.outOfStep) {
            EXPECT_FALSE(f.channel->IsOpen());
            EXPECT_FALSE(f.sensor.IsOnline(false));
            // The next command finds the channel closed and says so without touching the network.
            EXPECT_FALSE(f.channel->Command(L"status", &answer, &error));
            EXPECT_EQ(error, kWsaNotConn);
            continue;
        }
        EXPECT_EQ(answer, row.text);
        // An answer, even a refusal, leaves the connection and the sensor as they were.
        EXPECT_TRUE(f.channel->IsOpen());
        EXPECT_TRUE(f.sensor.IsOnline(true));
    }
}

TEST(VexaCommSensorTest, ParametersAsHexTexts) {
    ScriptedInstrument instrument(Script([](const PeerFrame& r) {
        if (r.firstArgument() == "\"param get 5 0 4\"")
            return Data(r.argument(), "0a0B0c00");
        if (r.firstArgument() == "\"param get 6 2 2\"")
            return Data(r.argument(), "zz00");
        if (r.firstArgument() == "\"param get 7 0 2\"")
            return Data(r.argument(), "0102030405");
        if (r.firstArgument() == "\"param set 9 1 00ff10\"")
            return Data(r.argument(), "ok");
        if (r.firstArgument().rfind("\"param set 9 2", 0) == 0)
            return Data(r.argument(), "refused");
        return ReplyFrame(r.argument(), 1, "unknown");
    }));
    ChannelFixture f(instrument.host());
    uint8_t four[4] = {};
    ASSERT_TRUE(f.channel->Read(5, four, 4, 0));
    EXPECT_EQ(Raw(four, four + 4), HexBytes("0a0b0c00"));
    uint8_t two[2] = {};
    EXPECT_FALSE(f.channel->Read(6, two, 2, 2)); // not hex
    EXPECT_EQ(f.channel->LastError(), kErrInvalid);
    EXPECT_FALSE(f.channel->Read(7, two, 2, 0)); // wrong length
    EXPECT_FALSE(f.channel->Read(8, two, 2, 0)); // instrument refuses
    EXPECT_EQ(f.channel->LastError(), 1);
    const uint8_t value[3] = {0x00, 0xFF, 0x10};
    EXPECT_TRUE(f.channel->Write(9, value, 3, 1));
    EXPECT_FALSE(f.channel->Write(9, value, 3, 2));
    EXPECT_FALSE(f.channel->Read(5, nullptr, 4, 0));
}

TEST(VexaCommSensorTest, OverlongCommandIsRefusedUnsent) {
    ScriptedInstrument instrument(Script([](const PeerFrame& r) { return Data(r.argument(), "ok"); }));
    ChannelFixture f(instrument.host());
    std::wstring answer;
    int error = 0;
    EXPECT_FALSE(f.channel->Command(L"method run " + std::wstring(1100, L'a'), &answer, &error));
    EXPECT_EQ(error, kErrInvalid);
    EXPECT_TRUE(f.channel->Command(L"method run " + std::wstring(1010, L'a'), &answer, &error));
    EXPECT_EQ(instrument.frameCount(), 1u);
}

// A silent instrument: the receive gives up after the link's limit and takes the sensor off line.
TEST(VexaCommSensorTest, SilentInstrumentTakesTheSensorOffLine) {
    ScriptedInstrument instrument(Script([](const PeerFrame&) { return Raw(); }));
    ChannelFixture f(instrument.host());
    ASSERT_TRUE(f.sensor.IsOnline(true));
    std::wstring answer;
    int error = 0;
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(f.channel->Command(L"status", &answer, &error));
    const auto elapsed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(error, kWsaTimedOut);
    EXPECT_GE(elapsed, std::chrono::milliseconds(2900));
    EXPECT_LT(elapsed, std::chrono::milliseconds(8000));
    EXPECT_FALSE(f.sensor.IsOnline(false));
    EXPECT_FALSE(f.channel->IsOpen());
}

TEST(VexaCommSensorTest, UnreachableInstrument) {
    OfflineCapableSensor sensor(FromUtf8(FreshLoopbackAddress())); // nobody listens there
    VexaCommSensor channel(sensor);
    EXPECT_FALSE(channel.Open());
    EXPECT_NE(channel.LastError(), 0);
    std::wstring answer;
    int error = 0;
    EXPECT_FALSE(channel.Command(L"status", &answer, &error));
    EXPECT_EQ(error, kWsaNotConn);
}

} // namespace
