// SPDX-License-Identifier: Apache-2.0
// The instrument model, the status panel and notifications against the real simulator.
#include "pumpwait.h"
#include "recordingobserver.h"
#include "sensorref.h"
#include "simulatedinstrument.h"
#include "stringtable.h"
#include "tempdir.h"
#include "vexadevice.h"
#include "vexasensorinfo.h"
#include "vexasensorobject.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

// A simulator with a fixed profile and a sensor object made by the VEXA sensor type, on line.
class SimulatedSensor : public ::testing::Test {
protected:
    void Start(const std::string& profile, std::vector<std::string> simArgs = {}) {
        RegisterVexaStrings();
        m_info.Initialize(nullptr);
        simArgs.push_back("--profile");
        simArgs.push_back(m_dir.createFile("profile.json", profile));
        m_instrument.start(simArgs);
        m_sensor = SensorRef<VEXASensorObject>::AdoptIf(
            m_info.CreateSensorObject(nullptr, ISensorAddress(m_instrument.host())));
        ASSERT_TRUE(m_sensor);
        ASSERT_TRUE(m_sensor->GoOnline()) << m_sensor->GetLastLinkError();
        ASSERT_TRUE(m_sensor->GetChannel() && m_sensor->GetChannel()->IsOpen());
    }
    void TearDown() override {
        if (m_sensor)
            m_sensor->Disconnect(0);
    }
    // Polls (bounded) until `done` holds.
    template <typename Condition> bool PollUntil(Condition done, uint32_t limitMs) {
        const uint32_t start = TickCount();
        for (;;) {
            m_sensor->OnTimer(0);
            if (done())
                return true;
            if (TickCount() - start > limitMs)
                return false;
            PumpWait(100);
        }
    }

    TempDir m_dir; // the profile, outside the instrument's tree
    SimulatedInstrument m_instrument;
    VEXASensorInfo m_info;
    SensorRef<VEXASensorObject> m_sensor;
};

TEST_F(SimulatedSensor, SnapshotFromTheSimulatorsStatusAnswer) {
    Start(R"({"drift": false, "model": 2, "cartridge": 0, "injectionPort": 1, "accessory": 7,
              "heaters": {"1": 1234, "2": -5}, "accessoryHeaters": {"26": 1197, "29": 1003},
              "carrierControlPres": 139, "totalPres": "nan", "omitKeys": ["neg"],
              "methodMRU": ["/Method/a.mth", "/Method/Sub/b.mth"]})");
    EXPECT_FALSE(m_sensor->GetDevice(L"VEXA").HasSnapshot());
    m_sensor->OnTimer(0);
    ASSERT_TRUE(m_sensor->GetDevice(L"VEXA").HasSnapshot());

    VexaDevice device(m_sensor->GetDevice(L"VEXA"));
    bool available = false;
    EXPECT_EQ(device.getModel(&available), 2);
    EXPECT_TRUE(available);
    EXPECT_TRUE(device.getInjectionPort());
    EXPECT_FALSE(device.getCartridge());
    EXPECT_EQ(device.getAccessory(), 7);
    EXPECT_EQ(device.getHeaterTemp(1).tenths, 1234);
    EXPECT_EQ(device.getHeaterTemp(2).tenths, -5);
    EXPECT_EQ(device.getAccessoryHeaterTemp(26).tenths, 1197);
    EXPECT_EQ(device.getAccessoryHeaterTemp(29).tenths, 1003);
    EXPECT_EQ(device.getCarrierVSOControlPres(), 139);
    EXPECT_TRUE(std::isnan(device.getTotalPres(&available)));
    EXPECT_TRUE(available);
    device.getNEG(&available);
    EXPECT_FALSE(available);
    EXPECT_EQ(device.getActiveProcess(&available), L"");
    EXPECT_TRUE(available);

    const std::vector<std::wstring> names = {L"a.mth", L"b.mth"};
    EXPECT_EQ(m_sensor->GetInstrumentMethodMRU(false), names);
    const std::wstring host = m_sensor->GetSensorAddress().GetHostname();
    const std::vector<std::wstring> full = {L"@" + host + L":/Method/a.mth",
                                            L"@" + host + L":/Method/Sub/b.mth"};
    EXPECT_EQ(m_sensor->GetInstrumentMethodMRU(true), full);
}

TEST_F(SimulatedSensor, ParametersAndReadiness) {
    Start(R"({"parameters": {"5:0": "00000000", "40:1": "c0ffee"}})");
    EXPECT_FALSE(m_sensor->IsInstrumentReady());
    uint8_t value[3] = {};
    ASSERT_TRUE(m_sensor->GetParam(40, value, 3, 1));
    EXPECT_EQ(value[0], 0xC0);
    EXPECT_EQ(value[2], 0xEE);
    const uint8_t ready[4] = {1, 0, 0, 0};
    ASSERT_TRUE(m_sensor->SetParam(5, ready, 4, 0));
    EXPECT_TRUE(m_sensor->IsInstrumentReady());
}

TEST_F(SimulatedSensor, MethodRunsAndItsEndReachesAnObserver) {
    Start(R"({"methodSeconds": 0.5})");
    RecordingObserver observer;
    observer.SetSensor(m_sensor.get());
    m_sensor->OnTimer(0);

    VexaDevice device(m_sensor->GetDevice(L"VEXA"));
    ASSERT_TRUE(device.runMethod(L"\"/Data/run1.vxs\" -speed=2")) << device.getLastError();
    EXPECT_FALSE(device.runMethod(L"\"/Data/run2.vxs\"")); // one at a time
    EXPECT_NE(device.getLastError(), 0);
    EXPECT_FALSE(device.getLastErrorText().empty());

    m_sensor->OnTimer(0);
    EXPECT_EQ(VexaDevice(m_sensor->GetDevice(L"VEXA")).getActiveProcess(), L"\"/Data/run1.vxs\" -speed=2");

    std::wstring text;
    ASSERT_TRUE(PollUntil([&] { return observer.has(1048882, &text); }, 10000));
    EXPECT_EQ(text, L"method finished");
    EXPECT_EQ(VexaDevice(m_sensor->GetDevice(L"VEXA")).getActiveProcess(), L"");

    EXPECT_TRUE(device.setManualTuneFile(3, L"/Tune/manual.tun"));
    observer.SetSensor(nullptr);
}

TEST_F(SimulatedSensor, LostInstrumentTakesTheSensorOffLine) {
    Start("{}");
    RecordingObserver observer;
    observer.SetSensor(m_sensor.get());
    m_sensor->OnTimer(0);
    ASSERT_TRUE(m_sensor->GetDevice(L"VEXA").HasSnapshot());
    m_instrument.stop();
    ASSERT_TRUE(PollUntil([&] { return !m_sensor->IsOnline(false); }, 15000));
    EXPECT_TRUE(observer.has(kSensorEventOffline));
    EXPECT_FALSE(m_sensor->GetDevice(L"VEXA").HasSnapshot());
    EXPECT_EQ(m_sensor->GetStatusValue(0, 0), L"Not Available");
    observer.SetSensor(nullptr);
}

TEST_F(SimulatedSensor, GoingOffLineDoesNotWaitForAPollOnASlowInstrument) {
    // The answer comes 2.5 s late: the poll holds the command connection all that time.
    Start("{}", {"--reply-delay", "2500"});
    RecordingObserver observer;
    observer.SetSensor(m_sensor.get());
    const auto pollStart = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point pollEnd;
    std::thread poll([&] {
        m_sensor->OnTimer(0);
        pollEnd = std::chrono::steady_clock::now();
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(300));

    const auto offlineStart = std::chrono::steady_clock::now();
    m_sensor->Disconnect(0);
    const auto offlineTime = std::chrono::steady_clock::now() - offlineStart;
    poll.join();
    EXPECT_LT(offlineTime, std::chrono::milliseconds(1000)) << "going off line waited for the poll";
    EXPECT_LT(pollEnd - pollStart, std::chrono::milliseconds(1500)) << "the poll was not cut short";
    EXPECT_FALSE(m_sensor->IsOnline(false));
    EXPECT_FALSE(m_sensor->GetDevice(L"VEXA").HasSnapshot());
    // One off-line event, the operator's, without a reason the cut-short poll would have added.
    const std::vector<uint32_t> codes = observer.codes();
    EXPECT_EQ(std::count(codes.begin(), codes.end(), kSensorEventOffline), 1);
    std::wstring reason;
    ASSERT_TRUE(observer.has(kSensorEventOffline, &reason));
    EXPECT_EQ(reason, L"");

    // The instrument is still there: back on line, the next poll answers (late, as set).
    ASSERT_TRUE(m_sensor->GoOnline());
    m_sensor->OnTimer(0);
    EXPECT_TRUE(m_sensor->GetDevice(L"VEXA").HasSnapshot());
    observer.SetSensor(nullptr);
}

} // namespace
