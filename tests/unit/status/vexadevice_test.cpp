// SPDX-License-Identifier: Apache-2.0
// The instrument model read from the status snapshot, and its commands through channel 0.
#include "statusfakes.h"
#include "vexadevice.h"
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

VexaDevice DeviceWith(const IDevice::Snapshot& values) {
    VexaDevice device;
    device.SetSnapshot(values);
    return device;
}

TEST(VexaDeviceTest, IntegerReadings) {
    struct Row {
        const char* text; // null: key missing
        bool available;
        int value;
    };
    const Row rows[] = {
        {"139", true, 139},
        {" 139\r", true, 139},
        {"+7", true, 7},
        {"-5", true, -5},
        {"2147483647", true, 2147483647},
        {"-2147483648", true, -2147483647 - 1},
        {"2147483648", false, 0},
        {"", false, 0},
        {"12kPa", false, 0},
        {"1.5", false, 0},
        {"0x10", false, 0},
        {"- 3", false, 0},
        {nullptr, false, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text ? row.text : "(missing)");
        IDevice::Snapshot values;
        if (row.text)
            values["carrierControlPres"] = row.text;
        VexaDevice device = DeviceWith(values);
        bool available = !row.available;
        EXPECT_EQ(device.getCarrierVSOControlPres(&available), row.value);
        EXPECT_EQ(available, row.available);
        EXPECT_EQ(device.getCarrierVSOControlPres(), row.value); // without asking for availability
    }
}

TEST(VexaDeviceTest, TotalPressureForms) {
    struct Row {
        const char* text;
        bool available;
        double value; // checked unless NaN is expected
        bool nan;
    };
    const Row rows[] = {
        {"0.0025", true, 0.0025, false}, {"2.5e-3", true, 0.0025, false},
        {"1e+30", true, 1e30, false},    {"-1", true, -1.0, false},
        {"0", true, 0.0, false},         {"inf", true, INFINITY, false},
        {"nan", true, 0, true},          {"NaN", true, 0, true},
        {"0x1p-2", true, 0.25, false},   {"", false, 0, true},
        {"1,5", false, 0, true},         {"2.5e-3 Pa", false, 0, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        VexaDevice device = DeviceWith({{"totalPres", row.text}});
        bool available = !row.available;
        double value = device.getTotalPres(&available);
        EXPECT_EQ(available, row.available);
        if (row.nan)
            EXPECT_TRUE(std::isnan(value));
        else
            EXPECT_EQ(value, row.value);
    }
}

// A program that switched to a locale with a decimal comma must still read "0.0025".
TEST(VexaDeviceTest, TotalPressureIgnoresTheProgramLocale) {
    const char* previous = std::setlocale(LC_NUMERIC, nullptr);
    std::string saved = previous ? previous : "C";
    const char* commaLocales[] = {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "nl_NL.UTF-8"};
    bool switched = false;
    for (const char* name : commaLocales)
        switched = switched || std::setlocale(LC_NUMERIC, name) != nullptr;
    if (!switched)
        GTEST_SKIP() << "no locale with a decimal comma installed";
    VexaDevice device = DeviceWith({{"totalPres", "0.0025"}});
    bool available = false;
    double value = device.getTotalPres(&available);
    std::setlocale(LC_NUMERIC, saved.c_str());
    EXPECT_TRUE(available);
    EXPECT_EQ(value, 0.0025);
}

TEST(VexaDeviceTest, FlagsCodesAndHeaters) {
    VexaDevice device = DeviceWith({{"model", "5"},
                                    {"cartridge", "1"},
                                    {"injectionPort", "0"},
                                    {"accessory", "7"},
                                    {"concentrator", "2"},
                                    {"neg", "yes"},
                                    {"heater.3", "-5"},
                                    {"accessoryHeater.26", "1234"},
                                    {"isSupplyPres", "549"},
                                    {"carrierSupplyPres", "519"},
                                    {"ready", "1"},
                                    {"backupProgress", "42"},
                                    {"processElapsed", "12"},
                                    {"processTotal", "x"},
                                    {"process", "  Method/run.mth "}});
    bool available = false;
    EXPECT_EQ(device.getModel(&available), 5);
    EXPECT_TRUE(available);
    EXPECT_TRUE(device.getCartridge());
    EXPECT_FALSE(device.getInjectionPort(&available));
    EXPECT_TRUE(available);
    EXPECT_EQ(device.getAccessory(), 7);
    EXPECT_EQ(device.getConcentrator(), 2);
    EXPECT_FALSE(device.getNEG(&available)); // "yes" is not a flag
    EXPECT_FALSE(available);
    EXPECT_EQ(device.getHeaterTemp(3, &available).tenths, -5);
    EXPECT_TRUE(available);
    EXPECT_EQ(device.getHeaterTemp(26, &available).tenths, 0); // heater, not accessory heater
    EXPECT_FALSE(available);
    EXPECT_EQ(device.getAccessoryHeaterTemp(26, &available).tenths, 1234);
    EXPECT_TRUE(available);
    EXPECT_EQ(device.getISVSOSourcePres(), 549);
    EXPECT_EQ(device.getCarrierVSOSourcePres(), 519);
    EXPECT_TRUE(device.isReady());
    EXPECT_EQ(device.getBackupProgress(), 42);
    EXPECT_EQ(device.getActiveProcess(&available), L"Method/run.mth");
    EXPECT_TRUE(available);
    EXPECT_EQ(device.getProcessElapsed(&available), 12);
    EXPECT_TRUE(available);
    EXPECT_EQ(device.getProcessTotal(&available), 0);
    EXPECT_FALSE(available);
}

TEST(VexaDeviceTest, MethodListStopsAtTheFirstGap) {
    VexaDevice device = DeviceWith({{"methodMRU.0", "/Method/a.mth"},
                                    {"methodMRU.1", "/Method/b\xC3\xA9.mth"},
                                    {"methodMRU.3", "/Method/d.mth"}});
    EXPECT_EQ(device.getMethodMRU(0), L"/Method/a.mth");
    EXPECT_EQ(device.getMethodMRU(1), L"/Method/b\u00e9.mth");
    EXPECT_EQ(device.getMethodMRU(2), L"");
    EXPECT_EQ(device.getMethodMRU(-1), L"");
}

TEST(VexaDeviceTest, CopiesTheSensorsDevice) {
    OfflineCapableSensor sensor(L"127.0.0.9");
    sensor.GetDevice(L"VEXA").SetSnapshot({{"model", "2"}});
    VexaDevice device(sensor.GetDevice(L"VEXA"));
    EXPECT_EQ(device.getModel(), 2);
    EXPECT_EQ(device.GetSensor(), &sensor);
    sensor.GetDevice(L"VEXA").SetSnapshot({{"model", "3"}});
    EXPECT_EQ(device.getModel(), 2); // a copy, not a view
}

TEST(VexaDeviceTest, CommandsGoThroughChannelZero) {
    OfflineCapableSensor sensor(L"127.0.0.9");
    auto channel = std::make_unique<FakeChannel>();
    FakeChannel* fake = channel.get();
    sensor.SetCommSensor(std::move(channel));
    VexaDevice device(sensor.GetDevice(L"VEXA"));

    EXPECT_TRUE(device.runMethod(L"\"/Data/run1.vxs\" -speed=2"));
    EXPECT_TRUE(device.runBackup(L""));
    EXPECT_TRUE(device.runBackup(L"@h:/Method/a.mth @h:/Tune"));
    EXPECT_TRUE(device.setManualTuneFile(3, L"/Tune/manual.tun"));
    EXPECT_TRUE(device.runTune());
    EXPECT_TRUE(device.stopMethod());
    const std::vector<std::wstring> expected = {
        L"method run \"/Data/run1.vxs\" -speed=2", L"backup",   L"backup @h:/Method/a.mth @h:/Tune",
        L"tune manual 3 /Tune/manual.tun",         L"tune run", L"method stop"};
    EXPECT_EQ(fake->commands, expected);
    EXPECT_EQ(device.getLastError(), 0);
}

TEST(VexaDeviceTest, CommandFailures) {
    VexaDevice detached; // no sensor at all
    EXPECT_FALSE(detached.runBackup(L""));
    EXPECT_EQ(detached.getLastError(), kWsaNotConn);

    OfflineCapableSensor withoutChannel(L"127.0.0.9");
    VexaDevice noChannel(withoutChannel.GetDevice(L"VEXA"));
    EXPECT_FALSE(noChannel.runMethod(L"x"));
    EXPECT_EQ(noChannel.getLastError(), kWsaNotConn);

    OfflineCapableSensor sensor(L"127.0.0.9");
    sensor.SetCommSensor(
        std::make_unique<FakeChannel>([](const std::wstring&, std::wstring* answer, int* error) {
            *answer = L"a method is running";
            *error = 16;
            return false;
        }));
    VexaDevice device(sensor.GetDevice(L"VEXA"));
    EXPECT_FALSE(device.runBackup(L""));
    EXPECT_EQ(device.getLastError(), 16);
    EXPECT_EQ(device.getLastErrorText(), L"a method is running");
}

} // namespace
