// SPDX-License-Identifier: Apache-2.0
#include "paths.h"
#include "sensorinfo.h"
#include "sensorobject.h"
#include "sensorref.h"
#include "sensorwait.h"

#include "fakechannel.h"
#include "recordingobserver.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <thread>

namespace {

// A sensor whose link is a flag; the test decides whether opening succeeds and may make the link
// code call Disconnect from inside Connect, as a time-out does.
class FakeSensor : public ISensorObject {
public:
    explicit FakeSensor(const std::wstring& host, ISensorInfo* info = nullptr, bool* destroyed = nullptr)
        : ISensorObject(info, ISensorAddress(host)), m_destroyed(destroyed) {}
    ~FakeSensor() override {
        if (m_destroyed)
            *m_destroyed = true;
    }
    void Connect(bool open) override {
        ++connectCalls;
        if (open && connectDelayMs > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(connectDelayMs.load()));
        if (open && disconnectInsideConnect) {
            m_open = true;
            Disconnect(0); // comes back here as Connect(false)
            return;
        }
        if (!open && disconnectInsideClose)
            Disconnect(0);
        m_open = open && allowOpen;
    }
    bool IsLinkOpen() const override { return m_open; }
    void DropLink() { m_open = false; }
    using ISensorObject::GetSensorParam;
    using ISensorObject::SetSensorParam;

    std::atomic<bool> allowOpen{true};
    std::atomic<int> connectDelayMs{0};
    bool disconnectInsideConnect = false;
    bool disconnectInsideClose = false;
    std::atomic<int> connectCalls{0};

private:
    bool* m_destroyed;
    std::atomic<bool> m_open{false};
};

// A sensor of another type, for the holder's type check.
class OtherSensor : public ISensorObject {
public:
    using ISensorObject::ISensorObject;
};

// A sensor with a fake communication sensor, on line, observed.
struct OnlineSensor {
    OnlineSensor() {
        channel->failure = 10060; // unknown commands time out
        sensor.SetCommSensor(std::unique_ptr<ICommSensor>(channel));
        observer.SetSensor(&sensor);
        EXPECT_TRUE(sensor.GoOnline());
    }
    FakeChannel* channel = new FakeChannel; // owned by the sensor
    FakeSensor sensor{L"10.9.8.7"};
    RecordingObserver observer;
};

} // namespace

TEST(SensorObject, IdentityDevicesAndDefaults) {
    FakeSensor a(L"10.0.0.1"), b(L"10.0.0.2");
    EXPECT_EQ(a.GetName(), L"10.0.0.1");
    EXPECT_NE(a.GetId(), b.GetId());
    EXPECT_EQ(a.GetSensorAddress().GetHostname(), L"10.0.0.1");
    EXPECT_EQ(a.GetNumDevices(), 1);
    EXPECT_EQ(a.GetDevice(0).GetName(), L"VEXA");
    EXPECT_EQ(&a.GetDevice(L"VEXA"), &a.GetDevice(0));
    EXPECT_TRUE(a.HasDevice(L"VEXA"));
    EXPECT_FALSE(a.HasDevice(L"Other"));
    // A missing device is an empty one, never a crash.
    EXPECT_EQ(a.GetDevice(L"Other").GetName(), L"");
    EXPECT_FALSE(a.GetDevice(5).HasSnapshot());
    EXPECT_EQ(a.GetDevice(-1).GetName(), L"");
    EXPECT_EQ(a.GetSensorState(), kSensorOffline);
    EXPECT_EQ(a.GetAlarmInterval(), 1000);
    EXPECT_EQ(a.GetNextFileName(1, L"Run", L"mth", 3), L"");
    EXPECT_TRUE(a.ListFiles(1, 0, L"").empty());
}

TEST(SensorObject, DevicesFromSensorType) {
    struct Info : ISensorInfo {
        Info() { SetIdentity(L"T", L"Test", L"Dev", 7, L"Product", names); }
        const wchar_t* const names[3] = {L"VEXA", L"Pump", nullptr};
    } info;
    FakeSensor sensor(L"h", &info);
    ASSERT_EQ(sensor.GetNumDevices(), 2);
    EXPECT_EQ(sensor.GetDevice(1).GetName(), L"Pump");
    EXPECT_EQ(sensor.GetDevice(L"pump").GetSensor(), &sensor);
    EXPECT_EQ(sensor.GetSensorInfo(), &info);
}

TEST(SensorObject, RegistryAndReferenceCounting) {
    bool destroyed = false;
    auto* sensor = new FakeSensor(L"Box-1", nullptr, &destroyed);
    EXPECT_EQ(ISensorObject::Select(ISensorAddress(L"Box-1")), sensor);
    EXPECT_EQ(ISensorObject::Select(ISensorAddress(L"box-1")), sensor); // host names ignore case
    EXPECT_EQ(ISensorObject::Select(ISensorAddress(L"Box-2")), nullptr);
    EXPECT_EQ(ISensorObject::Select(ISensorAddress(L"")), nullptr);
    EXPECT_EQ(ISensorObject::SelectByName(L"Box-1"), sensor);
    const auto all = ISensorObject::AllSensors();
    EXPECT_NE(std::find(all.begin(), all.end(), sensor), all.end());

    EXPECT_EQ(sensor->RefCount(), 1);
    EXPECT_EQ(ISensorObject::SelectAndRef(ISensorAddress(L"Box-1")), sensor);
    EXPECT_EQ(sensor->RefCount(), 2);
    sensor->IncRef();
    sensor->DecRef();
    sensor->DecRef();
    EXPECT_FALSE(destroyed);
    sensor->DecRef(); // the last reference
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(ISensorObject::Select(ISensorAddress(L"Box-1")), nullptr);
    EXPECT_EQ(ISensorObject::SelectAndRef(ISensorAddress(L"Box-1")), nullptr);

    // References taken and dropped from several threads at once.
    destroyed = false;
    sensor = new FakeSensor(L"Box-3", nullptr, &destroyed);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 1000; ++i) {
                if (ISensorObject* s = ISensorObject::SelectAndRef(ISensorAddress(L"Box-3")))
                    s->DecRef();
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(sensor->RefCount(), 1);
    sensor->DecRef();
    EXPECT_TRUE(destroyed);
}

// The holder keeps exactly one reference through sharing, moving and resetting, and drops a sensor of
// another type at once.
TEST(SensorObject, ReferenceHolder) {
    bool destroyed = false;
    auto* sensor = new FakeSensor(L"Box-4", nullptr, &destroyed);
    {
        SensorRef<FakeSensor> adopted = SensorRef<FakeSensor>::Adopt(sensor);
        const SensorRef<> shared = SensorRef<>::Share(sensor);
        EXPECT_EQ(sensor->RefCount(), 2);
        SensorRef<FakeSensor> moved = std::move(adopted);
        EXPECT_FALSE(adopted);
        EXPECT_EQ(moved.get(), sensor);
        EXPECT_EQ(sensor->RefCount(), 2);
        moved.Reset();
        EXPECT_EQ(sensor->RefCount(), 1);
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);

    destroyed = false;
    const auto wrongType =
        SensorRef<OtherSensor>::AdoptIf(ISensorObject::SelectAndRef(ISensorAddress(L"Box-5")));
    EXPECT_FALSE(wrongType);
    new FakeSensor(L"Box-5", nullptr, &destroyed);
    EXPECT_FALSE(SensorRef<OtherSensor>::AdoptIf(ISensorObject::SelectAndRef(ISensorAddress(L"Box-5"))));
    EXPECT_FALSE(destroyed);
    SensorRef<>::Adopt(ISensorObject::Select(ISensorAddress(L"Box-5"))).Reset();
    EXPECT_TRUE(destroyed);
    EXPECT_FALSE(SensorRef<>::Share(nullptr));
}

TEST(SensorObject, GoOnlineAndDisconnect) {
    FakeSensor sensor(L"h");
    auto* channel = new FakeChannel;
    sensor.SetCommSensor(std::unique_ptr<ICommSensor>(channel));
    RecordingObserver observer;
    observer.SetSensor(&sensor);

    sensor.SetKeepOffline(true);
    EXPECT_FALSE(sensor.GoOnline());
    EXPECT_EQ(sensor.connectCalls, 0);
    sensor.SetKeepOffline(false);

    EXPECT_TRUE(sensor.GoOnline());
    EXPECT_EQ(sensor.GetSensorState(), kSensorOnline);
    EXPECT_TRUE(sensor.IsOnline(true));
    EXPECT_EQ(channel->opens, 1);
    EXPECT_EQ(sensor.GetChannel(), channel);

    sensor.GetDevice(L"VEXA").SetSnapshot({{"model", "2"}});
    sensor.Disconnect(0);
    EXPECT_EQ(sensor.GetSensorState(), kSensorOffline);
    EXPECT_FALSE(sensor.IsOnline(false));
    EXPECT_FALSE(sensor.IsLinkOpen());
    EXPECT_EQ(channel->closes, 1);
    EXPECT_FALSE(sensor.GetDevice(L"VEXA").HasSnapshot());
    sensor.Disconnect(0); // already off line: no second event
    EXPECT_EQ(observer.codes(), (std::vector<uint32_t>{kSensorEventOnline, kSensorEventOffline}));
    EXPECT_EQ(observer.events()[0].sensorName, L"h");

    // A link that does not open leaves the sensor off line without events.
    sensor.allowOpen = false;
    EXPECT_FALSE(sensor.GoOnline());
    EXPECT_EQ(sensor.GetSensorState(), kSensorOffline);
    EXPECT_EQ(observer.events().size(), 2u);

    // A link that drops is noticed: on line means link open.
    sensor.allowOpen = true;
    ASSERT_TRUE(sensor.GoOnline());
    sensor.DropLink();
    EXPECT_FALSE(sensor.IsOnline(true));
    EXPECT_TRUE(sensor.IsOnline(false));
    sensor.OnTimer(0);
    EXPECT_EQ(sensor.GetSensorState(), kSensorOffline);
    EXPECT_EQ(observer.codes().back(), kSensorEventOffline);
}

TEST(SensorObject, DisconnectIsReentrantAndThreadSafe) {
    FakeSensor sensor(L"h");
    RecordingObserver observer;
    observer.SetSensor(&sensor);
    sensor.disconnectInsideConnect = true; // a failed hello calls Disconnect(0) from inside Connect
    EXPECT_FALSE(sensor.GoOnline());
    EXPECT_EQ(sensor.GetSensorState(), kSensorOffline);
    EXPECT_TRUE(observer.events().empty());

    sensor.disconnectInsideConnect = false;
    sensor.disconnectInsideClose = true; // the link reports a Disconnect while closing
    ASSERT_TRUE(sensor.GoOnline());
    sensor.Disconnect(0);
    EXPECT_EQ(sensor.GetSensorState(), kSensorOffline);
    EXPECT_EQ(observer.codes(), (std::vector<uint32_t>{kSensorEventOnline, kSensorEventOffline}));

    // Several threads taking it off line at once raise one event.
    sensor.disconnectInsideClose = false;
    ASSERT_TRUE(sensor.GoOnline());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] { sensor.Disconnect(0); });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(observer.codes(), (std::vector<uint32_t>{kSensorEventOnline, kSensorEventOffline,
                                                       kSensorEventOnline, kSensorEventOffline}));
}

// The studio's reconnection and a copy waiting for its instrument may both take a sensor on line.
TEST(SensorObject, ConcurrentGoOnlineConnectsOnceAndRemovedStaysOffline) {
    FakeSensor sensor(L"h");
    RecordingObserver observer;
    observer.SetSensor(&sensor);
    sensor.connectDelayMs = 200;
    std::atomic<int> online{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] { online += sensor.GoOnline() ? 1 : 0; });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(online, 4);
    EXPECT_EQ(sensor.connectCalls, 1);
    EXPECT_EQ(observer.codes(), std::vector<uint32_t>{kSensorEventOnline});

    sensor.Remove(false);
    EXPECT_FALSE(sensor.GoOnline()) << "a holder of a removed sensor must not revive it";
    EXPECT_FALSE(SensorWait{}.UntilOnline(sensor));
}

TEST(SensorWait, TriesOnTheBackOffUntilTheInstrumentAnswers) {
    FakeSensor sensor(L"h");
    ASSERT_TRUE(sensor.GoOnline());
    sensor.DropLink(); // on line in name only, as after a reset
    sensor.allowOpen = false;

    SensorWait shortWait;
    shortWait.maxWaitMs = 1900; // the first step is 0.8-1.2 s, the second at least 1.6 s more
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(shortWait.UntilOnline(sensor));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(sensor.GetSensorState(), kSensorOffline) << "the dead link was closed first";
    // The first open, the close of the dead link, then exactly one attempt.
    EXPECT_EQ(sensor.connectCalls, 3);

    std::thread back([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        sensor.allowOpen = true;
    });
    EXPECT_TRUE(SensorWait{}.UntilOnline(sensor));
    back.join();
    EXPECT_TRUE(sensor.IsOnline(true));

    sensor.DropLink();
    sensor.allowOpen = false;
    SensorWait cancelled;
    cancelled.cancelled = [] { return true; };
    EXPECT_FALSE(cancelled.UntilOnline(sensor));
}

TEST(SensorObject, PollDeviceParsesStatusAndRaisesEvents) {
    OnlineSensor s;
    s.channel->answers[L"status"] = L"model=3\n"
                                    L"cartridge = 1\r\n"
                                    L"garbage line without equals\n"
                                    L"=no key\n"
                                    L"\n"
                                    L"totalPres=nan\n"
                                    L"process=\n"
                                    L"heater.2=1234";
    s.channel->answers[L"events"] =
        L"1048881 Box_backup.tgz\r\nnot a code\n6\n12x junk\n42 text with  spaces\n";
    s.sensor.OnTimer(0);

    EXPECT_EQ(s.channel->commands, (std::vector<std::wstring>{L"status", L"events"}));
    const IDevice::Snapshot expected = {
        {"model", "3"}, {"cartridge", "1"}, {"totalPres", "nan"}, {"process", ""}, {"heater.2", "1234"}};
    EXPECT_EQ(s.sensor.GetDevice(L"VEXA").GetSnapshot(), expected);
    const std::vector<ISensorEvent> events = s.observer.events();
    ASSERT_EQ(events.size(), 4u);
    EXPECT_EQ(events[1].code, 1048881u);
    EXPECT_EQ(events[1].text, L"Box_backup.tgz");
    EXPECT_EQ(events[2].code, 6u);
    EXPECT_EQ(events[2].text, L"");
    EXPECT_EQ(events[3].code, 42u);
    EXPECT_EQ(events[3].text, L"text with  spaces");
    EXPECT_TRUE(s.sensor.IsOnline(true));
}

TEST(SensorObject, FailingChannelTakesSensorOffline) {
    for (const wchar_t* failing : {L"status", L"events"}) {
        OnlineSensor s;
        s.channel->answers[L"status"] = L"model=1";
        s.channel->answers[L"events"] = L"";
        s.channel->answers.erase(failing);
        s.sensor.OnTimer(0);
        EXPECT_EQ(s.sensor.GetSensorState(), kSensorOffline) << failing;
        EXPECT_EQ(s.observer.codes().back(), kSensorEventOffline) << failing;
        EXPECT_FALSE(s.sensor.GetDevice(L"VEXA").HasSnapshot()) << failing;
        EXPECT_EQ(s.channel->closes, 1) << failing;

        // Off line, the timer asks nothing.
        const size_t asked = s.channel->commands.size();
        s.sensor.OnTimer(0);
        EXPECT_EQ(s.channel->commands.size(), asked);
    }
}

TEST(SensorObject, BusyChannelAndReenteredTimerKeepSensorOnline) {
    OnlineSensor s;
    s.channel->failure = 10035; // the channel is busy with another exchange
    s.sensor.OnTimer(0);
    EXPECT_TRUE(s.sensor.IsOnline(true));

    // A timer dispatched from the poll's own pumping wait does not start a second exchange.
    s.channel->answers[L"status"] = L"model=1";
    s.channel->answers[L"events"] = L"";
    s.channel->commands.clear();
    s.channel->duringCommand = [&] { s.sensor.OnTimer(0); };
    s.sensor.OnTimer(0);
    EXPECT_EQ(s.channel->commands, (std::vector<std::wstring>{L"status", L"events"}));
    EXPECT_TRUE(s.sensor.IsOnline(true));
}

// A first mask selects exactly what it names; an observer that set none keeps everything.
TEST(SensorObserver, FirstMaskSelectsAndOthersKeepTheirOwn) {
    RecordingObserver dialog;
    dialog.SetSensorMask(kEventMaskReserved | kEventMaskBackup | kEventMaskState, 1);
    dialog.SetAllDeviceMasks(kEventMaskReserved | kEventMaskBackup, 1);
    RecordingObserver everything;
    RecordingObserver allButMethods;
    allButMethods.SetAllDeviceMasks(kEventMaskProcessEnded, 0);
    struct Case {
        uint32_t code;
        bool dialog;
        bool allButMethods;
    };
    for (const Case& c : {Case{kSensorEventOffline, true, true}, Case{kSensorEventOnline, true, true},
                          Case{kSensorEventBackup, true, true}, Case{kSensorEventMethodEnded, false, false},
                          Case{0x100200, false, true}, Case{0x1234, false, true}}) {
        EXPECT_EQ(dialog.Accepts(c.code), c.dialog) << std::hex << c.code;
        EXPECT_TRUE(everything.Accepts(c.code)) << std::hex << c.code;
        EXPECT_EQ(allButMethods.Accepts(c.code), c.allButMethods) << std::hex << c.code;
    }
}

TEST(SensorObserver, MasksFilterNotifications) {
    FakeSensor sensor(L"h");
    RecordingObserver observer;
    observer.SetSensor(&sensor);
    sensor.RaiseEvent(kSensorEventBackup, L"a");
    observer.SetAllDeviceMasks(0xFFFFFFFF, 0);
    sensor.RaiseEvent(kSensorEventBackup, L"b");  // device notification: filtered
    sensor.RaiseEvent(kSensorEventOffline, L"c"); // state change: always passes
    sensor.RaiseEvent(0x1234, L"d");              // sensor notification: passes the sensor mask
    observer.SetSensorMask(0xFFFFFFFF, 0);
    sensor.RaiseEvent(0x1234, L"e");
    observer.SetAllDeviceMasks(0xFFFFFFFF, 1);
    sensor.RaiseEvent(kSensorEventBackup, L"f");
    std::wstring texts;
    for (const auto& e : observer.events())
        texts += e.text;
    EXPECT_EQ(texts, L"acdf");

    // Detaching and destruction of either side in any order.
    observer.SetSensor(nullptr);
    sensor.RaiseEvent(2, L"g");
    EXPECT_EQ(observer.events().size(), 4u);
    auto* other = new FakeSensor(L"x");
    RecordingObserver late;
    late.SetSensor(other);
    other->DecRef(); // the sensor goes first: the observer is detached
    EXPECT_EQ(late.GetSensor(), nullptr);
}

TEST(SensorObject, ParametersMruAndFolders) {
    FakeSensor sensor(L"Unit 7");
    uint32_t value = 0xDEADBEEF;
    EXPECT_FALSE(sensor.GetParam(5, &value, 4, 0));
    const uint32_t stored = 0x01020304;
    EXPECT_TRUE(sensor.SetParam(5, &stored, 4, 0));
    EXPECT_TRUE(sensor.GetParam(5, &value, 4, 0));
    EXPECT_EQ(value, stored);
    EXPECT_FALSE(sensor.GetParam(5, &value, 4, 1)); // another index
    uint64_t wide = ~0ull;
    EXPECT_TRUE(sensor.GetParam(5, &wide, 8, 0)); // a longer read is padded with zeros
    EXPECT_EQ(wide, uint64_t{stored});
    EXPECT_FALSE(sensor.SetParam(5, nullptr, 4, 0));

    for (const wchar_t* recipe : {L"/m/a.mth", L"/m/b.mth", L"/m/A.MTH"})
        sensor.SaveMRURecipe(recipe);
    EXPECT_EQ(sensor.GetMRURecipe(true), (std::vector<std::wstring>{L"/m/A.MTH", L"/m/b.mth"}));
    EXPECT_EQ(sensor.GetMRURecipe(false), (std::vector<std::wstring>{L"A.MTH", L"b.mth"}));
    sensor.RemoveMRURecipe(0);
    sensor.RemoveMRURecipe(7);
    EXPECT_EQ(sensor.GetMRURecipe(true), (std::vector<std::wstring>{L"/m/b.mth"}));

    TempDir dir;
    setenv("VEXA_DATA_ROOT", dir.path().c_str(), 1);
    const std::wstring root = PXGetRootDir();
    EXPECT_EQ(sensor.GetSensorDir(L"", false), root + L"/Unit 7");
    EXPECT_FALSE(IsDirectory(root + L"/Unit 7"));
    EXPECT_EQ(sensor.GetSensorDir(L"Reports/Tune", true), root + L"/Unit 7/Reports/Tune");
    EXPECT_TRUE(IsDirectory(root + L"/Unit 7/Reports/Tune"));
    unsetenv("VEXA_DATA_ROOT");
}
