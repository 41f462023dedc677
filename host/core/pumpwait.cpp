// SPDX-License-Identifier: Apache-2.0
#include "pumpwait.h"

#include "socketcalls.h"

#include <algorithm>

namespace {
thread_local PumpDispatcher* t_dispatcher = nullptr;

// Readiness checks of PumpWaitSocket are cut this fine, so a ready socket is noticed within a few
// milliseconds while events are still dispatched between checks.
constexpr int kSocketSliceMs = 10;
} // namespace

PumpDispatcher* SetThreadPumpDispatcher(PumpDispatcher* dispatcher) {
    PumpDispatcher* previous = t_dispatcher;
    t_dispatcher = dispatcher;
    return previous;
}

PumpDispatcher* ThreadPumpDispatcher() {
    return t_dispatcher;
}

bool PumpWaitSocket(intptr_t socket, bool forWrite, int maxMs) {
    if (maxMs < 0)
        maxMs = 0;
    const uint32_t start = TickCount();
    for (;;) {
        const uint32_t elapsed = TickCount() - start;
        const int remaining = elapsed >= static_cast<uint32_t>(maxMs) ? 0 : maxMs - static_cast<int>(elapsed);
        const int slice = ThreadHasEvents() ? std::min(remaining, kSocketSliceMs) : remaining;
        const int ready = WaitForSocket(socket, forWrite, slice);
        if (ready != 0)
            return ready > 0;
        DispatchThreadEvents();
        if (remaining == 0)
            return false;
    }
}
