// SPDX-License-Identifier: Apache-2.0
#include "timeformat.h"

bool ToLocalTime(std::time_t seconds, std::tm* local) {
    return localtime_s(local, &seconds) == 0;
}

bool ToUtcTime(std::time_t seconds, std::tm* utc) {
    return gmtime_s(utc, &seconds) == 0;
}

// The C runtime's tm has no offset field: the difference of the local and UTC readings of one time.
int PXLocalTimeDiff(int64_t timeMs) {
    const std::time_t seconds = static_cast<std::time_t>(timeMs >= 0 ? timeMs / 1000 : (timeMs - 999) / 1000);
    std::tm local{};
    std::tm utc{};
    if (!ToLocalTime(seconds, &local) || gmtime_s(&utc, &seconds) != 0)
        return 0;
    utc.tm_isdst = local.tm_isdst;
    return int(std::difftime(std::mktime(&local), std::mktime(&utc)));
}
