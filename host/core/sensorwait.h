// SPDX-License-Identifier: Apache-2.0
#pragma once
// Waiting for an instrument whose link dropped, for work that should go on once it is back (a copy
// that retries a file). Runs on any thread; on a thread with a pump dispatcher events keep flowing.
#include <functional>

class ISensorObject;

struct SensorWait {
    // How long to wait at most: the back-off reaches its 30 s steps after about a minute.
    static constexpr int kDefaultMaxWaitMs = 120000;
    int maxWaitMs = kDefaultMaxWaitMs;
    // Asked between tries; true ends the wait (a cancelled copy).
    std::function<bool()> cancelled;

    // True once the sensor is on line with its link open. The dropped link is closed first; then the
    // sensor is taken on line on the back-off schedule, unless another thread (the studio's
    // reconnection) brings it back first. False on time-out, cancel, or while the operator keeps it
    // off line.
    bool UntilOnline(ISensorObject& sensor) const;
};
