// SPDX-License-Identifier: Apache-2.0
#include "winsockerror.h"

#include <gtest/gtest.h>

#include <cerrno>

TEST(WinsockError, ErrnoMapping) {
    struct Row {
        int err;
        int winsock;
    } rows[] = {
        {EWOULDBLOCK, 10035},  {EAGAIN, 10035},       {EINPROGRESS, 10035},  {ENOTCONN, 10057},
        {ETIMEDOUT, 10060},    {ECONNREFUSED, 10061}, {ECONNRESET, 10054},   {EPIPE, 10058},
        {ECONNABORTED, 10053}, {ENETUNREACH, 10051},  {EHOSTUNREACH, 10065}, {EADDRNOTAVAIL, 10049},
        {ENOTSOCK, 10038},     {ENOBUFS, 10055},      {ENETDOWN, 10050},     {EHOSTDOWN, 10064},
        {EADDRINUSE, 10048},   {ENOENT, ENOENT},      {EINVAL, EINVAL},      {0, 0},
    };
    for (const auto& row : rows)
        EXPECT_EQ(WinsockFromErrno(row.err), row.winsock) << "errno " << row.err;
    errno = ETIMEDOUT;
    EXPECT_EQ(LastSocketError(), 10060);
}

TEST(WinsockError, Descriptions) {
    struct Row {
        int code;
        const wchar_t* text;
    } rows[] = {
        {10060, L"10060 (connection timed out)"},
        {10057, L"10057 (not connected)"},
        {10061, L"10061 (connection refused)"},
        {10054, L"10054 (connection reset by peer)"},
        {10035, L"10035 (operation would block)"},
        {2, L"2 (file not found)"},
        {9, L"9 (no open file)"},
        {22, L"22 (invalid argument)"},
        {34, L"34 (result too large)"},
        {987654, L"987654"},
        {-5, L"-5"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(DescribeError(row.code), row.text);
    // Every mapped Winsock number has a meaning.
    for (int code : {10035, 10038, 10049, 10050, 10051, 10053, 10054, 10055, 10057, 10058, 10060, 10061,
                     10064, 10065, 13, 17, 28})
        EXPECT_FALSE(ErrorMeaning(code).empty()) << code;
}

namespace {
std::wstring FtpMeaning(int code) {
    return code == 550 ? L"file unavailable" : L"";
}
} // namespace

TEST(WinsockError, BackEndsAddMeanings) {
    EXPECT_EQ(DescribeError(550), L"550");
    RegisterErrorMeaningSource(FtpMeaning);
    EXPECT_EQ(DescribeError(550), L"550 (file unavailable)");
    EXPECT_EQ(DescribeError(10060), L"10060 (connection timed out)"); // the built-in table comes first
    EXPECT_EQ(DescribeError(551), L"551");
    UnregisterErrorMeaningSource(FtpMeaning);
    EXPECT_EQ(DescribeError(550), L"550");
}
