// SPDX-License-Identifier: Apache-2.0
#include "pxresource.h"

#include <gtest/gtest.h>

namespace {
char kModuleA;
char kModuleB;
const PXStringEntry kTableA[] = {{100, L"Copy"}, {101, L"Only in A"}};
const PXStringEntry kTableB[] = {{100, L"Kopieren"}, {102, L"Only in B"}};
} // namespace

TEST(PXResource, LooksUpCurrentModuleFirstThenAll) {
    PXRegisterStringTable(&kModuleA, kTableA, std::size(kTableA));
    PXRegisterStringTable(&kModuleB, kTableB, std::size(kTableB));

    EXPECT_EQ(PXLoadCString(100), L"Copy"); // no current module: first registered wins
    EXPECT_EQ(PXLoadCString(102), L"Only in B");
    EXPECT_EQ(PXLoadCString(999), L"");
    {
        PXResourceScope scope(&kModuleB);
        EXPECT_EQ(PXLoadCString(100), L"Kopieren");
        EXPECT_EQ(PXLoadCString(101), L"Only in A");
        {
            PXResourceScope inner(&kModuleA);
            EXPECT_EQ(PXLoadCString(100), L"Copy");
        }
        EXPECT_EQ(PXLoadCString(100), L"Kopieren");
    }
    EXPECT_EQ(PXSetResourceModule(nullptr), nullptr);

    PXUnregisterStringTable(&kModuleA);
    EXPECT_EQ(PXLoadCString(100), L"Kopieren");
    EXPECT_EQ(PXLoadCString(101), L"");
    PXUnregisterStringTable(&kModuleB);
    EXPECT_EQ(PXLoadCString(100), L"");
}
