// SPDX-License-Identifier: Apache-2.0
// Exports: MSP and CSV texts written out by hand, and the ANDI-MS file read back by an independent
// netCDF reader (scipy) value for value.
#include "vexaexport.h"

#include "processrun.h"
#include "tempdir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <fstream>

namespace {

VexaRun SmallRun() {
    VexaRun run;
    run.SetSampleName("Mix \xC3\xA9 1");
    run.SetStartTime(1700000000); // 2023-11-14 22:13:20 UTC
    run.AddScan(0, std::vector<float>{40, 41.25f, 43}, std::vector<float>{10, 20, 1e6f});
    run.AddScan(500, std::vector<float>{40}, std::vector<float>{0.1f});
    run.AddScan(1333, std::vector<float>{43.1f, 1999.9f}, std::vector<float>{3.3f, 7});
    return run;
}

} // namespace

TEST(VexaExportTest, MspScalesToTheBasePeakAndNamesItsOrigin) {
    VexaSpectrum spectrum;
    spectrum.mz = {41, 43.5f, 58, 100};
    spectrum.intensity = {500, 1000, 0.4f, 250};
    VexaExport::SpectrumOrigin origin{"Mix 1 at 12.5 s", "/Data/Run001.vxs", 12.5, 13, true, 2, 3.25};
    EXPECT_EQ(VexaExport::MakeMsp(spectrum, origin),
              "Name: Mix 1 at 12.5 s\n"
              "Comments: file=/Data/Run001.vxs time=12.500-13.000 s background=2.000-3.250 s\n"
              "Num Peaks: 3\n"
              "41 500\n43.5 999\n100 250\n\n");
    EXPECT_EQ(VexaExport::SpectrumCsv(spectrum),
              "mz,intensity,relative\n41,500,50.00\n43.5,1000,100.00\n58,0.4,0.04\n100,250,25.00\n");
    EXPECT_EQ(VexaExport::MakeMsp(VexaSpectrum(), {"empty", "f", 0, 0}),
              "Name: empty\nComments: file=f time=0.000-0.000 s\nNum Peaks: 0\n\n");
}

TEST(VexaExportTest, ChromatogramCsvHasOneColumnPerMass) {
    const std::vector<double> masses = {40, 43};
    EXPECT_EQ(VexaExport::ChromatogramCsv(SmallRun(), masses, 0.2), "time_s,tic,mz_40,mz_43\n"
                                                                    "0.000,1000030,10,1000000\n"
                                                                    "0.500,0.1,0.1,0\n"
                                                                    "1.333,10.3,0,3.3\n");
}

TEST(VexaExportTest, AndiReadsBackExactlyWithScipy) {
    const VexaRun run = SmallRun();
    TempDir dir;
    const std::string cdf = dir.file("run.cdf");
    std::string reason;
    ASSERT_TRUE(VexaExport::WriteAndi(run, cdf, &reason)) << reason;

    nlohmann::json expected{{"sample", run.SampleName()}, {"stamp", "20231114221320+0000"}};
    for (size_t scan = 0; scan < run.ScanCount(); ++scan) {
        const auto mz = run.Masses(scan);
        const auto intensity = run.Intensities(scan);
        expected["scans"].push_back({{"time", run.TimeSeconds(scan)},
                                     {"tic", run.Tic()[scan]},
                                     {"mz", std::vector<float>(mz.begin(), mz.end())},
                                     {"intensity", std::vector<float>(intensity.begin(), intensity.end())}});
    }
    const std::string json = dir.createFile("expected.json", expected.dump());
    const std::string script =
        std::string(std::getenv("VEXA_SOURCE_DIR")) + "/tests/unit/data/andi_readback.py";
    const ProcessResult check =
        RunProcess("/usr/bin/python3", {script, cdf, json}); // the Debian python that has scipy
    EXPECT_EQ(check.exitCode, 0) << check.out << check.err;

    // A run without spectra is refused, and nothing is left behind.
    VexaRun old;
    old.SetVersion(1);
    EXPECT_FALSE(VexaExport::WriteAndi(old, dir.file("old.cdf"), &reason));
    EXPECT_EQ(reason, "the run has no spectra to export");
    EXPECT_FALSE(FileExists(dir.file("old.cdf")));
    EXPECT_TRUE(LeftoverTemporaries(dir.path()).empty());
}
