// SPDX-License-Identifier: Apache-2.0
#include "linkframe.h"
#include "loopback.h"
#include "loopbackpeer.h"
#include "processcpu.h"
#include "pumpwait.h"
#include "sensorfixture.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

long long MsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// The hello frame, written out by hand.
const std::vector<uint8_t> kHello =
    HexBytes("0D0C0B0A 04008000 01000000 0A000000 00000000 0000 0000 00000000 00000000"
             "00020000 00000000 0000");

// A peer that takes the hello and then runs `then` on the socket.
LoopbackPeer::Handler AfterHello(std::function<void(int)> then) {
    return [then](int s) {
        uint8_t hello[42];
        if (LoopbackPeer::ReadExactly(s, hello, sizeof hello))
            then(s);
    };
}

} // namespace

TEST(LinkFrame, HelloIsExactlyTheTabledBytes) {
    ASSERT_EQ(kHello.size(), 42u);
    uint8_t built[42];
    BuildHelloFrame(built);
    EXPECT_EQ(std::vector<uint8_t>(built, built + 42), kHello);
}

TEST(LinkFrame, RequestLayoutQuotesAndCutsArguments) {
    std::vector<uint8_t> frame(kRequestFrameSize);
    BuildRequestFrame(frame.data(), kCmdRename, 0x0004, 7, "/a", "/b c", 30);
    EXPECT_EQ(std::vector<uint8_t>(frame.begin(), frame.begin() + 32),
              HexBytes("0D0C0B0A 08000400 01000000 04080000 07000000 0000 0000 00000000 1E000000"));
    EXPECT_EQ(std::vector<uint8_t>(frame.begin() + 32, frame.begin() + 42),
              HexBytes("05000000 222F6122 0000"));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(&frame[32 + 4 + 1024])), "\"/b c\"");

    // A path of 1,100 bytes is cut to 1,023 bytes plus the NUL.
    BuildRequestFrame(frame.data(), kCmdOpenRead, 0, 1, std::string(1100, 'x'), "");
    EXPECT_EQ(std::strlen(reinterpret_cast<char*>(&frame[36])), 1023u);
    EXPECT_EQ(frame[36 + 1023], 0);
    EXPECT_EQ(frame[36 + 1024], 0) << "an empty second argument stays zero";
}

TEST(LinkFrame, HostPrefixIsDropped) {
    std::string path = "@inst:/data/x.mth";
    EXPECT_TRUE(StripHostPrefix(path));
    EXPECT_EQ(path, "/data/x.mth");
    path = "@inst";
    EXPECT_FALSE(StripHostPrefix(path));
    path = "/plain";
    EXPECT_TRUE(StripHostPrefix(path));
    EXPECT_EQ(path, "/plain");
}

TEST(Link, ConnectSendsTheHelloAndNothingElse) {
    std::vector<uint8_t> received;
    std::atomic<bool> done{false};
    LoopbackPeer peer([&](int s) {
        received = LoopbackPeer::ReadUntilClosed(s, 5000);
        done = true;
    });
    ASSERT_TRUE(peer.listening());
    {
        SensorHandle sensor(peer.host());
        ASSERT_TRUE(sensor->GoOnline());
        EXPECT_TRUE(sensor->IsLinkOpen());
        EXPECT_EQ(sensor->GetSensorState(), kSensorOnline);
        EXPECT_EQ(sensor->GetLastLinkError(), 0);
    } // destroying the sensor closes the link first
    for (int i = 0; i < 200 && !done; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(done) << "the peer must see the link close when the sensor goes";
    EXPECT_EQ(received, kHello);
}

TEST(Link, ArgumentChecksComeInOrder) {
    SensorHandle closed(L"127.0.0.2"); // never taken on line
    char byte = 0;
    // Closed: the open test comes first, even for a zero count.
    EXPECT_EQ(closed->ReceiveBytes(&byte, 0), -1);
    EXPECT_EQ(closed->GetLastLinkError(), kWsaNotConn);
    EXPECT_EQ(closed->SendBytes(&byte, 1), -1);
    EXPECT_EQ(closed->GetLastLinkError(), kWsaNotConn);

    LoopbackPeer peer(AfterHello([](int s) { LoopbackPeer::ReadUntilClosed(s, 5000); }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());
    EXPECT_EQ(sensor->ReceiveBytes(nullptr, 4), -1);
    EXPECT_EQ(sensor->GetLastLinkError(), kErrInvalid);
    EXPECT_EQ(sensor->SendBytes(&byte, -1), -1);
    EXPECT_EQ(sensor->GetLastLinkError(), kErrInvalid);
    // A zero-byte receive returns at once without touching the socket, and leaves the error alone.
    auto start = Clock::now();
    EXPECT_EQ(sensor->ReceiveBytes(&byte, 0), 0);
    EXPECT_LT(MsSince(start), 50);
    EXPECT_EQ(sensor->GetLastLinkError(), kErrInvalid);
    EXPECT_TRUE(sensor->IsLinkOpen());
}

TEST(Link, UnresolvableHostLeavesTheLinkClosedWithError22) {
    SensorHandle sensor(L"no such host!");
    sensor->Connect(true);
    EXPECT_FALSE(sensor->IsLinkOpen());
    EXPECT_EQ(sensor->GetLastLinkError(), kErrInvalid);
}

TEST(Link, RefusedConnectionFailsAsThePlatformReportsIt) {
    std::string nobody = FreshLoopbackAddress(); // nothing listens there
    SensorHandle sensor(std::wstring(nobody.begin(), nobody.end()));
    auto start = Clock::now();
    EXPECT_FALSE(sensor->GoOnline());
    EXPECT_FALSE(sensor->IsLinkOpen());
    int error = sensor->GetLastLinkError();
#ifdef _WIN32
    // Winsock shows a refused connect only in select's error set, which the connect poll leaves out:
    // the attempt ends at its time limit.
    EXPECT_GE(MsSince(start), 4900);
    EXPECT_EQ(error, kWsaTimedOut);
#else
    EXPECT_LT(MsSince(start), 1000);
    EXPECT_TRUE(error == kWsaConnRefused || error == kWsaConnReset || error == kWsaShutdown) << error;
#endif
}

TEST(Link, SilentInstrumentTimesOutAfterFiveSeconds) {
    // A listening socket whose one-place queue is full drops further SYNs: the instrument is silent.
    LoopbackPeer peer(nullptr, kLinkPort, {}, 0);
    ASSERT_TRUE(peer.listening());
    SensorHandle filler(peer.host());
    filler->Connect(true);
    ASSERT_TRUE(filler->IsLinkOpen());

    SensorHandle sensor(peer.host());
    auto start = Clock::now();
    sensor->Connect(true);
    long long elapsed = MsSince(start);
    EXPECT_FALSE(sensor->IsLinkOpen());
    EXPECT_EQ(sensor->GetLastLinkError(), kWsaTimedOut);
    EXPECT_GE(elapsed, 5000);
    EXPECT_LT(elapsed, 7000);
}

TEST(Link, StalledPeerFailsTheReceiveAfterThreeSecondsAndTakesTheSensorOffline) {
    LoopbackPeer peer(AfterHello([](int s) {
        const char half[] = "0123456789"; // ten bytes of a longer frame, then silence
        LoopbackPeer::WriteAll(s, half, 10);
        LoopbackPeer::ReadUntilClosed(s, 8000);
    }));
    SensorHandle sensor(peer.host());
    RecordingObserver observer;
    observer.SetSensor(sensor.get());
    ASSERT_TRUE(sensor->GoOnline());

    char buffer[32];
    auto start = Clock::now();
    EXPECT_EQ(sensor->ReceiveBytes(buffer, sizeof buffer), -1);
    long long elapsed = MsSince(start);
    EXPECT_GE(elapsed, 3000);
    EXPECT_LT(elapsed, 4500);
    EXPECT_EQ(sensor->GetLastLinkError(), kWsaTimedOut);
    EXPECT_FALSE(sensor->IsOnline());
    EXPECT_FALSE(sensor->IsLinkOpen());
    auto codes = observer.codes();
    EXPECT_NE(std::find(codes.begin(), codes.end(), kSensorEventOffline), codes.end());
    observer.SetSensor(nullptr);
}

TEST(Link, ClosedPeerEndsOnlyByTheTimeLimitWithoutSpinning) {
    LoopbackPeer peer(AfterHello([](int s) {
        LoopbackPeer::ShutdownWrite(s);
        LoopbackPeer::ReadUntilClosed(s, 6000);
    }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());
    char buffer[4];
    const double cpuStart = ProcessCpuSeconds();
    auto start = Clock::now();
    EXPECT_EQ(sensor->ReceiveBytes(buffer, 4), -1);
    EXPECT_GE(MsSince(start), 3000);
    EXPECT_EQ(sensor->GetLastLinkError(), kWsaTimedOut);
    // Thirty 100 ms slices cost next to no processor time; a spinning loop would burn three seconds.
    EXPECT_LT(ProcessCpuSeconds() - cpuStart, 0.5);
}

TEST(Link, ClosingFromAnotherThreadEndsAWaitingReceiveAtOnce) {
    LoopbackPeer peer(AfterHello([](int s) { LoopbackPeer::ReadUntilClosed(s, 6000); }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());
    int received = 0;
    long long receiveMs = 0;
    std::thread receiver([&] {
        char buffer[4];
        const auto start = Clock::now();
        received = sensor->ReceiveBytes(buffer, 4);
        receiveMs = MsSince(start);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    const auto start = Clock::now();
    sensor->Disconnect(0);
    const long long closeMs = MsSince(start);
    receiver.join();
    // Without the interruption both would wait for the receive's 3 s limit.
    EXPECT_LT(closeMs, 1000);
    EXPECT_LT(receiveMs, 1500);
    EXPECT_EQ(received, -1);
    EXPECT_EQ(sensor->GetLastLinkError(), kWsaNotConn);
    EXPECT_FALSE(sensor->IsLinkOpen());
    // The link opens again as before.
    ASSERT_TRUE(sensor->GoOnline());
    EXPECT_EQ(sensor->SendBytes("ping", 4), 4);
}

TEST(Link, TricklingSendNeverTimesOutWhileEachPieceComesInTime) {
    // More than the socket buffers on both sides hold, so the send must wait for the peer. The peer
    // pauses 2 s, takes 1 MiB, pauses 2 s again, then takes the rest: the send lasts over 4 s, longer
    // than the limit, while no pause between two pieces of progress reaches it.
    constexpr size_t kTotal = 32 * 1024 * 1024;
    std::atomic<size_t> got{0};
    LoopbackPeer peer(AfterHello([&](int s) {
        std::vector<char> chunk(1024 * 1024);
        for (int pause = 0; got < kTotal; ++pause) {
            if (pause < 2)
                std::this_thread::sleep_for(std::chrono::milliseconds(2000));
            size_t n = std::min(chunk.size(), kTotal - got);
            if (!LoopbackPeer::ReadExactly(s, chunk.data(), n))
                break;
            got += n;
        }
    }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());
    std::vector<char> data(kTotal, 'x');
    auto start = Clock::now();
    EXPECT_EQ(sensor->SendBytes(data.data(), int(data.size())), int(kTotal));
    EXPECT_GT(MsSince(start), 3000) << "the peer must have held the send back past the limit";
    EXPECT_TRUE(sensor->IsOnline());
}

TEST(Link, ReceiveTakesExactlyTheCountAcrossPieces) {
    LoopbackPeer peer(AfterHello([](int s) {
        for (char c : std::string("abcdef")) {
            LoopbackPeer::WriteAll(s, &c, 1);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        LoopbackPeer::ReadUntilClosed(s, 3000);
    }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());
    char buffer[4] = {};
    ASSERT_EQ(sensor->ReceiveBytes(buffer, 4), 4);
    EXPECT_EQ(std::string(buffer, 4), "abcd");
    ASSERT_EQ(sensor->ReceiveBytes(buffer, 2), 2);
    EXPECT_EQ(std::string(buffer, 2), "ef");
}

namespace {

// Dispatches one queued piece of work while the link waits, as a UI timer would.
class OneShotDispatcher : public PumpDispatcher {
public:
    std::function<void()> work;
    void WaitForEvents(int ms) override {
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(ms, 5)));
    }
    void DispatchPending() override {
        if (auto w = std::move(work)) {
            work = nullptr;
            w();
        }
    }
};

} // namespace

TEST(Link, HandlerDispatchedDuringAWaitMayReenterTheLink) {
    LoopbackPeer peer(AfterHello([](int s) {
        char ping[4];
        // Answer only once the re-entrant handler has sent its ping.
        if (LoopbackPeer::ReadExactly(s, ping, 4))
            LoopbackPeer::WriteAll(s, "pong", 4);
        LoopbackPeer::ReadUntilClosed(s, 3000);
    }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());

    OneShotDispatcher dispatcher;
    int handlerResult = 0;
    dispatcher.work = [&] { handlerResult = sensor->SendBytes("ping", 4); };
    PumpDispatcher* previous = SetThreadPumpDispatcher(&dispatcher);
    char answer[4];
    int received = sensor->ReceiveBytes(answer, 4);
    SetThreadPumpDispatcher(previous);

    EXPECT_EQ(handlerResult, 4);
    ASSERT_EQ(received, 4);
    EXPECT_EQ(std::string(answer, 4), "pong");
}

TEST(Link, OtherThreadsWaitForTheLinkLock) {
    std::atomic<bool> answered{false};
    LoopbackPeer peer(AfterHello([&](int s) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        // Marked before writing: the receiver may finish, and the sender go, before this thread runs on.
        answered = true;
        LoopbackPeer::WriteAll(s, "abcd", 4);
        LoopbackPeer::ReadUntilClosed(s, 3000);
    }));
    SensorHandle sensor(peer.host());
    ASSERT_TRUE(sensor->GoOnline());
    std::atomic<bool> sentWhileReceiving{false};
    std::thread receiver([&] {
        char buffer[4];
        sensor->ReceiveBytes(buffer, 4);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::thread sender([&] {
        sensor->SendBytes("x", 1);
        sentWhileReceiving = !answered.load();
    });
    receiver.join();
    sender.join();
    EXPECT_FALSE(sentWhileReceiving) << "a send from another thread must wait for the receive to finish";
}
