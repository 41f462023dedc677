// SPDX-License-Identifier: Apache-2.0
#include "registry.h"
#include "systemaccess.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(SystemAccess, LevelsFromEnvironmentThenSettingThenDefault) {
    TempDir dir;
    setenv("VEXA_SETTINGS", dir.file("v.ini").c_str(), 1);
    unsetenv("VEXA_ACCESS");
    EXPECT_TRUE(CSystemAccess::Accessible(0));
    EXPECT_TRUE(CSystemAccess::Accessible(1));
    EXPECT_FALSE(CSystemAccess::Accessible(2));

    ASSERT_TRUE(CPXRegistry::Instance().SetString(L"Access", L"Levels", L"1"));
    EXPECT_FALSE(CSystemAccess::Accessible(0));
    EXPECT_TRUE(CSystemAccess::Accessible(1));

    struct Row {
        const char* env;
        bool level0, level1, level2;
    } rows[] = {
        {"0,1", true, true, false},  {"0", true, false, false},     {"1", false, true, false},
        {"", false, false, false},   {"none", false, false, false}, {" 0 , 2 ", true, false, true},
        {"x,1", false, true, false},
    };
    for (const auto& row : rows) {
        setenv("VEXA_ACCESS", row.env, 1);
        EXPECT_EQ(CSystemAccess::Accessible(0), row.level0) << row.env;
        EXPECT_EQ(CSystemAccess::Accessible(1), row.level1) << row.env;
        EXPECT_EQ(CSystemAccess::Accessible(2), row.level2) << row.env;
    }
    unsetenv("VEXA_ACCESS");
    unsetenv("VEXA_SETTINGS");
}
