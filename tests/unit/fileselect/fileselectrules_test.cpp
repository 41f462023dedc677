// SPDX-License-Identifier: Apache-2.0
// The file selection dialog's rules: where it opens, what it lists, what the name edit shows.
#include "fileselectrules.h"

#include "stringtable.h"

#include <gtest/gtest.h>

namespace {

FileInfo Entry(const std::wstring& name, int32_t size) {
    FileInfo entry;
    entry.name = name;
    entry.size = size;
    return entry;
}

FileInfo Folder(const std::wstring& name) {
    FileInfo entry = Entry(name, 0);
    entry.attrib = kFileAttrFolder;
    return entry;
}

class FileSelectRulesTest : public ::testing::Test {
protected:
    FileSelectRulesTest() { RegisterVexaStrings(); }
};

} // namespace

TEST_F(FileSelectRulesTest, LocationFlagsTakePrecedenceInOrder) {
    struct Row {
        uint32_t flags;
        bool online;
        bool remoteStart;
        VexaSelectLocation expected; // instrument checked, PC enabled, instrument enabled
    };
    const Row rows[] = {
        {0x10, true, true, {false, true, false}}, // PC only wins over everything
        {0x30, true, true, {false, true, false}},
        {0x20, true, false, {true, false, true}},  // instrument only, while on line
        {0x120, true, false, {true, false, true}}, // ... before 0x100
        {0x20, false, true, {false, true, false}}, // off line: falls through to the PC
        {0x120, false, false, {false, true, false}},
        {0x100, true, true, {false, true, true}}, // PC first, instrument still choosable
        {0x100, false, false, {false, true, false}},
        {0x0, true, true, {true, true, true}}, // no flags: the side of the start name
        {0x0, true, false, {false, true, true}},
        {0x0, false, true, {false, true, false}}, // off line: the PC alone
        {0x4F, true, true, {true, true, true}},   // the other bits do not choose a side
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << "flags 0x" << row.flags << " online " << row.online
                                        << " remote start " << row.remoteStart);
        EXPECT_EQ(ChooseSelectLocation(row.flags, row.online, row.remoteStart), row.expected);
    }
}

TEST_F(FileSelectRulesTest, OkAtStart) {
    struct Row {
        uint32_t flags;
        const wchar_t* name;
        bool enabled;
    };
    const Row rows[] = {
        {0x0, L"", false}, {0x0, L"a.mth", true}, {0x1, L"", true},    {0x4, L"", true},
        {0x10, L"", true}, {0x20, L"", false},    {0x100, L"", false}, {0x101, L"", true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "flags " << row.flags);
        EXPECT_EQ(SelectOkEnabledAtStart(row.flags, row.name), row.enabled);
    }
}

TEST_F(FileSelectRulesTest, FilterPairsAndEndings) {
    using Pairs = std::vector<std::pair<std::wstring, std::wstring>>;
    EXPECT_EQ(SplitSelectFilter(L"Method Files (*.mth; *.xmth)|*.mth;*.xmth|All Files (*.*)|*.*|"),
              (Pairs{{L"Method Files (*.mth; *.xmth)", L"*.mth;*.xmth"}, {L"All Files (*.*)", L"*.*"}}));
    EXPECT_EQ(SplitSelectFilter(L"Tune Report (*.txt)|*.txt|"), (Pairs{{L"Tune Report (*.txt)", L"*.txt"}}));
    EXPECT_EQ(SplitSelectFilter(L"A|*.a|Dangling"), (Pairs{{L"A", L"*.a"}}));
    EXPECT_EQ(SplitSelectFilter(L""), Pairs{});

    using Endings = std::vector<std::wstring>;
    EXPECT_EQ(SelectFilterEndings(L"*.mth;*.xmth"), (Endings{L".mth", L".xmth"}));
    EXPECT_EQ(SelectFilterEndings(L"*.vxs;*.vxz;*.vxsu;*.vqz;*.vqs;*.acq").size(), 6u);
    EXPECT_EQ(SelectFilterEndings(L"*.*"), Endings{});
    EXPECT_EQ(SelectFilterEndings(L"*.mth;*.*"), Endings{}) << "a last .* filters nothing";
    EXPECT_EQ(SelectFilterEndings(L""), Endings{});
}

TEST_F(FileSelectRulesTest, WhichEntriesAreListed) {
    const std::vector<std::wstring> methods = SelectFilterEndings(L"*.mth;*.xmth");
    const std::vector<std::wstring> all = SelectFilterEndings(L"*.*");
    struct Row {
        FileInfo entry;
        const std::vector<std::wstring>* endings;
        bool showTilde;
        bool listed;
    };
    const Row rows[] = {
        {Entry(L"Default.mth", 10), &methods, false, true},
        {Entry(L"Site.xmth", 10), &methods, false, true},
        {Entry(L"SURVEY.MTH", 10), &methods, false, true}, // types ignore letter case
        {Entry(L"run1.vxs", 10), &methods, false, false},
        {Entry(L"mth", 10), &methods, false, false},       // the ending includes the dot
        {Entry(L"a.mth.bak", 10), &methods, false, false}, // at the end only
        {Entry(L"run1.vxs", 10), &all, false, true},
        {Entry(L"Data", -1), &methods, false, true}, // folders are never filtered
        {Folder(L"Method"), &methods, false, true},  // ... nor those marked by their attribute
        {Entry(L"..", -1), &all, false, false},
        {Entry(L"~lock.mth", 10), &methods, false, false},
        {Entry(L"~lock.mth", 10), &methods, true, true},
        {Entry(L"~Old", -1), &all, false, false}, // hidden folders too
        {Entry(L"~Old", -1), &all, true, true},
        {Entry(L"a~b.mth", 10), &methods, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message()
                     << "entry " << testing::PrintToString(row.entry.name) << " tilde " << row.showTilde);
        EXPECT_EQ(SelectListsEntry(row.entry, *row.endings, row.showTilde), row.listed);
    }
}

TEST_F(FileSelectRulesTest, SizesInKilobytesRoundedUp) {
    EXPECT_EQ(SelectSizeText(0), L"0 KB");
    EXPECT_EQ(SelectSizeText(1), L"1 KB");
    EXPECT_EQ(SelectSizeText(1024), L"1 KB");
    EXPECT_EQ(SelectSizeText(1025), L"2 KB");
    EXPECT_EQ(SelectSizeText(INT32_MAX), L"2097152 KB") << "no overflow at the top of the range";
}

TEST_F(FileSelectRulesTest, NamesAndDisplayNames) {
    EXPECT_EQ(SelectNamesText({}), L"");
    EXPECT_EQ(SelectNamesText({L"run 1.vxs"}), L"run 1.vxs");
    EXPECT_EQ(SelectNamesText({L"a.vxs", L"b c.vxs"}), L"\"a.vxs\" \"b c.vxs\"");

    EXPECT_EQ(SelectDisplayName(L"/Method", L"Default.mth", L"10.0.0.5"), L"/Method/Default.mth on 10.0.0.5");
    EXPECT_EQ(SelectDisplayName(L"/", L"x.mth", L"10.0.0.5"), L"/x.mth on 10.0.0.5");
    EXPECT_EQ(SelectDisplayName(L"/home/op", L"x.mth", L""), L"/home/op/x.mth");
}
