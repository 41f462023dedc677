// SPDX-License-Identifier: Apache-2.0
// Methods on an instrument: a save and reload through the link, saves that fail under the simulator's
// faults and leave the old file, the method that a data file on the instrument names, and the CLI.
#include "demotree.h"
#include "methodoffile.h"
#include "processrun.h"
#include "simulatedinstrument.h"
#include "tempdir.h"
#include "text.h"
#include "vexafileref.h"
#include "vexamethod.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>

namespace {

// The file link alone: the simulator's faults then count only the file traffic.
constexpr auto kLinkOnly = SimulatedInstrument::Commands::None;

void CopyDemo(SimulatedInstrument& instrument, const std::string& relative) {
    std::filesystem::create_directories(
        std::filesystem::path(instrument.root() + "/" + relative).parent_path());
    std::filesystem::copy_file(DemoTreePath(relative), instrument.root() + "/" + relative);
}

VexaMethod EditedMethod() {
    VexaMethod method;
    method.setDescription(L"Saved on the instrument");
    method.SetEvents({{0, kValveSampleFlow}, {45000, kValveInject}, {345000, kValveEnd}});
    return method;
}

} // namespace

TEST(MethodOnInstrument, SaveAndReloadRoundTrip) {
    SimulatedInstrument instrument;
    instrument.start();
    ASSERT_TRUE(instrument.goOnline(kLinkOnly));
    CopyDemo(instrument, "Method/Default.mth");
    VexaFileRef file;
    ASSERT_TRUE(file.Open(instrument.remote(L"/Method/Default.mth"))) << ToUtf8(file.GetLastErrorText());
    VexaMethod method(file);
    ASSERT_TRUE(method.IsValid());
    method.setDescription(L"Edited over the link");
    ASSERT_TRUE(method.Save(file)) << ToUtf8(file.GetLastErrorText());
    ASSERT_TRUE(method.Save(file, instrument.remote(L"/Method/Copy.mth"))) << ToUtf8(file.GetLastErrorText());

    for (const wchar_t* name : {L"/Method/Default.mth", L"/Method/Copy.mth"}) {
        VexaFileRef again;
        ASSERT_TRUE(again.Open(instrument.remote(name)));
        EXPECT_TRUE(VexaMethod(again) == method) << ToUtf8(name);
    }
    EXPECT_TRUE(LeftoverTemporaries(instrument.root()).empty());
}

TEST(MethodOnInstrument, AFailedSaveLeavesTheOldFile) {
    std::vector<std::string> faults = {"reply-status=5"};
    for (int frames = 1; frames <= 6; ++frames)
        faults.push_back("drop-after-frames=" + std::to_string(frames));
    for (const std::string& fault : faults) {
        SimulatedInstrument instrument;
        instrument.start({"--fault", fault});
        instrument.goOnline(kLinkOnly);
        CopyDemo(instrument, "Method/Default.mth");
        const std::string old = ReadWholeFile(instrument.root() + "/Method/Default.mth");
        VexaFileRef file;
        const VexaMethod method = EditedMethod();
        if (method.Save(file, instrument.remote(L"/Method/Default.mth"))) {
            // The fault struck after the file was complete: then the new method is whole.
            VexaFileRef local;
            ASSERT_TRUE(local.Open(FromUtf8(instrument.root() + "/Method/Default.mth"))) << fault;
            EXPECT_TRUE(VexaMethod(local) == method) << fault;
            continue;
        }
        EXPECT_NE(file.GetLastError(), 0) << fault;
        EXPECT_FALSE(file.GetLastErrorText().empty()) << fault;
        EXPECT_EQ(ReadWholeFile(instrument.root() + "/Method/Default.mth"), old)
            << fault << ": " << ToUtf8(file.GetLastErrorText());
    }
}

TEST(MethodOnInstrument, ADataFileNamesItsMethodOnTheSameInstrument) {
    SimulatedInstrument instrument;
    instrument.start();
    instrument.goOnline(kLinkOnly);
    CopyDemo(instrument, "Data/Survey001.vxz");
    CopyDemo(instrument, "Method/Survey.mth");
    std::wstring method, reason;
    ASSERT_TRUE(FindMethodOfFile(instrument.remote(L"/Data/Survey001.vxz"), &method, &reason))
        << ToUtf8(reason);
    EXPECT_EQ(method, instrument.remote(L"/Method/Survey.mth"));
    VexaFileRef file;
    ASSERT_TRUE(file.Open(method));
    EXPECT_EQ(VexaMethod(file).getDescription(), L"Fast screening, 45-350 amu, 5 minute run");
}

TEST(MethodShowCommand, PrintsMethodsAndNamesTheFileThatIsNone) {
    SimulatedInstrument instrument;
    instrument.start();
    CopyDemo(instrument, "Method/Default.mth");
    CopyDemo(instrument, "Method/Site.xmth");
    const std::string remote = instrument.remote("/Method/Default.mth");
    const std::string local = DemoTreePath("Method/Survey.mth");

    ProcessResult r = RunVexa({"method", "show", remote, local});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("General survey, 40-300 amu, 12 minute run"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("run time (M:S):      12:00"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("sample input device: Air Probe"), std::string::npos) << r.out;

    r = RunVexa({"--json", "method", "show", local});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const nlohmann::json shown = nlohmann::json::parse(r.out);
    ASSERT_EQ(shown.size(), 1u);
    EXPECT_EQ(shown[0]["methodMode"], "Survey");
    EXPECT_EQ(shown[0]["concentrator"], "None");
    EXPECT_EQ(shown[0]["runTimeSeconds"], 300);
    EXPECT_EQ(shown[0]["runTime"], "5:00");

    const std::string sequence = instrument.remote("/Method/Site.xmth");
    r = RunVexa({"method", "show", local, sequence});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find(sequence + ": not a valid method"), std::string::npos) << r.err;
    EXPECT_NE(r.out.find("Fast screening"), std::string::npos) << "the valid one is still shown";

    // A method without its collection mode and programme (another editor's) is shown, with what it
    // lacks named as not set and the run time from its event table.
    instrument.tree().createFile("Method/Partial.mth", R"({"format": "VexaMethod", "version": 1,
        "description": "partial", "model": 1, "accessory": 0, "methodMode": 1, "concentrator": 0,
        "events": [{"time": 0, "valveState": 6}, {"time": 90000, "valveState": 12}]})");
    r = RunVexa({"method", "show", instrument.remote("/Method/Partial.mth")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("collection mode:     not set"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("run time (M:S):      1:30"), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("not set:             scanMode, gc.initialTemp"), std::string::npos) << r.out;
}
