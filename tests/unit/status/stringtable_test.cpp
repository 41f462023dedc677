// SPDX-License-Identifier: Apache-2.0
// The module's string table: one text per identifier, registered under this module, quirks intact.
#include "pxresource.h"
#include "resource.h"
#include "stringtable.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace {

TEST(StringTableTest, EveryIdentifierOnceWithAText) {
    size_t count = 0;
    const PXStringEntry* entries = VexaStringTable(&count);
    ASSERT_GT(count, 100u);
    std::set<int> seen;
    for (size_t i = 0; i < count; ++i) {
        SCOPED_TRACE(entries[i].id);
        EXPECT_TRUE(seen.insert(entries[i].id).second) << "identifier listed twice";
        ASSERT_NE(entries[i].text, nullptr);
        EXPECT_NE(entries[i].text[0], L'\0');
    }
}

TEST(StringTableTest, TextsAsTheProductShowsThem) {
    RegisterVexaStrings();
    PXResourceScope scope(VexaResourceModule());
    EXPECT_EQ(PXLoadCString(IDS_SENSOR_DESCRIPTION), L"This is a VEXARON sensor");
    EXPECT_EQ(PXLoadCString(IDS_DELETE_ONE),
              L"Are you sure you want to delete \"%1!s!\" on the %2!s!?\r\n\r\n");
    EXPECT_EQ(PXLoadCString(IDS_BACKUP_CONFIRM),
              L"Backups make take several minutes. Are you sure you want to do a backup?");
    EXPECT_EQ(PXLoadCString(IDS_FILTER_DATA_ALL_KINDS),
              L"Data Files (*.vxs;*.vxz; *.vxsu; *.vqz;*.vqs;*.acq)|*.vxs;*.vxz;*.vxsu;*.vqz;*.vqs;*.acq|");
    EXPECT_EQ(PXLoadCString(IDS_TOOL_STATUS_DESC), L"Provides access to the VEXARON's status");
    EXPECT_EQ(PXLoadCString(IDS_OBJECT_COUNT), L"%d Object(s)");
    EXPECT_EQ(PXLoadCString(IDS_MENU_REPLAY), L"Replay");
}

} // namespace
