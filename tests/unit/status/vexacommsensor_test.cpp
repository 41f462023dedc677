// The command channel against a scripted peer: request bytes, answer frames, parameter texts, faults.
#include "loopback.h"
#include "loopbackpeer.h"
#include "statusfakes.h"
#include "text.h"
#include "vexacommsensor.h"
#include "winsockerror.h"

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

void Put16(Bytes& out, uint16_t v) {
    out.push_back(uint8_t(v));
    out.push_back(uint8_t(v >> 8));
}

void Put32(Bytes& out, uint32_t v) {
    for (int i = 0; i < 4; ++i)
        out.push_back(uint8_t(v >> (8 * i)));
}

uint32_t Get32(const uint8_t* p) {
    return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16 | uint32_t(p[3]) << 24;
}

// A frame written field by field, as the instrument sends it.
Bytes Frame(uint16_t kind, uint16_t flags, uint32_t id, const Bytes& payload, uint32_t marker = 0x0A0B0C0D) {
    Bytes out;
    Put32(out, marker);
    Put16(out, kind);
    Put16(out, flags);
    Put32(out, 1);
    Put32(out, uint32_t(payload.size()));
    Put32(out, id);
    Put16(out, 0);
    Put16(out, 0);
    Put32(out, 0);
    Put32(out, 0);
    out.insert(out.end(), payload.begin(), payload.end());
    return out;
}

Bytes Text(const std::string& text) {
    return Bytes(text.begin(), text.end());
}

Bytes Data(uint32_t id, const std::string& text, uint16_t flags = 0) {
    return Frame(9, flags, id, Text(text));
}

Bytes Reply(uint32_t id, uint32_t status, const std::string& message = {}) {
    Bytes payload;
    Put32(payload, status);
    payload.insert(payload.end(), message.begin(), message.end());
    return Frame(1, 0, id, payload);
}

Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes out;
    for (const Bytes& part : parts)
        out.insert(out.end(), part.begin(), part.end());
    return out;
}

struct Request {
    Bytes raw;
    uint32_t id = 0;
    std::string command; // the first argument without its quotes
};

// The instrument side: takes the hello, then answers each request with what the script returns
// (nothing: stays silent).
class ScriptedInstrument {
public:
    using Script = std::function<Bytes(const Request&)>;

    explicit ScriptedInstrument(Script script)
        : m_script(std::move(script)), m_peer([this](int socket) { Serve(socket); }) {}

    std::wstring host() const { return m_peer.host(); }
    std::vector<Request> requests() const {
        std::lock_guard lock(m_mutex);
        return m_requests;
    }

private:
    void Serve(int socket) {
        uint8_t hello[42];
        if (!LoopbackPeer::ReadExactly(socket, hello, sizeof hello))
            return;
        for (int served = 0; served < 100 && !m_peer.stopping(); ++served) {
            Request request;
            request.raw.resize(2084);
            if (!LoopbackPeer::ReadExactly(socket, request.raw.data(), request.raw.size(), 10000))
                return;
            request.id = Get32(&request.raw[16]);
            const char* text = reinterpret_cast<const char*>(&request.raw[36]);
            std::string quoted(text, strnlen(text, 1024));
            request.command = quoted.size() >= 2 ? quoted.substr(1, quoted.size() - 2) : quoted;
            {
                std::lock_guard lock(m_mutex);
                m_requests.push_back(request);
            }
            Bytes answer = m_script(request);
            if (!answer.empty() && !LoopbackPeer::WriteAll(socket, answer.data(), answer.size()))
                return;
        }
    }

    Script m_script;
    mutable std::mutex m_mutex;
    std::vector<Request> m_requests;
    LoopbackPeer m_peer; // last: its threads stop before the members they use go
};

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
    ScriptedInstrument instrument([](const Request& r) { return Data(r.id, "model=2\nneg=1\n"); });
    ChannelFixture f(instrument.host());
    ASSERT_TRUE(f.channel->IsOpen());
    ASSERT_EQ(f.sensor.GetChannel(), f.channel);
    EXPECT_EQ(f.channel->GetChannel(1), nullptr);

    std::wstring answer;
    int error = -1;
    ASSERT_TRUE(f.channel->Command(L"status", &answer, &error));
    EXPECT_EQ(answer, L"model=2\nneg=1\n");
    EXPECT_EQ(error, 0);

    const std::vector<Request> requests = instrument.requests();
    ASSERT_EQ(requests.size(), 1u);
    const Bytes& raw = requests[0].raw;
    // Marker, kind 8, no flags, version 1, payload 2052, the id, zeros, 10 s in the extra word.
    const Bytes head = HexBytes("0d0c0b0a 0800 0000 01000000 04080000");
    EXPECT_TRUE(std::equal(head.begin(), head.end(), raw.begin()));
    EXPECT_EQ(Bytes(raw.begin() + 20, raw.begin() + 28), Bytes(8, 0));
    EXPECT_EQ(Bytes(raw.begin() + 28, raw.begin() + 36), HexBytes("0a000000 08000000"));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(&raw[36]), 9), std::string("\"status\"\0", 9));
    EXPECT_TRUE(std::all_of(raw.begin() + 36 + 9, raw.end(), [](uint8_t b) { return b == 0; }));
}

TEST(VexaCommSensorTest, AnswerShapes) {
    struct Row {
        const char* name;
        std::function<Bytes(uint32_t id)> answer;
        bool ok;
        std::wstring text;
        int error;
    };
    auto compressed = [](uint32_t id, const std::string& text) {
        Bytes packed(compressBound(uLong(text.size())));
        uLongf size = uLongf(packed.size());
        compress(packed.data(), &size, reinterpret_cast<const Bytef*>(text.data()), uLong(text.size()));
        packed.resize(size);
        return Frame(9, 0x0400, id, packed);
    };
    const std::vector<Row> rows = {
        {"two data frames joined",
         [](uint32_t id) {
             return Join({Data(id, "a=1\n", 0x8000), Data(id, "b=2")});
         },
         true, L"a=1\nb=2", 0},
        {"compressed data", [&](uint32_t id) { return compressed(id, std::string(5000, 'x')); }, true,
         std::wstring(5000, L'x'), 0},
        {"other ids are skipped",
         [](uint32_t id) {
             return Join({Data(id + 1000, "stale"), Data(id, "fresh")});
         },
         true, L"fresh", 0},
        {"utf-8 answer", [](uint32_t id) { return Data(id, "process=M\xC3\xA9thode"); }, true,
         L"process=M\u00e9thode", 0},
        {"empty success reply", [](uint32_t id) { return Reply(id, 0); }, true, L"", 0},
        {"error reply with message", [](uint32_t id) { return Reply(id, 7, "unknown command"); }, false,
         L"unknown command", 7},
        {"error reply without message", [](uint32_t id) { return Reply(id, 5); }, false, L"", 5},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ScriptedInstrument instrument([&row](const Request& r) { return row.answer(r.id); });
        ChannelFixture f(instrument.host());
        std::wstring answer;
        int error = -1;
        EXPECT_EQ(f.channel->Command(L"status", &answer, &error), row.ok);
        EXPECT_EQ(answer, row.text);
        EXPECT_EQ(error, row.error);
        // An answer, even a refusal, leaves the connection and the sensor as they were.
        EXPECT_TRUE(f.channel->IsOpen());
        EXPECT_TRUE(f.sensor.IsOnline(true));
    }
}

TEST(VexaCommSensorTest, ParametersAsHexTexts) {
    ScriptedInstrument instrument([](const Request& r) {
        if (r.command == "param get 5 0 4")
            return Data(r.id, "0a0B0c00");
        if (r.command == "param get 6 2 2")
            return Data(r.id, "zz00");
        if (r.command == "param get 7 0 2")
            return Data(r.id, "0102030405");
        if (r.command == "param set 9 1 00ff10")
            return Data(r.id, "ok");
        if (r.command.rfind("param set 9 2", 0) == 0)
            return Data(r.id, "refused");
        return Reply(r.id, 1, "unknown");
    });
    ChannelFixture f(instrument.host());
    uint8_t four[4] = {};
    ASSERT_TRUE(f.channel->Read(5, four, 4, 0));
    EXPECT_EQ(Bytes(four, four + 4), HexBytes("0a0b0c00"));
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

TEST(VexaCommSensorTest, OutOfStepStreamClosesTheChannel) {
    struct Row {
        const char* name;
        std::function<Bytes(uint32_t id)> answer;
        int error;
    };
    const std::vector<Row> rows = {
        {"wrong marker", [](uint32_t id) { return Frame(9, 0, id, Text("x"), 0x11223344); }, kErrInvalid},
        {"oversize length",
         [](uint32_t id) {
             Bytes frame = Frame(9, 0, id, {});
             frame[12] = 0x01; // 65,537 bytes announced
             frame[14] = 0x01;
             return frame;
         },
         kErrTooLarge},
        {"undecodable compressed payload", [](uint32_t id) { return Frame(9, 0x0400, id, Text("not zlib")); },
         kErrTooLarge},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ScriptedInstrument instrument([&row](const Request& r) { return row.answer(r.id); });
        ChannelFixture f(instrument.host());
        std::wstring answer;
        int error = 0;
        EXPECT_FALSE(f.channel->Command(L"status", &answer, &error));
        EXPECT_EQ(error, row.error);
        EXPECT_FALSE(f.channel->IsOpen());
        EXPECT_FALSE(f.sensor.IsOnline(false)); // a channel out of step is a lost channel
        // The next command finds the channel closed and says so without touching the network.
        EXPECT_FALSE(f.channel->Command(L"status", &answer, &error));
        EXPECT_EQ(error, kWsaNotConn);
    }
}

TEST(VexaCommSensorTest, OverlongCommandIsRefusedUnsent) {
    ScriptedInstrument instrument([](const Request& r) { return Data(r.id, "ok"); });
    ChannelFixture f(instrument.host());
    std::wstring answer;
    int error = 0;
    EXPECT_FALSE(f.channel->Command(L"method run " + std::wstring(1100, L'a'), &answer, &error));
    EXPECT_EQ(error, kErrInvalid);
    EXPECT_TRUE(f.channel->Command(L"method run " + std::wstring(1010, L'a'), &answer, &error));
    EXPECT_EQ(instrument.requests().size(), 1u);
}

// A silent instrument: the receive gives up after the link's limit and takes the sensor off line.
TEST(VexaCommSensorTest, SilentInstrumentTakesTheSensorOffLine) {
    ScriptedInstrument instrument([](const Request&) { return Bytes(); });
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
