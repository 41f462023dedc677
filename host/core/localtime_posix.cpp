// SPDX-License-Identifier: Apache-2.0
#include "timeformat.h"

bool ToLocalTime(std::time_t seconds, std::tm* local) {
    return localtime_r(&seconds, local) != nullptr;
}

bool ToUtcTime(std::time_t seconds, std::tm* utc) {
    return gmtime_r(&seconds, utc) != nullptr;
}

int PXLocalTimeDiff(int64_t timeMs) {
    const std::time_t seconds = static_cast<std::time_t>(timeMs >= 0 ? timeMs / 1000 : (timeMs - 999) / 1000);
    std::tm local{};
    if (!ToLocalTime(seconds, &local))
        return 0;
    return int(local.tm_gmtoff);
}
