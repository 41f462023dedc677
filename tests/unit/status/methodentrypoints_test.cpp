// SPDX-License-Identifier: Apache-2.0
// The sensor type's file entry points: which editor opens for which file, the access level, unreadable
// methods, and the method that a data file names.
#include "demotree.h"
#include "recordingtoolui.h"
#include "registry.h"
#include "stringtable.h"
#include "tempdir.h"
#include "text.h"
#include "vexadatafile.h"
#include "vexafileref.h"
#include "vexasensorinfo.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

std::wstring W(const std::string& s) {
    return FromUtf8(s);
}

class MethodEntryPoints : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterVexaStrings();
        m_settings = std::make_unique<ScopedEnv>("VEXA_SETTINGS", m_dir.file("vexa.ini"));
        m_access = std::make_unique<ScopedEnv>("VEXA_ACCESS", "0,1");
        // A sensor's folders as files copied from the instrument lie in them.
        std::filesystem::create_directories(m_dir.file("Sensor/Method"));
        std::filesystem::create_directories(m_dir.file("Sensor/Data"));
        for (const char* name :
             {"Method/Default.mth", "Method/Survey.mth", "Method/Site.xmth", "Data/run1.vxs"})
            std::filesystem::copy_file(DemoTreePath(name), m_dir.file(std::string("Sensor/") + name));
    }
    std::wstring Path(const std::string& relative) const { return W(m_dir.file("Sensor/" + relative)); }

    TempDir m_dir;
    std::unique_ptr<ScopedEnv> m_settings;
    std::unique_ptr<ScopedEnv> m_access;
    RecordingToolUi m_ui;
    VEXASensorInfo m_info;
};

} // namespace

TEST_F(MethodEntryPoints, OpenFileNeedsAccessLevelOne) {
    ScopedEnv serviceOnly("VEXA_ACCESS", "0");
    EXPECT_FALSE(m_info.OpenFile(Path("Method/Default.mth")));
    ASSERT_EQ(m_ui.messages.size(), 1u);
    EXPECT_EQ(m_ui.messages[0], L"You do not have the access level to open this file.");
    EXPECT_TRUE(m_ui.editedMethods.empty());
    EXPECT_TRUE(m_ui.editedSequences.empty());
}

TEST_F(MethodEntryPoints, OpenFileChoosesTheEditorByType) {
    CPXRegistry::Instance().SetInt(L"Method", L"WizardMode", kWizardExpert);
    EXPECT_TRUE(m_info.OpenFile(Path("Method/Default.mth")));
    EXPECT_TRUE(m_info.OpenFile(Path("Method/Site.xmth")));
    EXPECT_TRUE(m_ui.messages.empty()) << ToUtf8(m_ui.messages[0]);
    ASSERT_EQ(m_ui.editedMethods.size(), 1u);
    EXPECT_EQ(m_ui.editedMethods[0].fileName, Path("Method/Default.mth"));
    EXPECT_EQ(m_ui.editedMethods[0].mode, kWizardExpert);
    EXPECT_EQ(m_ui.editedMethods[0].method.getDescription(), L"General survey, 40-300 amu, 12 minute run");
    ASSERT_EQ(m_ui.editedSequences.size(), 1u);
    EXPECT_EQ(m_ui.editedSequences[0].sequence.GetNumSteps(), 2);
}

TEST_F(MethodEntryPoints, AnUnreadableMethodIsReportedAndNothingOpens) {
    std::filesystem::copy_file(m_dir.file("Sensor/Method/Default.mth"),
                               m_dir.file("Sensor/Method/Wrong.xmth"));
    const std::pair<std::wstring, const char*> cases[] = {
        {Path("Method/missing.mth"), "missing file"},
        {W(m_dir.createFile("Sensor/Method/Cut.mth", "{\"format\":\"VexaMethod\",")), "truncated"},
        {Path("Method/Site.xmth.mth"), "missing, odd name"},
        {Path("Data/run1.vxs"), "a data file"},
        {Path("Method/Wrong.xmth"), "a method where a sequence belongs"},
    };
    for (const auto& [path, what] : cases) {
        m_ui.messages.clear();
        EXPECT_FALSE(m_info.OpenFile(path)) << what;
        ASSERT_EQ(m_ui.messages.size(), 1u) << what;
        EXPECT_EQ(m_ui.messages[0].rfind(L"Could not read method " + path + L".", 0), 0u)
            << ToUtf8(m_ui.messages[0]);
    }
    EXPECT_TRUE(m_ui.editedMethods.empty());
    EXPECT_TRUE(m_ui.editedSequences.empty());
}

TEST_F(MethodEntryPoints, NewFileBySuffix) {
    EXPECT_FALSE(m_info.NewFile(L""));
    EXPECT_TRUE(m_info.NewFile(L"xmth"));
    EXPECT_TRUE(m_info.NewFile(L"dmth"));
    EXPECT_TRUE(m_info.NewFile(L"mth"));
    ASSERT_EQ(m_ui.editedSequences.size(), 1u);
    EXPECT_EQ(m_ui.editedSequences[0].sequence.GetNumSteps(), 0);
    ASSERT_EQ(m_ui.editedMethods.size(), 2u);
    EXPECT_EQ(m_ui.editedMethods[0].extension, L"dmth");
    EXPECT_EQ(m_ui.editedMethods[1].extension, L"mth");
    for (const auto& edited : m_ui.editedMethods) {
        EXPECT_TRUE(edited.fileName.empty());
        EXPECT_TRUE(edited.method.IsValid());
        EXPECT_EQ(edited.mode, kWizardBasic);
    }
    EXPECT_EQ(m_ui.defaultMethodsShown, 1); // only for the default method
}

TEST_F(MethodEntryPoints, NewDefaultMethodOnlyAfterTheDefaultMethodsEndWithOk) {
    m_ui.defaultMethodsAnswer = false;
    EXPECT_FALSE(m_info.NewFile(L"DMTH"));
    EXPECT_EQ(m_ui.defaultMethodsShown, 1);
    EXPECT_TRUE(m_ui.editedMethods.empty());
}

TEST_F(MethodEntryPoints, EditMethodOfFileOpensTheMethodTheDataFileNames) {
    EXPECT_TRUE(m_info.EditMethodOfFile(Path("Data/run1.vxs")));
    ASSERT_EQ(m_ui.editedMethods.size(), 1u) << (m_ui.messages.empty() ? "" : ToUtf8(m_ui.messages[0]));
    EXPECT_EQ(m_ui.editedMethods[0].fileName, Path("Method/Default.mth"));

    // A data file without the parameter, and one that names a method that is nowhere.
    const std::string bare = ReadWholeFile(DemoTreePath("Data/run2.vxs"));
    m_dir.createFile("Sensor/Data/bare.vxs", bare.substr(0, bare.find("PARM")));
    m_dir.createFile("Sensor/Data/lost.vxs",
                     bare.substr(0, bare.find("PARM")) +
                         VexaDataFile::MakeParameterBlock({{L"SENSOR", L"/Method/Gone.mth"}}));
    for (const char* name : {"Data/bare.vxs", "Data/lost.vxs"}) {
        m_ui.messages.clear();
        EXPECT_FALSE(m_info.EditMethodOfFile(Path(name))) << name;
        ASSERT_EQ(m_ui.messages.size(), 1u) << name;
        EXPECT_NE(m_ui.messages[0].find(L"Could not read method"), std::wstring::npos);
    }
    EXPECT_EQ(m_ui.editedMethods.size(), 1u);
}
