// SPDX-License-Identifier: Apache-2.0
#include "text.h"

#include <gtest/gtest.h>

#include <string>

TEST(Text, Utf8RoundTrips) {
    const std::wstring samples[] = {
        L"",
        L"plain ASCII",
        L"Grad \u00b0C, \u00e4\u00f6\u00fc\u00df",
        L"\u20ac and \u4e2d\u6587",
        // Non-BMP: a musical symbol and an emoji (surrogate pairs on 16-bit wchar_t).
        std::wstring(L"clef ") + FromUtf8("\xF0\x9D\x84\x9E") + FromUtf8("\xF0\x9F\x98\x80"),
    };
    for (const auto& sample : samples)
        EXPECT_EQ(FromUtf8(ToUtf8(sample)), sample);
    EXPECT_EQ(ToUtf8(FromUtf8("\xF0\x9F\x98\x80")), "\xF0\x9F\x98\x80");
    EXPECT_EQ(FromUtf8("\xF0\x9F\x98\x80").size(), sizeof(wchar_t) == 2 ? 2u : 1u);
    EXPECT_EQ(ToUtf8(L"\u00b0"), "\xC2\xB0");
}

TEST(Text, InvalidUtf8BecomesReplacementCharacter) {
    const std::wstring r(1, wchar_t(0xFFFD));
    struct Row {
        std::string bytes;
        std::wstring expected;
    } rows[] = {
        {"\xFF", r},
        {"a\x80z", L"a" + r + L"z"},
        {"\xC3", r},                         // truncated two-byte sequence at the end
        {"\xC3(", r + L"("},                 // lead byte followed by a non-continuation
        {"\xC0\xAF", r + r},                 // overlong '/'
        {"\xE0\x80\xAF", r + r + r},         // overlong three-byte form
        {"\xED\xA0\x80", r + r + r},         // encoded surrogate
        {"\xF4\x90\x80\x80", r + r + r + r}, // above U+10FFFF
        {"ok\xE2\x82", L"ok" + r + r},
    };
    for (const auto& row : rows)
        EXPECT_EQ(FromUtf8(row.bytes), row.expected) << "bytes: " << row.bytes.size();
}

TEST(Text, CaseInsensitiveComparison) {
    EXPECT_EQ(CompareNoCase(L"Run007.VXS", L"run007.vxs"), 0);
    EXPECT_TRUE(EqualsNoCase(L"ABC", L"abc"));
    EXPECT_FALSE(EqualsNoCase(L"ABC", L"abcd"));
    EXPECT_LT(CompareNoCase(L"abc", L"ABD"), 0);
    EXPECT_GT(CompareNoCase(L"b", L"A"), 0);
    EXPECT_LT(CompareNoCase(L"ab", L"ABC"), 0);
    // Folding to lower case (as _wcsicmp does) puts '[' and '_' before the letters.
    EXPECT_LT(CompareNoCase(L"[", L"A"), 0);
    EXPECT_LT(CompareNoCase(L"_x", L"AX"), 0);
    EXPECT_EQ(ToLowerW(L"MiXeD 123"), L"mixed 123");
    // Non-ASCII letters fold whatever the process locale is.
    EXPECT_EQ(ToLowerW(L"\u00c4RGER \u0391"), L"\u00e4rger \u03b1");
    EXPECT_TRUE(EqualsNoCase(L"\u00c4rger.MTH", L"\u00e4rger.mth"));
    EXPECT_LT(CompareNoCase(L"z", L"\u00e4"), 0);
    EXPECT_EQ(ReplaceAll(L"a\\Vexa\\b\\Vexa", L"\\Vexa", L""), L"a\\b");
    EXPECT_EQ(ReplaceAll(L"aaa", L"a", L"aa"), L"aaaaaa");
    EXPECT_EQ(ReplaceAll(L"abc", L"", L"x"), L"abc");
}

TEST(Text, TrimBlanks) {
    EXPECT_EQ(TrimBlanks(" \t key = v \r\n"), "key = v");
    EXPECT_EQ(TrimBlanks("inner  blanks stay"), "inner  blanks stay");
    EXPECT_EQ(TrimBlanks(" \r\n\t"), "");
    EXPECT_EQ(TrimBlanks(""), "");
}
