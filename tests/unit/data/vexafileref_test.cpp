// SPDX-License-Identifier: Apache-2.0
// File references: saving through a temporary name, keys kept for newer readers, and the parameter
// block of data files (the demo tree's files included).
#include "vexadatafile.h"
#include "vexafileref.h"
#include "vexamethod.h"
#include "vexamethodsequence.h"

#include "demotree.h"
#include "tempdir.h"
#include "text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

std::wstring W(const std::string& s) {
    return FromUtf8(s);
}

// A data file of `scans` zero scans followed by `tail`.
std::string DataFile(uint32_t scans, const std::string& tail) {
    std::string bytes = "VXS1";
    bytes += std::string("\x01\x00\x00\x00", 4);
    for (int i = 0; i < 4; ++i)
        bytes += static_cast<char>((scans >> (8 * i)) & 0xff);
    bytes.resize(VexaDataFile::kHeaderSize + scans * VexaDataFile::kScanSize, '\0');
    return bytes + tail;
}

} // namespace

TEST(VexaFileRefSave, RoundTripKeepsUnknownKeysAndEqualContent) {
    TempDir dir;
    const std::string path = dir.createFile(
        "new.mth", R"({"format":"VexaMethod","version":1,"futureKey":{"a":[1,2]},"description":"x","model":1,
        "accessory":1,"methodMode":1,"scanMode":0,"concentrator":2,
        "gc":{"initialTemp":40,"initialHold":0,"rate":30,"finalTemp":250,"finalHold":60,"futureGc":true},
        "ms":{"massLow":45,"massHigh":350,"simIons":[]},"events":[{"time":0,"valveState":6,"note":"n"}]})");
    VexaFileRef file;
    ASSERT_TRUE(file.Open(W(path))) << ToUtf8(file.GetLastErrorText());
    VexaMethod method(file);
    ASSERT_TRUE(method.IsValid()) << ToUtf8(method.GetInvalidReason());
    method.setDescription(L"Grüße, edited");
    method.setGcProgram({45, 10, 25, 260, 30});
    method.SetEvents({{0, 6}, {300000, 12}});
    ASSERT_TRUE(method.Save(file)) << ToUtf8(file.GetLastErrorText());
    file.Close();

    VexaFileRef again;
    ASSERT_TRUE(again.Open(W(path)));
    const VexaMethod reloaded(again);
    EXPECT_TRUE(reloaded == method);
    EXPECT_EQ(reloaded.getDescription(), L"Grüße, edited");
    EXPECT_EQ(again.Document()["futureKey"], nlohmann::json::parse(R"({"a":[1,2]})"));
    EXPECT_EQ(again.Document()["gc"]["futureGc"], true);
    EXPECT_EQ(again.Document()["events"][0]["note"], "n");
    EXPECT_EQ(std::filesystem::directory_iterator(dir.path())->path().filename(), "new.mth")
        << "no temporary file is left";

    ASSERT_TRUE(method.Save(again, W(dir.file("copy.mth"))));
    EXPECT_EQ(again.GetName(), W(dir.file("copy.mth")));
}

TEST(VexaFileRefSave, AFailedSaveLeavesTheOldFile) {
    TempDir dir;
    const std::string path = dir.createFile("keep.mth", "old content");
    // The temporary name is taken by a folder, so the new content cannot be written.
    dir.createDir("___temp@@keep.mth");
    VexaFileRef file;
    file.SetDocument(VexaMethod().Document());
    EXPECT_FALSE(file.Save(W(path)));
    EXPECT_NE(file.GetLastError(), 0);
    EXPECT_NE(file.GetLastErrorText().find(W(path)), std::wstring::npos) << "the message names the file";
    EXPECT_EQ(ReadWholeFile(path), "old content");

    EXPECT_FALSE(file.Save(W(dir.file("missing/folder/m.mth"))));
    EXPECT_FALSE(VexaFileRef().Save()) << "nothing to save under no name";
}

TEST(VexaFileRefData, ReadsTheParameterBlockOfDataFiles) {
    struct Case {
        const char* what;
        std::string bytes;
        bool opens;
        const wchar_t* sensor;
    };
    const std::string block =
        VexaDataFile::MakeParameterBlock({{L"SENSOR", L"/Method/Survey.mth"}, {L"X", L"1"}});
    const Case cases[] = {
        {"with a block", DataFile(3, block), true, L"/Method/Survey.mth"},
        {"without a block", DataFile(3, ""), true, L""},
        {"block cut short", DataFile(3, block.substr(0, block.size() - 3)), false, L""},
        {"scan count beyond the file", DataFile(3, "").substr(0, 60), false, L""},
        {"garbage after the scans", DataFile(1, "junkjunkjunk"), false, L""},
        {"a line without '='", DataFile(0, std::string("PARM\x02\0\0\0x\n", 10)), false, L""},
    };
    TempDir dir;
    for (const Case& c : cases) {
        VexaFileRef file;
        EXPECT_EQ(file.Open(W(dir.createFile("d.vxs", c.bytes))), c.opens) << c.what;
        EXPECT_EQ(file.GetParameter(L"SENSOR"), c.sensor) << c.what;
        EXPECT_FALSE(VexaMethod(file).IsValid()) << c.what;
    }
}

TEST(VexaFileRefData, DemoFilesNameTheirMethodsAndTheMethodsAreValid) {
    const std::pair<const char*, const wchar_t*> data[] = {{"Data/run1.vxs", L"/Method/Default.mth"},
                                                           {"Data/run2.vxs", L"/Method/Default.mth"},
                                                           {"Data/Run007.vxs", L"/Method/Default.mth"},
                                                           {"Data/Survey001.vxz", L"/Method/Survey.mth"}};
    for (const auto& [file, method] : data) {
        VexaFileRef ref;
        ASSERT_TRUE(ref.Open(W(DemoTreePath(file)))) << file << ": " << ToUtf8(ref.GetLastErrorText());
        EXPECT_EQ(ref.GetParameter(VexaFileRef::kSensorParameter), method) << file;
        VexaFileRef named;
        ASSERT_TRUE(named.Open(W(DemoTreePath(ToUtf8(method).substr(1)))));
        const VexaMethod loaded(named);
        EXPECT_TRUE(loaded.IsValid()) << ToUtf8(loaded.GetInvalidReason());
        EXPECT_TRUE(loaded.CheckSettings().empty()) << file;
    }
    VexaFileRef sequence;
    ASSERT_TRUE(sequence.Open(W(DemoTreePath("Method/Site.xmth"))));
    EXPECT_TRUE(VexaMethodSequence(sequence).IsValid());
    EXPECT_TRUE(VexaMethodSequence(sequence).CheckSettings().empty());
}

TEST(VexaMethodSequenceFile, RoundTripAndChecks) {
    TempDir dir;
    VexaMethodSequence sequence;
    EXPECT_FALSE(sequence.CheckSettings().empty()) << "no steps";
    sequence.SetSteps({{L"@127.0.0.9:/Method/A.mth", 2}, {L"/pc/B.mth", 1}});
    EXPECT_TRUE(sequence.CheckSettings().empty());
    VexaFileRef file;
    ASSERT_TRUE(sequence.Save(file, W(dir.file("s.xmth"))));
    VexaFileRef again;
    ASSERT_TRUE(again.Open(W(dir.file("s.xmth"))));
    EXPECT_TRUE(VexaMethodSequence(again) == sequence);
    EXPECT_EQ(VexaMethodSequence(again).GetStep(0).repeat, 2);

    for (const VexaSequenceStep& bad : {VexaSequenceStep{L"", 1}, VexaSequenceStep{L"a.mth", 0},
                                        VexaSequenceStep{L"a.mth", VexaMethodSequence::kMaxRepeat + 1}}) {
        VexaMethodSequence wrong;
        wrong.SetSteps({bad});
        EXPECT_FALSE(wrong.CheckSettings().empty());
    }
    VexaFileRef method;
    ASSERT_TRUE(VexaMethod().Save(method, W(dir.file("m.mth"))));
    EXPECT_FALSE(VexaMethodSequence(method).IsValid()) << "a method is not a sequence";

    // Partial sequences read, name what is not set, and are refused on saving.
    const struct {
        const char* text;
        std::vector<std::wstring> unset;
        int steps;
    } partial[] = {
        {R"({"format":"VexaMethodSequence","version":1})", {L"steps"}, 0},
        {R"({"format":"VexaMethodSequence","version":1,"steps":[{"method":"a.mth"},{"method":7,"repeat":2}]})",
         {L"steps[1].repeat", L"steps[2].method"},
         2},
    };
    for (const auto& c : partial) {
        SCOPED_TRACE(c.text);
        VexaFileRef ref;
        ASSERT_TRUE(ref.Open(W(dir.createFile("p.xmth", c.text))));
        const VexaMethodSequence read(ref);
        EXPECT_TRUE(read.IsValid());
        EXPECT_EQ(read.GetUnsetSettings(), c.unset);
        EXPECT_EQ(read.GetNumSteps(), c.steps);
        EXPECT_FALSE(read.CheckSettings().empty());
    }
}
