// SPDX-License-Identifier: Apache-2.0
#include "processcpu.h"

#include <cstdint>

#include <windows.h>

double ProcessCpuSeconds() {
    FILETIME created, exited, kernel, user;
    if (!GetProcessTimes(GetCurrentProcess(), &created, &exited, &kernel, &user))
        return 0;
    auto seconds = [](const FILETIME& t) {
        return double((uint64_t(t.dwHighDateTime) << 32) | t.dwLowDateTime) / 1e7; // 100 ns units
    };
    return seconds(kernel) + seconds(user);
}
