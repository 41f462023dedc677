// SPDX-License-Identifier: Apache-2.0
#include "sensoraddress.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>

namespace {
uint32_t Dotted(const char* text) {
    in_addr address{};
    inet_pton(AF_INET, text, &address);
    return address.s_addr;
}
} // namespace

TEST(SensorAddress, Validity) {
    struct Row {
        std::wstring host;
        bool valid;
    } rows[] = {
        {L"10.0.0.5", true},
        {L"vexaron-17", true},
        {L"instrument.lab.local", true},
        {L"", false},
        {L"host:21", false},
        {L"@host", false},
        {L"a/b", false},
        {L"a\\b", false},
        {L"two words", false},
        {L"tab\there", false},
        {std::wstring(253, L'a'), true},
        {std::wstring(254, L'a'), false},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ISensorAddress(row.host).IsValid(), row.valid) << testing::PrintToString(row.host);
}

TEST(SensorAddress, Resolution) {
    EXPECT_EQ(get_inet_addr(L"10.0.0.5"), Dotted("10.0.0.5"));
    EXPECT_EQ(get_inet_addr(L"127.3.4.5"), Dotted("127.3.4.5"));
    EXPECT_EQ(get_inet_addr(L"localhost"), Dotted("127.0.0.1"));
    // Texts that cannot name a host give 0 without a lookup.
    EXPECT_EQ(get_inet_addr(L""), 0u);
    EXPECT_EQ(get_inet_addr(L"not a host"), 0u);
    EXPECT_EQ(get_inet_addr(L"@@@:::"), 0u);
    EXPECT_EQ(get_inet_addr(L"0.0.0.0"), 0u);
}
