// SPDX-License-Identifier: Apache-2.0
#include "sensorfixture.h"
#include "tempdir.h"

#include "paths.h"
#include "stringtable.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <vector>

namespace {

std::wstring W(const std::string& s) {
    return std::wstring(s.begin(), s.end());
}

// Every test gets its own data root, so the sensor's workstation folders are fresh.
class SensorFolders : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("VEXA_DATA_ROOT", root.path().c_str(), 1);
        RegisterVexaStrings();
    }
    void TearDown() override {
        UnregisterVexaStrings();
        unsetenv("VEXA_DATA_ROOT");
    }
    TempDir root;
};

} // namespace

TEST_F(SensorFolders, TableGivesFoldersAndExtensionsForEveryKind) {
    // Nothing listens on this address: the instrument side contributes nothing.
    SensorHandle sensor(L"127.0.0.3");
    const std::wstring sensorDir = W(root.path()) + L"/127.0.0.3";
    struct Row {
        unsigned kind;
        std::wstring workstation, instrument, extension;
    } rows[] = {
        {0, sensorDir, L"/", L""},
        {1, sensorDir + L"/Method", L"/Method", L"mth"},
        {2, sensorDir + L"/Tune", L"/Tune", L"tun"},
        {3, sensorDir + L"/Log", L"/Log", L"log"},
        {4, sensorDir + L"/Data", L"/Data", L"vxs"},
        {5, sensorDir + L"/Reports", L"/Reports", L"qrt"},
        {6, sensorDir + L"/Reports", L"/Reports", L"cpr"},
        {7, sensorDir + L"/Reports", L"/Reports", L"qrf"},
        {8, W(root.path()) + L"/SearchLibraries", L"/Lib", L"msl"},
        {9, sensorDir + L"/Reports", L"/Reports", L"apr"},
        {10, sensorDir + L"/Reports", L"/Reports", L"rql"},
        {11, sensorDir + L"/Reports", L"/Reports", L"rql_sum"},
        {12, sensorDir + L"/Reports", L"/Reports", L"rqt"},
        {13, sensorDir + L"/Data", L"/Data", L"vxs"},
        {14, sensorDir + L"/Data", L"/Data", L"vxs"},
    };
    for (const Row& row : rows) {
        std::wstring workstation, instrument, extension;
        ASSERT_TRUE(sensor->GetFolderInfo(row.kind, &workstation, &instrument, nullptr, &extension))
            << row.kind;
        EXPECT_EQ(workstation, row.workstation) << row.kind;
        EXPECT_EQ(instrument, row.instrument) << row.kind;
        EXPECT_EQ(extension, row.extension) << row.kind;
    }
    std::wstring filter;
    ASSERT_TRUE(sensor->GetFolderInfo(0, nullptr, nullptr, &filter, nullptr));
    EXPECT_EQ(filter, L"All Files (*.*)|*.*|");
    ASSERT_TRUE(sensor->GetFolderInfo(3, nullptr, nullptr, &filter, nullptr));
    EXPECT_EQ(filter, L"Log Files (*.log)|*.log|Event Log Files (*.evt)|*.evt|All Files (*.*)|*.*|");
    ASSERT_TRUE(sensor->GetFolderInfo(13, nullptr, nullptr, &filter, nullptr));
    EXPECT_EQ(filter, L"Data Files (*.vxs; *.vxz; *.vxsu; *.acq)|*.vxs;*.vxz;*.vxsu;*.acq|");
    ASSERT_TRUE(sensor->GetFolderInfo(14, nullptr, nullptr, &filter, nullptr));
    EXPECT_EQ(filter,
              L"Data Files (*.vxs;*.vxz; *.vxsu; *.vqz;*.vqs;*.acq)|*.vxs;*.vxz;*.vxsu;*.vqz;*.vqs;*.acq|");

    std::wstring untouched = L"keep";
    EXPECT_FALSE(sensor->GetFolderInfo(15, &untouched, &untouched, &untouched, &untouched));
    EXPECT_EQ(untouched, L"keep");
    EXPECT_TRUE(sensor->GetFolderInfo(3, nullptr, nullptr, nullptr, nullptr)) << "every output is optional";
}

// Another module's table that knows the same ids, found first by the loader, answers nothing here.
TEST_F(SensorFolders, FilterTextsComeFromThisModulesTable) {
    std::size_t count = 0;
    const PXStringEntry* own = VexaStringTable(&count);
    std::vector<PXStringEntry> foreign;
    for (std::size_t i = 0; i < count; ++i)
        foreign.push_back({own[i].id, L"foreign"});
    static const int otherModule = 0;
    SensorHandle sensor(L"127.0.0.3");
    UnregisterVexaStrings();
    PXRegisterStringTable(&otherModule, foreign.data(), foreign.size());
    RegisterVexaStrings();
    ASSERT_EQ(PXLoadCString(own[0].id), L"foreign") << "the other table must be the first one asked";

    std::wstring filter;
    EXPECT_TRUE(sensor->GetFolderInfo(3, nullptr, nullptr, &filter, nullptr));
    PXUnregisterStringTable(&otherModule);
    EXPECT_EQ(filter, L"Log Files (*.log)|*.log|Event Log Files (*.evt)|*.evt|All Files (*.*)|*.*|");
}

TEST_F(SensorFolders, NextFileNameNumbersPastTheHighestMatch) {
    SensorHandle sensor(L"127.0.0.3");
    std::wstring data;
    ASSERT_TRUE(sensor->GetFolderInfo(4, &data, nullptr, nullptr, nullptr));
    std::string dir(data.begin(), data.end());

    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L"vxs", 3), L"Run001.vxs") << "no matching files";
    root.createFile(dir.substr(root.path().size() + 1) + "/run001.vxs");
    root.createFile(dir.substr(root.path().size() + 1) + "/Run007.VXS");
    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L"vxs", 3), L"Run008.vxs");
    // An extension may start with a dot when matching; the name's format then adds its own dot as well.
    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L".vxs", 3), L"Run008..vxs");

    // Wrong widths score 0 and never raise the number; a non-digit disqualifies.
    root.createFile(dir.substr(root.path().size() + 1) + "/Run12.vxs");
    root.createFile(dir.substr(root.path().size() + 1) + "/Run0a1.vxs");
    root.createFile(dir.substr(root.path().size() + 1) + "/Run500.mth");
    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L"vxs", 3), L"Run008.vxs");
    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L"vxs", 2), L"Run13.vxs");

    // The format widens past the digit count.
    root.createFile(dir.substr(root.path().size() + 1) + "/Run999.vxs");
    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L"vxs", 3), L"Run1000.vxs");

    EXPECT_EQ(sensor->GetNextFileName(4, L"Run", L"vxs", 0), L"");
    EXPECT_EQ(sensor->GetNextFileName(4, L"", L"vxs", 3), L"");
    EXPECT_EQ(sensor->GetNextFileName(15, L"Run", L"vxs", 3), L"");
}

TEST_F(SensorFolders, PrefixWithASubFolderSearchesThatFolder) {
    SensorHandle sensor(L"127.0.0.3");
    std::wstring data;
    ASSERT_TRUE(sensor->GetFolderInfo(4, &data, nullptr, nullptr, nullptr));
    std::string relative = std::string(data.begin(), data.end()).substr(root.path().size() + 1);
    root.createFile(relative + "/Sub/Run004.vxs");
    root.createFile(relative + "/Run009.vxs");
    EXPECT_EQ(sensor->GetNextFileName(4, L"Sub/Run", L"vxs", 3), L"Run005.vxs");
    EXPECT_EQ(sensor->GetNextFileName(4, L"Sub\\Run", L"vxs", 3), L"Run005.vxs");
}

TEST_F(SensorFolders, ConstantQueriesAndDeviceIds) {
    SensorHandle sensor(L"127.0.0.3");
    EXPECT_TRUE(sensor->IsValidDeviceId(0xFFFF));
    EXPECT_FALSE(sensor->IsValidDeviceId(0x10000));
    EXPECT_FALSE(sensor->IsValidDeviceId(0xFFFFF));
    EXPECT_TRUE(sensor->IsValidDeviceId(0x100000));
    EXPECT_EQ(sensor->GetInstrumentClass(), 974);
    EXPECT_EQ(sensor->GetMaxChannels(), 16);
    EXPECT_EQ(sensor->GetEditMethodText(), L"Edit &Method");
    EXPECT_TRUE(sensor->IsInstrumentReady()) << "no channel: ready";
    // Without dialogs, the entry points answer as cancelled.
    EXPECT_EQ(sensor->ManageFiles(L"", 1, 0), L"");
    EXPECT_EQ(sensor->SelectFileForKind(1, L"", 0x40), L"Cancel");
    EXPECT_EQ(sensor->SelectFileForKind(1, L"", 0), L"");
    EXPECT_EQ(sensor->SelectFileForKind(15, L"", 0x40), L"") << "unknown kinds return empty names";
}

TEST_F(SensorFolders, LocalPathMirrorsTheInstrumentPathUnderTheSensorFolder) {
    SensorHandle sensor(L"127.0.0.3");
    std::wstring local = sensor->GetLocalPath(L"@127.0.0.3:/Data/Sub/run1.vxs");
    EXPECT_EQ(local, W(root.path()) + L"/127.0.0.3/Data/Sub/run1.vxs");
    EXPECT_TRUE(std::filesystem::is_directory(root.path() + "/127.0.0.3/Data/Sub"));
}
