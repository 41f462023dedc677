// SPDX-License-Identifier: Apache-2.0
#include "wildmatch.h"

#include <gtest/gtest.h>

TEST(WildMatch, Patterns) {
    struct Row {
        const wchar_t* pattern;
        const wchar_t* name;
        bool caseSensitive;
        bool expected;
    } rows[] = {
        {L"*.mth", L"a.mth", false, true},
        {L"*.mth", L"a.MTH", false, true},
        {L"*.mth", L"a.MTH", true, false},
        {L"*.mth", L"a.mthx", false, false},
        {L"*.mth;*.xmth", L"b.xmth", false, true},
        {L"*.vxs; *.vxz", L"run.vxz", false, true},
        {L"*.*", L"hostname", false, true},
        {L"*", L"", false, true},
        {L"", L"anything", false, true},
        {L"run???.vxs", L"run001.vxs", false, true},
        {L"run???.vxs", L"run01.vxs", false, false},
        {L"a*b*c", L"aXbYbZc", false, true},
        {L"a*b*c", L"aXbYbZ", false, false},
        {L"*a", L"bbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbbb", false, false},
        {L"?", L"", false, false},
        {L"exact", L"exact", true, true},
    };
    for (const auto& row : rows)
        EXPECT_EQ(WildMatch(row.pattern, row.name, row.caseSensitive), row.expected)
            << "pattern " << testing::PrintToString(std::wstring(row.pattern)) << " name "
            << testing::PrintToString(std::wstring(row.name));
    EXPECT_TRUE(WildMatch(std::string("*.tun"), std::string("x.tun"), true));
}
