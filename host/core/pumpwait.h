// SPDX-License-Identifier: Apache-2.0
#pragma once
// The message-pumping wait: network waits are cut into slices of at most 100 ms between which the
// calling thread's events are dispatched, so a user interface stays live during a slow instrument.
#include <cstdint>

// A thread's event dispatching (Qt's event loop in the studio). The CLI and worker threads have none,
// and then the waits simply sleep (on Windows: wait on and dispatch the thread's window messages).
class PumpDispatcher {
public:
    virtual ~PumpDispatcher() = default;
    // Waits up to `ms` for events to arrive for this thread; returns early when one does.
    virtual void WaitForEvents(int ms) = 0;
    // Removes and dispatches every queued event of this thread.
    virtual void DispatchPending() = 0;
};

// Sets the calling thread's dispatcher (null to remove); returns the previous one. Not owned.
PumpDispatcher* SetThreadPumpDispatcher(PumpDispatcher* dispatcher);
PumpDispatcher* ThreadPumpDispatcher();

// Waits about `ms` milliseconds while dispatching the calling thread's events. Returns at once when
// `ms` is 0 or negative as a signed number.
void PumpWait(uint32_t ms);

// The link's faster variant of PumpWait(100): waits until the socket is ready (readable, or writable
// when `forWrite`) or at most `maxMs`, dispatching events as PumpWait does. Returns true when ready.
bool PumpWaitSocket(intptr_t socket, bool forWrite, int maxMs);

// Milliseconds from a monotonic clock (GetTickCount on Windows).
uint32_t TickCount();

// Whether the calling thread may have events to dispatch between socket checks (window messages on
// Windows; a dispatcher elsewhere).
bool ThreadHasEvents();
// Dispatches what is queued for the calling thread now: window messages on Windows, then the
// dispatcher's events.
void DispatchThreadEvents();
