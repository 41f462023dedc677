// SPDX-License-Identifier: Apache-2.0
#include "ftpsession.h"

#include <atomic>

namespace {
std::atomic<long long> g_stallMilliseconds{30000};
} // namespace

void SetFtpStallTimeout(std::chrono::milliseconds limit) {
    g_stallMilliseconds = limit.count() > 0 ? limit.count() : 1;
}

std::chrono::milliseconds FtpStallTimeout() {
    return std::chrono::milliseconds(g_stallMilliseconds.load());
}
