// SPDX-License-Identifier: Apache-2.0
#include "loopback.h"

#include "peersocket.h"

#include <atomic>

namespace {
std::atomic<unsigned> g_counter{0};
}

// 127.<a>.<b>.<c>: b and a come from the process id so that test programs running side by side pick
// different addresses; c (1..254) and the carry into a from a process-wide counter.
std::string FreshLoopbackAddress() {
    const unsigned pid = PeerSocket::ProcessId();
    const unsigned n = g_counter.fetch_add(1);
    const unsigned a = ((pid >> 8) + n / 254) & 0xFF;
    const unsigned b = pid & 0xFF;
    unsigned c = 1 + n % 254;
    if (a == 0 && b == 0 && c == 1)
        c = 2; // never 127.0.0.1: that is the address a real instrument setup might use
    return "127." + std::to_string(a) + "." + std::to_string(b) + "." + std::to_string(c);
}
