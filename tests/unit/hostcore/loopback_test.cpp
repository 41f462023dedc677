// SPDX-License-Identifier: Apache-2.0
#include "loopback.h"

#include <gtest/gtest.h>

#include <set>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

// The fixture every server test relies on: distinct, bindable loopback addresses, never 127.0.0.1.
TEST(FreshLoopbackAddress, DistinctAndBindable) {
    std::set<std::string> seen;
    for (int i = 0; i < 600; ++i) {
        const std::string address = FreshLoopbackAddress();
        EXPECT_NE(address, "127.0.0.1");
        EXPECT_EQ(address.rfind("127.", 0), 0u) << address;
        EXPECT_TRUE(seen.insert(address).second) << "repeated " << address;
    }
    const std::string address = FreshLoopbackAddress();
    const int fd = socket(AF_INET, SOCK_STREAM, 0);
    ASSERT_GE(fd, 0);
    sockaddr_in sa{};
    sa.sin_family = AF_INET;
    ASSERT_EQ(inet_pton(AF_INET, address.c_str(), &sa.sin_addr), 1);
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr*>(&sa), sizeof sa), 0) << address;
    close(fd);
}
