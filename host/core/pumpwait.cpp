#include "pumpwait.h"

#include <algorithm>
#include <chrono>
#include <thread>

#ifdef _WIN32
#include <winsock2.h>
#else
#include <cerrno>
#include <poll.h>
#endif

namespace {
thread_local PumpDispatcher* t_dispatcher = nullptr;

// Readiness checks of PumpWaitSocket are cut this fine, so a ready socket is noticed within a few
// milliseconds while events are still dispatched between checks.
constexpr int kSocketSliceMs = 10;
constexpr int kPumpSliceMs = 100;

// Waits up to `ms` for the socket; -1 on a poll failure, 0 on time-out, 1 when ready.
int PollSocket(intptr_t socket, bool forWrite, int ms) {
#ifdef _WIN32
    WSAPOLLFD fd{};
    fd.fd = static_cast<SOCKET>(socket);
    fd.events = forWrite ? POLLWRNORM : POLLRDNORM;
    const int n = WSAPoll(&fd, 1, ms);
#else
    pollfd fd{};
    fd.fd = static_cast<int>(socket);
    fd.events = forWrite ? POLLOUT : POLLIN;
    int n = poll(&fd, 1, ms);
    if (n < 0 && errno == EINTR)
        n = 0;
#endif
    if (n < 0)
        return -1;
    if (n == 0)
        return 0;
    // Errors and hang-ups count as ready: the following send/recv reports them.
    return 1;
}
} // namespace

PumpDispatcher* SetThreadPumpDispatcher(PumpDispatcher* dispatcher) {
    PumpDispatcher* previous = t_dispatcher;
    t_dispatcher = dispatcher;
    return previous;
}

PumpDispatcher* ThreadPumpDispatcher() {
    return t_dispatcher;
}

uint32_t TickCount() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
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
        if (PumpDispatcher* dispatcher = t_dispatcher) {
            dispatcher->WaitForEvents(slice);
            // A handler may have replaced the dispatcher; use the current one.
            if (PumpDispatcher* current = t_dispatcher)
                current->DispatchPending();
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(slice));
        }
    }
}

bool PumpWaitSocket(intptr_t socket, bool forWrite, int maxMs) {
    if (maxMs < 0)
        maxMs = 0;
    const uint32_t start = TickCount();
    for (;;) {
        const uint32_t elapsed = TickCount() - start;
        const int remaining = elapsed >= static_cast<uint32_t>(maxMs) ? 0 : maxMs - static_cast<int>(elapsed);
        const int slice = t_dispatcher ? std::min(remaining, kSocketSliceMs) : remaining;
        const int ready = PollSocket(socket, forWrite, slice);
        if (ready != 0)
            return ready > 0;
        if (PumpDispatcher* dispatcher = t_dispatcher)
            dispatcher->DispatchPending();
        if (remaining == 0)
            return false;
    }
}
