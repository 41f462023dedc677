// SPDX-License-Identifier: Apache-2.0
// Data files read and written, damaged files refused with their reasons, and the run model's views
// against values worked out by hand on a three-scan run.
#include "compression.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>

namespace {

// t=0: 40:10 41:20 43:30 | t=500: 40:5 43:15 44:25 | t=1000: 41:7 43.2:9
VexaRun TinyRun() {
    VexaRun run;
    run.SetStartTime(1700000000);
    run.SetSampleName("tiny");
    run.AddScan(0, std::vector<float>{40, 41, 43}, std::vector<float>{10, 20, 30});
    run.AddScan(500, std::vector<float>{40, 43, 44}, std::vector<float>{5, 15, 25});
    run.AddScan(1000, std::vector<float>{41, 43.2f}, std::vector<float>{7, 9}, VexaRun::kSimScanFlag);
    run.SetParameters({{L"SENSOR", L"/Method/Default.mth"}, {L"MASSLOW", L"40"}, {L"MASSHIGH", L"44"}});
    return run;
}

void Put32(std::string* bytes, size_t at, uint32_t value) {
    std::memcpy(bytes->data() + at, &value, 4);
}

void PutFloat(std::string* bytes, size_t at, float value) {
    std::memcpy(bytes->data() + at, &value, 4);
}

// Offsets in TinyRun's file: scan table at 48 (16 bytes a scan), points at 96, parameters at 160.
constexpr size_t kEntry = VexaDataFile::kHeaderSize;
constexpr size_t kPoints = kEntry + 3 * VexaDataFile::kScanEntrySize;

void ExpectSpectrum(const VexaSpectrum& spectrum, const std::vector<float>& mz,
                    const std::vector<float>& intensity) {
    EXPECT_EQ(spectrum.mz, mz);
    ASSERT_EQ(spectrum.intensity.size(), intensity.size());
    for (size_t i = 0; i < intensity.size(); ++i)
        EXPECT_FLOAT_EQ(spectrum.intensity[i], intensity[i]) << "at m/z " << mz[i];
}

} // namespace

TEST(VexaDataFileTest, RoundTripsPlainAndCompressed) {
    const VexaRun tiny = TinyRun();
    const std::string bytes = VexaDataFile::MakeFile(tiny);
    ASSERT_EQ(bytes.substr(0, 8), std::string("VXS1\x02\x00\x00\x00", 8));
    for (const std::string& form : {bytes, CompressBytes(bytes)}) {
        VexaRun run;
        std::string reason;
        ASSERT_TRUE(VexaDataFile::ReadRun(form, &run, &reason)) << reason;
        EXPECT_EQ(VexaDataFile::MakeFile(run), bytes);
        EXPECT_EQ(run.SampleName(), "tiny");
        EXPECT_EQ(run.StartTime(), 1700000000u);
        EXPECT_EQ(run.ScanCount(), 3u);
        EXPECT_EQ(run.Tic(), (std::vector<float>{60, 45, 16}));
        EXPECT_EQ(run.Flags(2), VexaRun::kSimScanFlag);
        EXPECT_EQ(run.Parameter(L"SENSOR"), L"/Method/Default.mth");
        std::map<std::wstring, std::wstring> parameters;
        ASSERT_TRUE(VexaDataFile::ReadParameters(form, &parameters));
        EXPECT_EQ(parameters, tiny.Parameters());
    }
}

// Parameters that a line cannot hold as they are: the file still reads, and a second write of what was
// read is the first one, byte for byte.
TEST(VexaDataFileTest, ParametersThatALineCannotHoldReadBackAndStayPut) {
    VexaRun run = TinyRun();
    run.SetParameters(
        {{L"SAMPLE", L"two\nlines\r\n"}, {L"KEY=ODD", L"x"}, {L"", L"no key"}, {L"CR", L"a\rb\r\r"}});
    const std::string first = VexaDataFile::MakeFile(run);
    VexaRun again;
    std::string reason;
    ASSERT_TRUE(VexaDataFile::ReadRun(first, &again, &reason)) << reason;
    EXPECT_EQ(again.Parameter(L"SAMPLE"), L"two lines  ");
    EXPECT_EQ(again.Parameter(L"KEY ODD"), L"x");
    EXPECT_EQ(again.Parameter(L"CR"), L"a b  ");
    EXPECT_EQ(again.Parameters().size(), 3u);
    EXPECT_EQ(VexaDataFile::MakeFile(again), first);

    // Written elsewhere: carriage returns before a line's end are no part of its value.
    std::string bytes = VexaDataFile::MakeFile(TinyRun());
    const size_t block = bytes.find("PARM");
    ASSERT_NE(block, std::string::npos);
    bytes.resize(block);
    const std::string lines = "SENSOR=/Method/Default.mth\r\r\r";
    bytes += "PARM";
    for (int shift = 0; shift < 32; shift += 8)
        bytes += char((lines.size() >> shift) & 0xFF);
    bytes += lines;
    ASSERT_TRUE(VexaDataFile::ReadRun(bytes, &again, &reason)) << reason;
    EXPECT_EQ(again.Parameter(L"SENSOR"), L"/Method/Default.mth");
}

TEST(VexaDataFileTest, VersionOneKeepsCountAndParametersWithoutScans) {
    VexaRun old;
    old.SetVersion(1);
    old.SetOpaqueScanCount(7);
    old.SetParameters({{L"SENSOR", L"/Method/Old.mth"}});
    // 40 bytes of UTF-8: cut to at most 31 without splitting the 2-byte letters.
    old.SetSampleName("\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9"
                      "\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9\xC3\xA9");
    const std::string bytes = VexaDataFile::MakeFile(old);
    EXPECT_EQ(bytes.size(), 48 + 7 * 20 + 8 + std::string("SENSOR=/Method/Old.mth\n").size());
    VexaRun run;
    std::string reason;
    ASSERT_TRUE(VexaDataFile::ReadRun(bytes, &run, &reason)) << reason;
    EXPECT_FALSE(run.HasSpectra());
    EXPECT_EQ(run.ScanCount(), 7u);
    EXPECT_TRUE(run.Tic().empty());
    EXPECT_EQ(run.SampleName().size(), 30u);
    EXPECT_EQ(run.Parameter(L"SENSOR"), L"/Method/Old.mth");
}

TEST(VexaDataFileTest, DamagedFilesAreRefusedWithTheirReason) {
    const std::string good = VexaDataFile::MakeFile(TinyRun());
    const float nan = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        const char* name;
        std::function<void(std::string*)> damage;
        const char* reason; // a part of the reason
    };
    const Case cases[] = {
        {"header cut", [](std::string* b) { b->resize(40); }, "shorter than the 48-byte header"},
        {"no signature", [](std::string* b) { (*b)[3] = '2'; }, "not a data file"},
        {"version 3", [](std::string* b) { Put32(b, 4, 3); }, "version 3 is not supported"},
        {"scan count past the end", [](std::string* b) { Put32(b, 8, 0x10000000); }, "scans need"},
        {"points cut", [](std::string* b) { b->resize(130); }, "points need"},
        {"point count past the end", [](std::string* b) { Put32(b, kEntry + 32 + 4, 1000); }, "points need"},
        {"point count too large", [](std::string* b) { Put32(b, kEntry + 16 + 4, 70000); },
         "scan 2: 70000 points, more than 65536"},
        {"time backwards", [](std::string* b) { Put32(b, kEntry + 16, 2000); },
         "scan 3: retention time 1000 ms goes backwards"},
        {"NaN intensity", [nan](std::string* b) { PutFloat(b, kPoints + 4, nan); },
         "scan 1, point 1: intensity nan"},
        {"negative intensity", [](std::string* b) { PutFloat(b, kPoints + 8 + 4, -1); },
         "point 2: intensity -1"},
        {"m/z below 1", [](std::string* b) { PutFloat(b, kPoints, 0.5f); }, "m/z 0.5 is outside 1 to 2000"},
        {"m/z above 2000", [](std::string* b) { PutFloat(b, kPoints + 16, 2000.5f); }, "outside 1 to 2000"},
        {"m/z not ascending", [](std::string* b) { PutFloat(b, kPoints + 8, 39); }, "m/z 39 does not ascend"},
        {"TIC 0.2 % off", [](std::string* b) { PutFloat(b, kEntry + 8, 60.12f); },
         "scan 1: total intensity 60.12 differs"},
        {"garbage after the scans", [](std::string* b) { b->resize(163); }, "not a parameter block"},
        {"parameter block cut", [](std::string* b) { b->resize(b->size() - 3); }, "parameter block needs"},
        {"compressed stream cut", [](std::string* b) { *b = CompressBytes(*b).substr(0, 40); },
         "damaged or truncated"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::string bytes = good;
        c.damage(&bytes);
        VexaRun run;
        std::string reason;
        EXPECT_FALSE(VexaDataFile::ReadRun(bytes, &run, &reason));
        EXPECT_NE(reason.find(c.reason), std::string::npos) << reason;
        EXPECT_EQ(run.ScanCount(), 0u);
    }
    // 0.05 % off is float rounding, not damage.
    std::string close = good;
    PutFloat(&close, kEntry + 8, 60.03f);
    VexaRun run;
    std::string reason;
    EXPECT_TRUE(VexaDataFile::ReadRun(close, &run, &reason)) << reason;
}

TEST(VexaDataFileTest, CompressedExpansionIsBounded) {
    // A valid header followed by 4 MB of zeros: 4 KB of zlib that claims to be a huge file.
    std::string huge = VexaDataFile::MakeFile(VexaRun());
    huge.resize(4 * 1024 * 1024, '\0');
    const std::string bomb = CompressBytes(huge);
    ASSERT_LT(bomb.size(), 8192u);
    VexaRun run;
    std::string reason;
    EXPECT_FALSE(VexaDataFile::ReadRun(bomb, &run, &reason, 1024 * 1024));
    EXPECT_NE(reason.find("expands past 1048576 bytes"), std::string::npos) << reason;
    // Exactly at the bound is fine.
    const std::string exact = VexaDataFile::MakeFile(TinyRun());
    EXPECT_TRUE(VexaDataFile::ReadRun(CompressBytes(exact), &run, &reason, exact.size())) << reason;
    EXPECT_FALSE(VexaDataFile::ReadRun(CompressBytes(exact), &run, &reason, exact.size() - 1));
}

TEST(VexaRunTest, SumsAveragesAndSubtraction) {
    const VexaRun run = TinyRun();
    ExpectSpectrum(run.Sum(0, 1), {40, 41, 43, 44}, {15, 20, 45, 25});
    ExpectSpectrum(run.Average(0, 1), {40, 41, 43, 44}, {7.5f, 10, 22.5f, 12.5f});
    ExpectSpectrum(run.Sum(0, 2), {40, 41, 43, 43.2f, 44}, {15, 27, 45, 9, 25});
    ExpectSpectrum(run.Average(1, 9), {40, 41, 43, 43.2f, 44}, {2.5f, 3.5f, 7.5f, 4.5f, 12.5f});
    ExpectSpectrum(run.Spectrum(0).Minus(run.Spectrum(1)), {40, 41, 43}, {5, 20, 15});
    ExpectSpectrum(run.Spectrum(1).Minus(run.Spectrum(0)), {44}, {25}); // what falls to zero goes
    ExpectSpectrum(run.Average(0, 1).Minus(run.Spectrum(2)), {40, 41, 43, 44}, {7.5f, 3, 22.5f, 12.5f});
    EXPECT_EQ(run.Sum(0, 2).BasePeak(), 45);
    EXPECT_TRUE(run.Spectrum(3).empty());
}

TEST(VexaRunTest, ExtractedIonTraces) {
    const VexaRun run = TinyRun();
    struct Case {
        std::vector<double> masses;
        double tolerance;
        std::vector<float> trace;
    };
    const Case cases[] = {
        {{43}, 0.5, {30, 15, 9}},       {{43}, 0.1, {30, 15, 0}},
        {{43, 43.3}, 0.5, {30, 15, 9}}, // overlapping windows count a point once
        {{40, 41}, 0.5, {30, 5, 7}},    {{44, 40}, 0.0, {10, 30, 0}},
        {{100}, 0.5, {0, 0, 0}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(run.ExtractedIon(c.masses, c.tolerance), c.trace) << c.masses[0] << " ±" << c.tolerance;
}

TEST(VexaRunTest, TimesToScansAndFacts) {
    const VexaRun run = TinyRun();
    EXPECT_EQ(run.ScanNearest(-1), 0u);
    EXPECT_EQ(run.ScanNearest(0.25), 0u); // a tie goes to the earlier scan
    EXPECT_EQ(run.ScanNearest(0.3), 1u);
    EXPECT_EQ(run.ScanNearest(9), 2u);
    EXPECT_EQ(run.ScansBetween(1.2, 0.4), (std::pair<size_t, size_t>{1, 2}));
    EXPECT_EQ(run.ScansBetween(0.1, 0.2), (std::pair<size_t, size_t>{0, 0}));
    EXPECT_EQ(run.MassRange(), (std::pair<double, double>{40, 44}));
    EXPECT_DOUBLE_EQ(run.RunSeconds(), 1.0);
    EXPECT_FALSE(run.IsSim()); // no SCANMODE: the first scan's flag
    VexaRun unnamed = run;
    unnamed.SetParameters({});
    EXPECT_EQ(unnamed.MassRange(), (std::pair<double, double>{40, 44}));
}
