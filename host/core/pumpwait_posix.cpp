// SPDX-License-Identifier: Apache-2.0
#include "pumpwait.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace {
constexpr int kPumpSliceMs = 100;
} // namespace

uint32_t TickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

bool ThreadHasEvents() {
    return ThreadPumpDispatcher() != nullptr;
}

void DispatchThreadEvents() {
    if (PumpDispatcher* dispatcher = ThreadPumpDispatcher())
        dispatcher->DispatchPending();
}

void PumpWait(uint32_t ms) {
    if (static_cast<int32_t>(ms) <= 0)
        return;
    // A finer clock than TickCount, so the wait never ends early by a rounding millisecond.
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(ms);
    for (auto now = Clock::now(); now < deadline; now = Clock::now()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - now).count();
        const int slice = static_cast<int>(std::min<long long>(left, kPumpSliceMs));
        if (PumpDispatcher* dispatcher = ThreadPumpDispatcher()) {
            dispatcher->WaitForEvents(slice);
            // A handler may have replaced the dispatcher; use the current one.
            DispatchThreadEvents();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(slice));
        }
    }
}
