// SPDX-License-Identifier: Apache-2.0
// What the sensor object answers from its instrument model: readiness, the method list and the
// status panel.
#include "instrumentmethodmru.h"
#include "statusfakes.h"
#include "stringtable.h"
#include "vexasensorobject.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace {

TEST(InstrumentReadyTest, ReadsParameterFiveThroughTheChannel) {
    struct Row {
        const char* name;
        bool channel;
        bool refused;
        std::vector<uint8_t> bytes;
        bool ready;
    };
    const std::vector<Row> rows = {
        {"no communication sensor", false, false, {}, true},
        {"read refused", true, true, {}, true},
        {"zero", true, false, {0, 0, 0, 0}, false},
        {"non-zero low byte", true, false, {1, 0, 0, 0}, true},
        {"non-zero high byte", true, false, {0, 0, 0, 0x80}, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        VEXASensorObject sensor(nullptr, ISensorAddress(L"127.0.0.9"));
        FakeChannel* fake = nullptr;
        if (row.channel) {
            auto channel = std::make_unique<FakeChannel>();
            fake = channel.get();
            fake->readRefused = row.refused;
            fake->readBytes = row.bytes;
            sensor.SetCommSensor(std::move(channel));
        }
        EXPECT_EQ(sensor.IsInstrumentReady(), row.ready);
        if (fake) {
            EXPECT_EQ(fake->readIds, std::vector<uint32_t>{5});
        }
    }
}

TEST(InstrumentMethodMRUTest, OffLineAsksNothing) {
    OfflineCapableSensor sensor(L"10.0.0.5");
    sensor.GetDevice(L"VEXA").SetSnapshot({{"methodMRU.0", "/Method/a.mth"}});
    sensor.deviceLookups = 0;
    EXPECT_TRUE(InstrumentMethodMRU(sensor, false).empty());
    EXPECT_TRUE(InstrumentMethodMRU(sensor, true).empty());
    EXPECT_EQ(sensor.deviceLookups, 0);

    VEXASensorObject vexa(nullptr, ISensorAddress(L"10.0.0.5"));
    EXPECT_TRUE(vexa.GetInstrumentMethodMRU(true).empty());
}

TEST(InstrumentMethodMRUTest, NamesUpToTheFirstGap) {
    OfflineCapableSensor sensor(L"10.0.0.5");
    sensor.SetCommSensor(std::make_unique<FakeChannel>());
    ASSERT_TRUE(sensor.GoOnline());
    sensor.GetDevice(L"VEXA").SetSnapshot({{"methodMRU.0", "/Method/a.mth"},
                                           {"methodMRU.1", "/data\\Vexa/Sub/b.mth"},
                                           {"methodMRU.2", "/Tune/c.mth"},
                                           {"methodMRU.4", "/Method/after-gap.mth"}});
    const std::vector<std::wstring> plain = {L"a.mth", L"b.mth", L"c.mth"};
    EXPECT_EQ(InstrumentMethodMRU(sensor, false), plain);
    const std::vector<std::wstring> full = {L"@10.0.0.5:/Method/a.mth", L"@10.0.0.5:/data/Sub/b.mth",
                                            L"@10.0.0.5:/Tune/c.mth"};
    EXPECT_EQ(InstrumentMethodMRU(sensor, true), full);
}

TEST(SensorStatusTest, PanelComesFromTheVexaDevice) {
    RegisterVexaStrings();
    VEXASensorObject sensor(nullptr, ISensorAddress(L"127.0.0.9"));
    sensor.GetDevice(L"VEXA").SetSnapshot({{"model", "2"},
                                           {"carrierControlPres", "139"},
                                           {"injectionPort", "1"},
                                           {"accessoryHeater.26", "1197"}});
    EXPECT_EQ(sensor.GetStatusSectionCount(), 3);
    EXPECT_EQ(sensor.GetStatusSectionTitle(2), L"Sample Input Device");
    EXPECT_EQ(sensor.GetStatusLineCount(2), 3);
    EXPECT_EQ(sensor.GetStatusLabel(0, 3), L"");
    EXPECT_EQ(sensor.GetStatusValue(0, 3), L"139");
    EXPECT_EQ(sensor.GetStatusLabel(2, 1), L"InjectionLineHeater: (C)");
    EXPECT_EQ(sensor.GetStatusValue(2, 1), L"119.7");
    EXPECT_EQ(sensor.GetStatusValue(0, 0), L"Not Available");
}

} // namespace
