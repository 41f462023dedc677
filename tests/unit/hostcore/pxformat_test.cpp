// SPDX-License-Identifier: Apache-2.0
#include "pxformat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace {
struct Row {
    const char* what;
    std::wstring actual;
    std::wstring expected;
};

void Check(const std::vector<Row>& rows) {
    for (const auto& row : rows)
        EXPECT_EQ(row.actual, row.expected) << row.what;
}
} // namespace

TEST(PXFormat, WideAndNarrowStrings) {
    const wchar_t* nullWide = nullptr;
    Check({
        {"%s wide", PXFormat(L"<%s>", L"wide"), L"<wide>"},
        {"%S narrow", PXFormat(L"<%S>", "narrow"), L"<narrow>"},
        {"%hs narrow", PXFormat(L"<%hs>", "narrow"), L"<narrow>"},
        {"%ls wide", PXFormat(L"<%ls>", L"w"), L"<w>"},
        {"%S utf-8",
         PXFormat(L"%S", "\xC2\xB0"
                         "C"),
         L"\u00b0C"},
        {"%5s", PXFormat(L"[%5s]", L"ab"), L"[   ab]"},
        {"%-5s", PXFormat(L"[%-5s]", L"ab"), L"[ab   ]"},
        {"%.2s", PXFormat(L"[%.2s]", L"abcdef"), L"[ab]"},
        {"%*s", PXFormat(L"[%*s]", 4, L"x"), L"[   x]"},
        {"%-*s negative", PXFormat(L"[%*s]", -3, L"x"), L"[x  ]"},
        {"null", PXFormat(L"%s", nullWide), L"(null)"},
        {"%c", PXFormat(L"%c%c", L'A', 0x20AC), L"A\u20ac"},
        {"%3c", PXFormat(L"[%3c]", L'z'), L"[  z]"},
        {"%%", PXFormat(L"100%%"), L"100%"},
        {"trailing %", PXFormat(L"50%"), L"50%"},
        {"unknown conversion", PXFormat(L"%q%d", 5), L"%q5"},
        {"file name", PXFormat(L"%s%0*d.%s", L"Run", 3, 1000, L"vxs"), L"Run1000.vxs"},
        {"file name pad", PXFormat(L"%s%0*d.%s", L"Run", 3, 8, L"vxs"), L"Run008.vxs"},
        {"replay command", PXFormat(L"\"%s\" -speed=%d", L"/Data/a b.vxs", 2), L"\"/Data/a b.vxs\" -speed=2"},
    });
}

TEST(PXFormat, Integers) {
    Check({
        {"%d", PXFormat(L"%d", -42), L"-42"},
        {"%i", PXFormat(L"%i", 7), L"7"},
        {"%2d", PXFormat(L"[%2d]", 5), L"[ 5]"},
        {"%2d wide", PXFormat(L"[%2d]", 123), L"[123]"},
        {"%-4d", PXFormat(L"[%-4d]", 5), L"[5   ]"},
        {"%04d", PXFormat(L"%04d", -5), L"-005"},
        {"%+d", PXFormat(L"%+d", 5), L"+5"},
        {"% d", PXFormat(L"% d", 5), L" 5"},
        {"%.3d", PXFormat(L"%.3d", 7), L"007"},
        {"%0*d", PXFormat(L"%0*d", 5, 42), L"00042"},
        {"%u", PXFormat(L"%u", 4294967295u), L"4294967295"},
        {"%x", PXFormat(L"%x", 0xBEEFu), L"beef"},
        {"%X", PXFormat(L"%X", 0xBEEFu), L"BEEF"},
        {"%#x", PXFormat(L"%#x", 255u), L"0xff"},
        {"%08X", PXFormat(L"%08X", 0x1A2Bu), L"00001A2B"},
        {"%o", PXFormat(L"%o", 8u), L"10"},
        {"%ld", PXFormat(L"%ld", -123456L), L"-123456"},
        {"%lld", PXFormat(L"%lld", -9000000000LL), L"-9000000000"},
        {"%llu", PXFormat(L"%llu", 18446744073709551615ULL), L"18446744073709551615"},
        {"%I64d", PXFormat(L"%I64d", int64_t{1} << 40), L"1099511627776"},
        {"%I64u", PXFormat(L"%I64u", uint64_t{1} << 63), L"9223372036854775808"},
        {"%I32d", PXFormat(L"%I32d", -1), L"-1"},
        {"%zu", PXFormat(L"%zu", size_t{12}), L"12"},
        {"%hd", PXFormat(L"%hd", 70000), L"4464"},
        {"int min", PXFormat(L"%d", std::numeric_limits<int>::min()), L"-2147483648"},
        {"mixed", PXFormat(L"%d/%s/%u", 1, L"two", 3u), L"1/two/3"},
    });
}

TEST(PXFormat, FloatingPoint) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    Check({
        {"%.01f", PXFormat(L"%.01f", 123.4), L"123.4"},
        {"%.01f negative half", PXFormat(L"%.01f", -0.5), L"-0.5"},
        {"%f", PXFormat(L"%f", 1.5), L"1.500000"},
        {"%.02e", PXFormat(L"%.02e", 2.5e-3), L"2.50e-03"},
        {"%.02E", PXFormat(L"%.02E", 12345.0), L"1.23E+04"},
        {"%g", PXFormat(L"%g", 0.0001), L"0.0001"},
        {"%G", PXFormat(L"%G", 1e-10), L"1E-10"},
        {"%8.3f", PXFormat(L"[%8.3f]", 3.14159), L"[   3.142]"},
        {"%-8.1f", PXFormat(L"[%-8.1f]", 2.0), L"[2.0     ]"},
        {"%+.1f", PXFormat(L"%+.1f", 2.0), L"+2.0"},
        {"%.*f", PXFormat(L"%.*f", 2, 1.0 / 3), L"0.33"},
        {"%#.0f", PXFormat(L"%#.0f", 3.0), L"3."},
        {"%Lf", PXFormat(L"%.2Lf", 1.25L), L"1.25"},
        {"big", PXFormat(L"%.0f", 1e30), L"1000000000000000019884624838656"},
        // Not-a-number and infinities as the platform's printf writes them.
        {"nan %.02e", PXFormat(L"%.02e", nan), L"nan"},
        {"nan %.01f", PXFormat(L"%.01f", nan), L"nan"},
        {"inf", PXFormat(L"%.01f", inf), L"inf"},
        {"-inf", PXFormat(L"%e", -inf), L"-inf"},
        {"%E inf", PXFormat(L"%E", inf), L"INF"},
    });
}

TEST(PXFormatMessage, Inserts) {
    Check({
        {"s and d", PXFormatMessage(L"Delete %1!s! (%2!d! files)?", L"Data", 3), L"Delete Data (3 files)?"},
        {"plain %1", PXFormatMessage(L"File %1 not found", L"x.mth"), L"File x.mth not found"},
        {"repeat", PXFormatMessage(L"%1!s!-%2!d!-%1!s!", L"a", 7), L"a-7-a"},
        {"out of order", PXFormatMessage(L"%2!s! before %1!s!", L"one", L"two"), L"two before one"},
        {"u and x", PXFormatMessage(L"%1!u! %2!x! %3!X!", 4000000000u, 255u, 255u), L"4000000000 ff FF"},
        {"width", PXFormatMessage(L"[%1!5d!]", 42), L"[   42]"},
        {"float", PXFormatMessage(L"%1!.1f! C", 36.55), L"36.5 C"},
        {"percent", PXFormatMessage(L"100%% done %1!d!", 1), L"100% done 1"},
        {"newline", PXFormatMessage(L"a%nb"), L"a\nb"},
        {"%0 ends", PXFormatMessage(L"keep%0drop"), L"keep"},
        {"escapes", PXFormatMessage(L"%! %. %t"), L"! . \t"},
        {"two digits", PXFormatMessage(L"%10", L"a", L"b", L"c", L"d", L"e", L"f", L"g", L"h", L"i", L"ten"),
         L"ten"},
        {"text after insert", PXFormatMessage(L"%1!s!!", L"x"), L"x!"},
        {"trailing %", PXFormatMessage(L"50%"), L"50%"},
        {"no inserts", PXFormatMessage(L"plain text"), L"plain text"},
    });
}
