// SPDX-License-Identifier: Apache-2.0
// A host program loads the built VexaSens.sdll and finds the VEXA sensor type in its own registry. This
// program links no module code: everything of the sensor type comes from the loaded file.
#include "pluginloader.h"
#include "sensorinfo.h"
#include "sensorref.h"
#include "simulator.h"
#include "tempdir.h"
#include "text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

std::wstring PluginDir() {
    const char* bin = std::getenv("VEXA_BIN_DIR");
    return FromUtf8(std::string(bin ? bin : ".") + "/plugins");
}

TEST(PluginHostTest, FoldersWithoutModulesSaySo) {
    TempDir empty;
    PluginFolderReport report = PluginLoader::LoadFolder(FromUtf8(empty.path()));
    EXPECT_TRUE(report.folderFound);
    EXPECT_TRUE(report.modules.empty());
    EXPECT_NE(report.ToText().find(L"No modules"), std::wstring::npos);

    report = PluginLoader::LoadFolder(FromUtf8(empty.file("missing")));
    EXPECT_FALSE(report.folderFound);
    EXPECT_NE(report.ToText().find(L"does not exist"), std::wstring::npos);
}

TEST(PluginHostTest, BrokenModuleIsReportedWithTheLoadersMessage) {
    TempDir folder;
    folder.createFile("Broken.sdll", "not a shared object");
    folder.createFile("readme.txt", "ignored");
    const PluginFolderReport report = PluginLoader::LoadFolder(FromUtf8(folder.path()));
    ASSERT_EQ(report.modules.size(), 1u);
    EXPECT_FALSE(report.modules[0].loaded);
    EXPECT_FALSE(report.modules[0].error.empty());
    EXPECT_FALSE(report.AllLoaded());
    EXPECT_NE(report.ToText().find(L"Broken.sdll: not loaded: "), std::wstring::npos);
}

TEST(PluginHostTest, ModuleRegistersTheVexaSensorType) {
    ASSERT_EQ(ISensorInfo::FindSensorType(L"VEXA"), nullptr) << "this host must not contain the module";
    const PluginFolderReport report = PluginLoader::LoadFolder(PluginDir());
    ASSERT_TRUE(report.folderFound) << ToUtf8(report.ToText());
    ASSERT_FALSE(report.modules.empty()) << ToUtf8(report.ToText());
    ASSERT_TRUE(report.AllLoaded()) << ToUtf8(report.ToText());
    EXPECT_NE(report.ToText().find(L"VexaSens.sdll: loaded"), std::wstring::npos);
    EXPECT_NE(report.ToText().find(L"Sensor types: VEXA"), std::wstring::npos);
    const PluginLoadResult& module = report.modules.front();
    EXPECT_NE(module.handle, nullptr);
    ASSERT_EQ(module.sensorTypes.size(), 1u);
    EXPECT_EQ(module.sensorTypes[0]->ShortName(), L"VEXA");

    ISensorInfo* info = ISensorInfo::FindSensorType(L"VEXA");
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->Initialize(nullptr));
    EXPECT_EQ(info->GetNFileTypes(), 8);
    EXPECT_EQ(info->GetFileSuffix(7), L"dmth");
    EXPECT_EQ(info->Tools().size(), 10u);
    EXPECT_EQ(info->Tools()[2].name, L"NIST");
    EXPECT_EQ(info->GetDescription(), L"This is a VEXARON sensor");

    // Loading again adds no second sensor type.
    EXPECT_TRUE(PluginLoader::LoadFolder(PluginDir()).modules.front().sensorTypes.empty());
    int vexaTypes = 0;
    for (ISensorInfo* type : ISensorInfo::SensorTypes())
        vexaTypes += type->ShortName() == L"VEXA";
    EXPECT_EQ(vexaTypes, 1);

    // The module's sensor object works in this host: on line, status through its command channel.
    TempDir root;
    SimulatorProcess sim(root.createDir("root"));
    const SensorRef<> sensor =
        SensorRef<>::Adopt(info->CreateSensorObject(nullptr, ISensorAddress(sim.host())));
    ASSERT_TRUE(sensor);
    ASSERT_TRUE(sensor->GoOnline());
    sensor->OnTimer(0);
    EXPECT_EQ(sensor->GetStatusSectionCount(), 3);
    EXPECT_EQ(sensor->GetStatusSectionTitle(0), L"Current Pressures");
    EXPECT_EQ(sensor->GetStatusLabel(0, 0), L"IS Supply (kPa):");
    EXPECT_FALSE(sensor->GetStatusValue(0, 0).empty());
    EXPECT_NE(sensor->GetStatusValue(0, 0), L"Not Available");
    sensor->Disconnect(0);
}

} // namespace
