// SPDX-License-Identifier: Apache-2.0
#include "pumpwait.h"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

long long MsSince(Clock::time_point start) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

// A dispatcher with a queue of work items, as a UI thread's event queue.
class QueueDispatcher : public PumpDispatcher {
public:
    void Post(std::function<void()> work) {
        std::lock_guard lock(m_mutex);
        m_queue.push_back(std::move(work));
    }
    void WaitForEvents(int ms) override {
        ++waits;
        maxSlice = std::max(maxSlice, ms);
        std::this_thread::sleep_for(std::chrono::milliseconds(ms));
    }
    void DispatchPending() override {
        ++dispatches;
        for (;;) {
            std::function<void()> work;
            {
                std::lock_guard lock(m_mutex);
                if (m_queue.empty())
                    return;
                work = std::move(m_queue.front());
                m_queue.pop_front();
            }
            work();
        }
    }
    int waits = 0;
    int dispatches = 0;
    int maxSlice = 0;

private:
    std::mutex m_mutex;
    std::deque<std::function<void()>> m_queue;
};

struct DispatcherScope {
    explicit DispatcherScope(PumpDispatcher* d) : previous(SetThreadPumpDispatcher(d)) {}
    ~DispatcherScope() { SetThreadPumpDispatcher(previous); }
    PumpDispatcher* previous;
};

} // namespace

TEST(PumpWait, ZeroAndNegativeReturnAtOnce) {
    QueueDispatcher dispatcher;
    DispatcherScope scope(&dispatcher);
    const auto start = Clock::now();
    PumpWait(0);
    PumpWait(static_cast<uint32_t>(-1));
    PumpWait(0x80000000u);
    EXPECT_LT(MsSince(start), 50);
    EXPECT_EQ(dispatcher.waits, 0);
    EXPECT_EQ(dispatcher.dispatches, 0);
}

TEST(PumpWait, DispatchesQueuedWorkInSlices) {
    QueueDispatcher dispatcher;
    DispatcherScope scope(&dispatcher);
    int ran = 0;
    dispatcher.Post([&] { ++ran; });
    dispatcher.Post([&] { dispatcher.Post([&] { ++ran; }); }); // work posted by work runs too
    const auto start = Clock::now();
    PumpWait(250);
    const auto elapsed = MsSince(start);
    EXPECT_EQ(ran, 2);
    EXPECT_GE(elapsed, 250);
    EXPECT_LT(elapsed, 2000);
    EXPECT_LE(dispatcher.maxSlice, 100);
    EXPECT_GE(dispatcher.waits, 3);
    EXPECT_EQ(dispatcher.waits, dispatcher.dispatches);
}

TEST(PumpWait, SleepsWithoutDispatcher) {
    ASSERT_EQ(ThreadPumpDispatcher(), nullptr);
    const auto start = Clock::now();
    PumpWait(30);
    EXPECT_GE(MsSince(start), 30);
}

TEST(PumpWait, DispatcherIsPerThread) {
    QueueDispatcher dispatcher;
    DispatcherScope scope(&dispatcher);
    PumpDispatcher* seen = &dispatcher;
    std::thread([&] { seen = ThreadPumpDispatcher(); }).join();
    EXPECT_EQ(seen, nullptr);
    EXPECT_EQ(ThreadPumpDispatcher(), &dispatcher);
}

TEST(PumpWaitSocket, ReturnsPromptlyWhenReadable) {
    int fds[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, fds), 0);
    QueueDispatcher dispatcher;
    DispatcherScope scope(&dispatcher);

    // Not readable: waits the limit while dispatching between slices.
    auto start = Clock::now();
    EXPECT_FALSE(PumpWaitSocket(fds[0], false, 60));
    EXPECT_GE(MsSince(start), 55);
    EXPECT_GE(dispatcher.dispatches, 3);

    // Writable at once.
    EXPECT_TRUE(PumpWaitSocket(fds[0], true, 1000));

    // Becomes readable while waiting: returns long before the limit.
    std::thread writer([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        ASSERT_EQ(write(fds[1], "x", 1), 1);
    });
    start = Clock::now();
    EXPECT_TRUE(PumpWaitSocket(fds[0], false, 5000));
    EXPECT_LT(MsSince(start), 2000);
    writer.join();

    // A closed peer counts as ready (the following recv reports it).
    close(fds[1]);
    char c;
    ASSERT_EQ(read(fds[0], &c, 1), 1);
    EXPECT_TRUE(PumpWaitSocket(fds[0], false, 5000));
    close(fds[0]);
}

TEST(PumpWait, TickCountIsMonotonic) {
    const uint32_t a = TickCount();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const uint32_t b = TickCount();
    EXPECT_GE(b - a, 20u);
    EXPECT_LT(b - a, 2000u);
}
