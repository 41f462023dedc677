// SPDX-License-Identifier: Apache-2.0
#include "processcpu.h"

#include <ctime>

double ProcessCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}
