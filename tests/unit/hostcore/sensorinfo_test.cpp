// SPDX-License-Identifier: Apache-2.0
#include "sensorinfo.h"
#include "sensorobject.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {
class TestSensorType : public ISensorInfo {
public:
    explicit TestSensorType(const wchar_t* name) {
        SetIdentity(name, L"Test type", L"Device", 3, L"Product", nullptr);
        AddFileInfo(L".mth", L"Method Files", 2);
        AddFileInfo(L".vxs", L"Data Files", 1);
        AddTool({L"Tool", L"A tool"});
    }
};
} // namespace

TEST(SensorInfo, RegistryOfTypesAndFileTable) {
    const size_t before = ISensorInfo::SensorTypes().size();
    {
        TestSensorType a(L"TA");
        TestSensorType b(L"TB");
        const auto types = ISensorInfo::SensorTypes();
        ASSERT_EQ(types.size(), before + 2);
        EXPECT_EQ(types[before], &a); // construction order
        EXPECT_EQ(ISensorInfo::FindSensorType(L"tb"), &b);
        EXPECT_EQ(ISensorInfo::FindSensorType(L"none"), nullptr);

        EXPECT_EQ(a.GetNFileTypes(), 2);
        EXPECT_EQ(a.GetFileSuffix(1), L".vxs");
        EXPECT_EQ(a.GetFileDesc(0), L"Method Files");
        EXPECT_EQ(a.GetFileSuffix(2), L"");
        EXPECT_EQ(a.GetFileDesc(-1), L"");
        EXPECT_EQ(a.Tools().size(), 1u);

        EXPECT_FALSE(a.IsInitialized());
        EXPECT_TRUE(a.Initialize(nullptr));
        EXPECT_TRUE(a.IsInitialized());
        EXPECT_EQ(a.CreateSensorObject(nullptr, ISensorAddress(L"h")), nullptr);
        EXPECT_EQ(a.MakeSensorAddress(L"10.0.0.1", false).GetHostname(), L"10.0.0.1");
        EXPECT_EQ(a.MakeSensorAddress(L"10.0.0.1", true).GetHostname(), L"");
        EXPECT_FALSE(a.CanEditFile(L".mth"));
        EXPECT_EQ(a.GetDefaultSuffix(2), L"");
        EXPECT_FALSE(a.HasTools());
        a.RunTool(0, 0);
    }
    EXPECT_EQ(ISensorInfo::SensorTypes().size(), before);
    EXPECT_EQ(ISensorInfo::FindSensorType(L"TA"), nullptr);
}
