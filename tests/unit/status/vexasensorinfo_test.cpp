// SPDX-License-Identifier: Apache-2.0
// The plug-in description: identity, file types, tools, edit rights, sensor objects and the tools of
// category 6031 that it runs itself.
#include "externalprograms.h"
#include "paths.h"
#include "recordingtoolui.h"
#include "registry.h"
#include "sensorref.h"
#include "stringtable.h"
#include "tempdir.h"
#include "text.h"
#include "vexasensorinfo.h"
#include "vexasensorobject.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

class VexaSensorInfoTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterVexaStrings();
        m_settings = std::make_unique<ScopedEnv>("VEXA_SETTINGS", m_dir.file("vexa.ini"));
    }
    CPXRegistry& Settings() { return CPXRegistry::Instance(); }

    // A program that appends its arguments (or "-" for none) to a file, so a test can see it ran.
    std::wstring RecordingProgram(const std::string& name) {
        std::string log = m_dir.file(name + ".log");
        std::string path = m_dir.createFile(name + ".sh", "#!/bin/sh\necho \"${*:--}\" >> '" + log + "'\n");
        chmod(path.c_str(), 0755);
        return FromUtf8(path);
    }
    // Waits (bounded) for a detached program to leave its mark.
    std::string WaitForLog(const std::string& name) {
        for (int i = 0; i < 100; ++i) {
            if (FileExists(m_dir.file(name + ".log"))) {
                std::string content = ReadWholeFile(m_dir.file(name + ".log"));
                if (!content.empty() && content.back() == '\n')
                    return content;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
        return {};
    }

    TempDir m_dir;
    std::unique_ptr<ScopedEnv> m_settings;
};

TEST_F(VexaSensorInfoTest, IdentityAndDescription) {
    VEXASensorInfo info;
    EXPECT_EQ(info.ShortName(), L"VEXA");
    EXPECT_EQ(info.DisplayName(), L"VEXARON");
    EXPECT_EQ(info.DeviceName(), L"VEXA");
    EXPECT_EQ(info.Number(), 10);
    EXPECT_EQ(info.ProductName(), L"VEXARON");
    ASSERT_NE(info.DeviceNames(), nullptr);
    EXPECT_STREQ(info.DeviceNames()[0], L"VEXA");
    EXPECT_EQ(info.DeviceNames()[1], nullptr);
    EXPECT_EQ(info.GetDescription(), L"This is a VEXARON sensor");
    EXPECT_TRUE(info.HasTools());
}

TEST_F(VexaSensorInfoTest, FileTypesInOrder) {
    VEXASensorInfo info;
    EXPECT_TRUE(info.Initialize(nullptr));
    EXPECT_TRUE(info.IsInitialized());
    struct Row {
        const wchar_t* suffix;
        const wchar_t* description;
        int kind;
    };
    const Row expected[] = {
        {L"vxs", L"VEXARON Data File", 1},  {L"vxz", L"VEXARON Compressed Data File", 1},
        {L"vxsu", L"VEXARON Data File", 1}, {L"mth", L"VEXARON Method", 2},
        {L"tun", L"Tune File", 4},          {L"xmth", L"VEXARON Method Sequence", 2},
        {L"msl", L"VEXARON Libraries", 1},  {L"dmth", L"VEXARON Default Method", 2},
    };
    ASSERT_EQ(info.FileTypes().size(), std::size(expected));
    ASSERT_EQ(info.GetNFileTypes(), 8);
    for (size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(info.FileTypes()[i].suffix, expected[i].suffix);
        EXPECT_EQ(info.FileTypes()[i].description, expected[i].description);
        EXPECT_EQ(info.FileTypes()[i].kind, expected[i].kind);
    }
    EXPECT_TRUE(info.Initialize(nullptr)); // a second start lists nothing twice
    EXPECT_EQ(info.FileTypes().size(), 8u);
    EXPECT_EQ(info.Tools().size(), 10u);
}

TEST_F(VexaSensorInfoTest, ToolsInOrder) {
    VEXASensorInfo info;
    info.Initialize(nullptr);
    const SensorTool expected[] = {
        {L"Data Review", L"Recalls data files", 6028, 0, 1707, -1, -1, 2},
        {L"Run Method", L"Runs a method", 6029, 10, 1708, -1, -1, 2},
        {L"NIST", L"Starts the NIST program (F8)", 6031, 1, 1721, 0x77, -1, 2},
        {L"Safety DB", L"Displays the Safety databases.", 6031, 3, 1723, -1, -1, 2},
        {L"AMDIS", L"Starts the AMDIS program (Shift+F8)", 6031, 2, 1722, 0x77, 0x10, 2},
        {L"Manage Files", L"Provides access to files on the PC and the remote VEXARON (if connected)", 6028,
         1, 1709, -1, -1, 2},
        {L"Method Editor", L"Starts Method Editor", 6030, -1, 1711, -1, -1, 2},
        {L"Service Module", L"Provides access to Service Module information", 6027, 4, 1714, -1, -1, 2},
        {L"Status", L"Provides access to the VEXARON's status", 6027, 3, 1715, -1, -1, 2},
        {L"Tune", L"Starts Manual Tune for the sensor", 6029, 7, 1716, -1, -1, 1},
    };
    ASSERT_EQ(info.Tools().size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        SCOPED_TRACE(ToUtf8(expected[i].name));
        const SensorTool& tool = info.Tools()[i];
        EXPECT_EQ(tool.name, expected[i].name);
        EXPECT_EQ(tool.description, expected[i].description);
        EXPECT_EQ(tool.category, expected[i].category);
        EXPECT_EQ(tool.index, expected[i].index);
        EXPECT_EQ(tool.icon, expected[i].icon);
        EXPECT_EQ(tool.key, expected[i].key);
        EXPECT_EQ(tool.modifier, expected[i].modifier);
        EXPECT_EQ(tool.kind, expected[i].kind);
    }
}

TEST_F(VexaSensorInfoTest, EditRightsAndDefaultSuffixes) {
    VEXASensorInfo info;
    struct Row {
        const char* levels;
        const wchar_t* suffix;
        bool editable;
    };
    const Row rows[] = {
        {"0,1", L"mth", true},   {"0,1", L"xmth", true},  {"0,1", L"dmth", true},  {"0,1", L"MTH", false},
        {"0,1", L"Mth", false},  {"0,1", L".mth", false}, {"0,1", L"mth ", false}, {"0,1", L"tun", false},
        {"0,1", L"vxs", false},  {"0,1", L"", false},     {"1", L"mth", true},     {"0", L"dmth", false},
        {"none", L"mth", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.levels) + " " + ToUtf8(row.suffix));
        ScopedEnv access("VEXA_ACCESS", row.levels);
        EXPECT_EQ(info.CanEditFile(row.suffix), row.editable);
    }
    EXPECT_EQ(info.GetDefaultSuffix(1), L"vxs");
    EXPECT_EQ(info.GetDefaultSuffix(2), L"mth");
    EXPECT_EQ(info.GetDefaultSuffix(4), L""); // tune is a registered kind, yet has no default
    EXPECT_EQ(info.GetDefaultSuffix(0), L"");
    EXPECT_EQ(info.GetDefaultSuffix(-1), L"");
}

TEST_F(VexaSensorInfoTest, AddressesAndSensorObjects) {
    VEXASensorInfo info;
    EXPECT_EQ(info.MakeSensorAddress(L"10.0.0.5", false).GetHostname(), L"10.0.0.5");
    EXPECT_EQ(info.MakeSensorAddress(L"10.0.0.5", true).GetHostname(), L"");
    EXPECT_EQ(info.CreateSensorObject(nullptr, ISensorAddress()), nullptr);
    EXPECT_EQ(info.CreateSensorObject(nullptr, ISensorAddress(L"host:4840")), nullptr);

    const auto sensor =
        SensorRef<VEXASensorObject>::AdoptIf(info.CreateSensorObject(nullptr, ISensorAddress(L"127.0.0.9")));
    ASSERT_TRUE(sensor);
    EXPECT_EQ(sensor->GetSensorInfo(), &info);
    EXPECT_EQ(sensor->GetSensorAddress().GetHostname(), L"127.0.0.9");
    EXPECT_NE(sensor->GetChannel(), nullptr); // the command channel is attached, not yet open
    EXPECT_FALSE(sensor->GetChannel()->IsOpen());
    EXPECT_FALSE(sensor->IsOnline(true));
}

TEST_F(VexaSensorInfoTest, OtherCategoriesAreTheHosts) {
    RecordingToolUi ui;
    VEXASensorInfo info;
    info.RunTool(6028, 0);
    info.RunTool(6031, 0);
    info.RunTool(6031, 4);
    EXPECT_TRUE(ui.messages.empty());
    EXPECT_TRUE(ui.asked.empty());
}

TEST_F(VexaSensorInfoTest, NistAndAmdisNeedAConfiguredProgram) {
    RecordingToolUi ui;
    VEXASensorInfo info;
    info.RunTool(6031, 1);
    info.RunTool(6031, 2);
    ASSERT_EQ(ui.messages.size(), 2u);
    EXPECT_NE(ui.messages[0].find(L"NIST"), std::wstring::npos);
    EXPECT_NE(ui.messages[0].find(L"Programs/Nist"), std::wstring::npos);
    EXPECT_NE(ui.messages[1].find(L"Programs/Amdis"), std::wstring::npos);

    Settings().SetString(L"Programs", L"Nist", RecordingProgram("nist"));
    Settings().SetString(L"Programs", L"Amdis", FromUtf8(m_dir.file("missing-amdis")));
    info.RunTool(6031, 1);
    EXPECT_EQ(WaitForLog("nist"), "-\n");
    info.RunTool(6031, 2);
    ASSERT_EQ(ui.messages.size(), 3u);
    EXPECT_NE(ui.messages[2].find(L"Could not start AMDIS"), std::wstring::npos);
    EXPECT_NE(ui.messages[2].find(L"2"), std::wstring::npos);
}

TEST_F(VexaSensorInfoTest, SafetyDatabaseAsksForAMissingPageAndRemembersIt) {
    RecordingToolUi ui;
    VEXASensorInfo info;
    Settings().SetString(L"Programs", L"Opener", RecordingProgram("opener"));
    const std::wstring page = FromUtf8(m_dir.createFile("db/start.htm", "<html/>"));

    // Without a setting the default page is tried; it is missing, so the operator is asked. Cancel: nothing
    // is stored.
    info.RunTool(6031, 3);
    ASSERT_EQ(ui.asked.size(), 1u);
    EXPECT_EQ(ui.asked[0].current, PXGetRootDir() + L"/NIOSHDBS/start.htm");
    EXPECT_EQ(ui.asked[0].filter, L"All Files (*.*)|*.*|");
    EXPECT_FALSE(Settings().GetString(L"NIOSH", L"Path").has_value());

    // A wrong pick is asked about again; the good one opens and is stored.
    ui.answers = {FromUtf8(m_dir.file("nowhere.htm")), page};
    info.RunTool(6031, 3);
    EXPECT_EQ(ui.asked.size(), 3u);
    EXPECT_EQ(ui.asked[2].current, FromUtf8(m_dir.file("nowhere.htm")));
    EXPECT_EQ(WaitForLog("opener"), ToUtf8(page) + "\n");
    EXPECT_EQ(Settings().GetString(L"NIOSH", L"Path").value_or(L""), page);

    // Next time the stored page opens without a question.
    info.RunTool(6031, 3);
    EXPECT_EQ(ui.asked.size(), 3u);
    EXPECT_TRUE(ui.messages.empty());
}

TEST_F(VexaSensorInfoTest, ProgramsTakeTheirArgumentPatterns) {
    RecordingToolUi ui;
    Settings().SetString(L"Programs", L"Amdis", RecordingProgram("amdis"));
    Settings().SetString(L"Programs", L"AmdisArguments", L"-batch %2 --in=%1");
    EXPECT_TRUE(AmdisSwitch(L"a.vxs", L""));
    EXPECT_EQ(WaitForLog("amdis"), "-batch --in=a.vxs\n");

    // One line per pattern: the words it gives for the inserts {"x y", ""}.
    const std::pair<const wchar_t*, std::vector<std::wstring>> cases[] = {
        {L"", {}},
        {L"%1 %2", {L"x y"}},
        {L"  -q\t%1  ", {L"-q", L"x y"}},
        {L"%2", {}},
        {L"%9 100% %%1", {L"100%", L"%x y"}},
        {L"pre%1post", {L"prex ypost"}},
    };
    for (const auto& [pattern, words] : cases)
        EXPECT_EQ(ExpandArguments(pattern, {L"x y", L""}), words) << ToUtf8(pattern);
}

// A page that exists but that no program can open is no missing page: one message names the setting,
// and the operator is not asked for another page.
TEST_F(VexaSensorInfoTest, SafetyDatabaseWithoutAnOpenerSaysSoOnce) {
    RecordingToolUi ui;
    VEXASensorInfo info;
    Settings().SetString(L"Programs", L"Opener", L"/nonexistent/vexa/opener");
    const std::wstring page = FromUtf8(m_dir.createFile("db/start.htm", "<html/>"));
    Settings().SetString(L"NIOSH", L"Path", page);
    info.RunTool(6031, 3);
    EXPECT_TRUE(ui.asked.empty());
    ASSERT_EQ(ui.messages.size(), 1u);
    for (const wchar_t* named : {L"No program could open", L"/nonexistent/vexa/opener", L"Programs/Opener"})
        EXPECT_NE(ui.messages[0].find(named), std::wstring::npos) << ToUtf8(ui.messages[0]);
    EXPECT_EQ(ShellOpen(page), kNoOpener);
}

TEST(ExternalProgramsTest, ShellOpenReportsMissingFiles) {
    EXPECT_EQ(ShellOpen(L""), kProgramNotFound);
    EXPECT_EQ(ShellOpen(L"/nonexistent/vexa/start.htm"), kProgramNotFound);
    EXPECT_EQ(StartDetachedProgram(L"", {}), kProgramNotFound);
    EXPECT_EQ(StartDetachedProgram(L"/nonexistent/vexa/program", {}), 2);
}

} // namespace
