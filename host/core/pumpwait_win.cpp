// SPDX-License-Identifier: Apache-2.0
#include "pumpwait.h"

#include <windows.h>

#include <algorithm>

namespace {
constexpr DWORD kPumpSliceMs = 100;
// QS_ALLINPUT with raw input, touch and pointer input.
constexpr DWORD kWakeMask = 0x1DFF;

// Removes and dispatches every queued window message of this thread (no TranslateMessage).
void DispatchWindowMessages() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageW(&message);
}
} // namespace

uint32_t TickCount() {
    return GetTickCount();
}

// Any thread may own windows, so there is always a queue to look at.
bool ThreadHasEvents() {
    return true;
}

void DispatchThreadEvents() {
    DispatchWindowMessages();
    if (PumpDispatcher* dispatcher = ThreadPumpDispatcher())
        dispatcher->DispatchPending();
}

// With a dispatcher (a Qt event loop) it does the waiting; otherwise the thread's message queue does.
void PumpWait(uint32_t ms) {
    if (static_cast<int32_t>(ms) <= 0)
        return;
    const DWORD start = GetTickCount();
    for (DWORD elapsed = 0; elapsed < ms; elapsed = GetTickCount() - start) {
        const DWORD slice = std::min<DWORD>(ms - elapsed, kPumpSliceMs);
        if (PumpDispatcher* dispatcher = ThreadPumpDispatcher())
            dispatcher->WaitForEvents(static_cast<int>(slice));
        else
            MsgWaitForMultipleObjects(0, nullptr, TRUE, slice, kWakeMask);
        DispatchThreadEvents();
    }
}
