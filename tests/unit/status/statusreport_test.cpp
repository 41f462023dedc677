// SPDX-License-Identifier: Apache-2.0
// The status panel's texts, line by line, over a set snapshot of the instrument model.
#include "pxformat.h"
#include "statusreport.h"
#include "stringtable.h"
#include "vexadevice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <utility>
#include <vector>

namespace {

const char kRemove[] = "<remove>";

// A healthy instrument without sample input device.
IDevice::Snapshot BaseSnapshot() {
    return {
        {"model", "1"},
        {"cartridge", "0"},
        {"injectionPort", "0"},
        {"accessory", "0"},
        {"concentrator", "1"},
        {"neg", "1"},
        {"heater.1", "1503"},
        {"heater.2", "1202"},
        {"heater.3", "17"},
        {"heater.4", "797"},
        {"heater.5", "2998"},
        {"heater.6", "1451"},
        {"heater.7", "1463"},
        {"heater.8", "1802"},
        {"heater.9", "1470"},
        {"heater.11", "1997"},
        {"heater.12", "2199"},
        {"accessoryHeater.26", "1197"},
        {"accessoryHeater.29", "1003"},
        {"isSupplyPres", "549"},
        {"carrierSupplyPres", "519"},
        {"carrierControlPres", "139"},
        {"totalPres", "0.00252"},
    };
}

using Overrides = std::vector<std::pair<std::string, std::string>>;

VexaDevice MakeDevice(const Overrides& overrides) {
    IDevice::Snapshot values = BaseSnapshot();
    for (const auto& [key, value] : overrides) {
        if (value == kRemove)
            values.erase(key);
        else
            values[key] = value;
    }
    VexaDevice device;
    device.SetSnapshot(values);
    return device;
}

struct LineRow {
    const char* name;
    Overrides overrides;
    int section;
    int line;
    std::wstring label;
    std::wstring value;
};

class StatusReportTest : public ::testing::Test {
protected:
    void SetUp() override { RegisterVexaStrings(); }
};

TEST_F(StatusReportTest, LabelsAndValues) {
    const std::vector<LineRow> rows = {
        // Pressures.
        {"is supply", {}, 0, 0, L"IS Supply (kPa):", L"549"},
        {"carrier supply", {}, 0, 1, L"Carrier Supply (kPa):", L"519"},
        {"column pressure", {}, 0, 2, L"GC Col. Pressure (kPa):", L"139"},
        {"reservoir repeats the column pressure",
         {{"carrierSupplyPres", "400"}},
         0,
         3,
         L"Reservoir Pressure (kPa):",
         L"139"},
        {"model 2 blanks the reservoir label", {{"model", "2"}}, 0, 3, L"", L"139"},
        {"model 5 blanks the reservoir label", {{"model", "5"}}, 0, 3, L"", L"139"},
        {"model 3 keeps the reservoir label", {{"model", "3"}}, 0, 3, L"Reservoir Pressure (kPa):", L"139"},
        {"negative kPa", {{"isSupplyPres", "-12"}}, 0, 0, L"IS Supply (kPa):", L"-12"},
        {"total 0.0", {{"totalPres", "0.0"}}, 0, 4, L"Total MS Pressure (Pa):", L"Below Gauge Range"},
        {"total -0", {{"totalPres", "-0"}}, 0, 4, L"Total MS Pressure (Pa):", L"Below Gauge Range"},
        {"total -1.0", {{"totalPres", "-1.0"}}, 0, 4, L"Total MS Pressure (Pa):", L"Not On"},
        {"total -inf", {{"totalPres", "-inf"}}, 0, 4, L"Total MS Pressure (Pa):", L"Not On"},
        {"total 1e30", {{"totalPres", "1e30"}}, 0, 4, L"Total MS Pressure (Pa):", L"Above Gauge Range"},
        {"total inf", {{"totalPres", "inf"}}, 0, 4, L"Total MS Pressure (Pa):", L"Above Gauge Range"},
        {"total just below 1e30", {{"totalPres", "9.99e29"}}, 0, 4, L"Total MS Pressure (Pa):", L"9.99e+29"},
        {"total 2.5e-3", {{"totalPres", "2.5e-3"}}, 0, 4, L"Total MS Pressure (Pa):", L"2.50e-03"},
        {"total missing", {{"totalPres", kRemove}}, 0, 4, L"Total MS Pressure (Pa):", L"Not Available"},
        {"total malformed", {{"totalPres", "low"}}, 0, 4, L"Total MS Pressure (Pa):", L"Not Available"},
        {"pressure missing", {{"isSupplyPres", kRemove}}, 0, 0, L"IS Supply (kPa):", L"Not Available"},
        {"pressure line 5", {}, 0, 5, L"", L""},
        {"pressure line -1", {}, 0, -1, L"", L""},
        // Temperatures.
        {"column", {}, 1, 0, L"Column:", L"150.3"},
        {"heater 1234 tenths", {{"heater.1", "1234"}}, 1, 0, L"Column:", L"123.4"},
        {"heater -5 tenths", {{"heater.2", "-5"}}, 1, 1, L"Membrane:", L"-0.5"},
        {"line 2 has no label", {}, 1, 2, L"", L"1.7"},
        {"IS inject", {}, 1, 3, L"IS Inject:", L"79.7"},
        {"NEG installed", {}, 1, 4, L"NEG:", L"299.8"},
        {"NEG not installed", {{"neg", "0"}}, 1, 4, L"NEG:", L"Not Installed"},
        {"NEG flag missing", {{"neg", kRemove}}, 1, 4, L"NEG:", L"Not Available"},
        {"column bypass", {}, 1, 8, L"Column Bypass:", L"147.0"},
        {"line 9 is heater 11", {}, 1, 9, L"Anode:", L"199.7"},
        {"line 10 is heater 12", {}, 1, 10, L"MS Transfer:", L"219.9"},
        {"heater missing", {{"heater.6", kRemove}}, 1, 5, L"Column In:", L"Not Available"},
        {"heater malformed", {{"heater.7", "12.5"}}, 1, 6, L"Column Out:", L"Not Available"},
        {"temperature line 11", {}, 1, 11, L"", L""},
        // Sample input device.
        {"nothing fitted", {}, 2, 0, L"Type:", L"Not Installed"},
        {"nothing fitted, line 1", {}, 2, 1, L"", L""},
        {"tenax cartridge", {{"cartridge", "1"}}, 2, 0, L"Type:", L"Tenax Cartridge installed"},
        {"carbon cartridge",
         {{"cartridge", "1"}, {"concentrator", "2"}},
         2,
         0,
         L"Type:",
         L"Carbon Cartridge installed"},
        {"loop cartridge",
         {{"cartridge", "1"}, {"concentrator", "3"}},
         2,
         0,
         L"Type:",
         L"Loop Cartridge installed"},
        {"unknown concentrator", {{"cartridge", "1"}, {"concentrator", "4"}}, 2, 0, L"Type:", L""},
        {"injection port", {{"injectionPort", "1"}}, 2, 0, L"Type:", L"Injection Port"},
        {"line heater label over the volume heater's value",
         {{"injectionPort", "1"}},
         2,
         1,
         L"InjectionLineHeater: (C)",
         L"119.7"},
        {"volume heater label over the line heater's value",
         {{"injectionPort", "1"}},
         2,
         2,
         L"InjectionVolumeHeater: (C)",
         L"100.3"},
        {"injection port wins the value over a cartridge",
         {{"injectionPort", "1"}, {"cartridge", "1"}},
         2,
         0,
         L"Type:",
         L"Injection Port"},
        {"injection port line 3", {{"injectionPort", "1"}}, 2, 3, L"", L""},
        {"injection port flag missing", {{"injectionPort", kRemove}}, 2, 0, L"Type:", L"Not Available"},
        // Beyond the sections.
        {"section 3", {}, 3, 0, L"", L""},
        {"section -1", {}, -1, 0, L"", L""},
    };
    for (const LineRow& row : rows) {
        SCOPED_TRACE(row.name);
        VexaDevice device = MakeDevice(row.overrides);
        VexaStatusReport report(device);
        EXPECT_EQ(report.Label(row.section, row.line), row.label);
        EXPECT_EQ(report.Value(row.section, row.line), row.value);
    }
}

TEST_F(StatusReportTest, NaNPassesTheRangeTestsAndIsFormatted) {
    VexaDevice device = MakeDevice({{"totalPres", "nan"}});
    const std::wstring value = VexaStatusReport(device).Value(0, 4);
    EXPECT_EQ(value, PXFormat(L"%.02e", std::nan("")));
    EXPECT_NE(value.find(L"nan"), std::wstring::npos);
}

TEST_F(StatusReportTest, SectionsAndLineCounts) {
    struct CountRow {
        const char* name;
        Overrides overrides;
        int section;
        int count;
    };
    const std::vector<CountRow> rows = {
        {"pressures", {}, 0, 5},
        {"temperatures", {}, 1, 11},
        {"nothing fitted", {}, 2, 1},
        {"cartridge", {{"cartridge", "1"}}, 2, 1},
        {"injection port", {{"injectionPort", "1"}}, 2, 3},
        {"both: the cartridge is tested first", {{"cartridge", "1"}, {"injectionPort", "1"}}, 2, 1},
        {"flags unknown", {{"cartridge", kRemove}, {"injectionPort", kRemove}}, 2, 1},
        {"section 3", {}, 3, 0},
        {"section -1", {}, -1, 0},
    };
    for (const CountRow& row : rows) {
        SCOPED_TRACE(row.name);
        VexaDevice device = MakeDevice(row.overrides);
        EXPECT_EQ(VexaStatusReport(device).LineCount(row.section), row.count);
    }
    EXPECT_EQ(VexaStatusReport::SectionCount(), 3);
    EXPECT_EQ(VexaStatusReport::SectionTitle(0), L"Current Pressures");
    EXPECT_EQ(VexaStatusReport::SectionTitle(1), L"Current Temperatures (C)");
    EXPECT_EQ(VexaStatusReport::SectionTitle(2), L"Sample Input Device");
    EXPECT_EQ(VexaStatusReport::SectionTitle(3), L"");
    EXPECT_EQ(VexaStatusReport::SectionTitle(-1), L"");
}

TEST_F(StatusReportTest, NoSnapshotShowsNothingAsZero) {
    VexaDevice device; // the sensor has not reported yet
    VexaStatusReport report(device);
    for (int line = 0; line < 5; ++line)
        EXPECT_EQ(report.Value(0, line), L"Not Available") << line;
    EXPECT_EQ(report.Value(1, 0), L"Not Available");
    EXPECT_EQ(report.Value(2, 0), L"Not Available");
    EXPECT_EQ(report.Label(0, 3), L"Reservoir Pressure (kPa):");
}

TEST(HeaterNameTest, Names) {
    struct Row {
        int id;
        int accessory;
        const wchar_t* name;
    };
    const Row rows[] = {
        {1, 0, L"Column"},
        {3, 0, L"UNUSED"},
        {10, 0, L"Concentrator"},
        {16, 0, L"WPOven"},
        {22, 0, L"SLOVEN"},
        {25, 7, L"AccessoryHeaterOne"},
        {26, 7, L"InjectionVolumeHeater"},
        {26, 6, L"AccessoryHeaterTwo"},
        {29, 7, L"InjectionLineHeater"},
        {29, 0, L"AccessoryHeaterFive"},
        {32, 7, L"AccessoryHeaterEight"},
        {0, 0, nullptr},
        {33, 0, nullptr},
        {-1, 7, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.id);
        const wchar_t* name = VexaStatusReport::HeaterName(row.id, row.accessory);
        if (row.name == nullptr)
            EXPECT_EQ(name, nullptr);
        else
            EXPECT_STREQ(name, row.name);
    }
}

} // namespace
