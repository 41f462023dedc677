// SPDX-License-Identifier: Apache-2.0
// The studio's poller: every sensor polls on a thread of its own, never twice at once, and holds its
// sensor until the poll has ended.
#include "sensorobject.h"
#include "sensorpoller.h"

#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace {

// Polls wait at a gate the test opens; counts how many polls run at the same time.
class Gate {
public:
    void Pass() {
        const int running = ++m_running;
        for (int seen = m_peak.load(); running > seen && !m_peak.compare_exchange_weak(seen, running);) {
        }
        std::unique_lock lock(m_mutex);
        m_opened.wait(lock, [this] { return m_open; });
        --m_running;
    }
    void Open() {
        std::lock_guard lock(m_mutex);
        m_open = true;
        m_opened.notify_all();
    }
    int Running() const { return m_running; }
    int Peak() const { return m_peak; }

private:
    std::mutex m_mutex;
    std::condition_variable m_opened;
    bool m_open = false;
    std::atomic<int> m_running{0}, m_peak{0};
};

class GatedSensor : public ISensorObject {
public:
    GatedSensor(Gate& gate, const wchar_t* host)
        : ISensorObject(nullptr, ISensorAddress(host)), m_gate(gate) {}
    void OnTimer(int64_t) override {
        ++polls;
        m_gate.Pass();
    }
    std::atomic<int> polls{0};

private:
    Gate& m_gate;
};

} // namespace

TEST(SensorPollerTest, PollsSensorsSideBySideAndEachOnceAtATime) {
    Gate gate;
    auto* first = new GatedSensor(gate, L"127.0.0.61");
    auto* second = new GatedSensor(gate, L"127.0.0.62");
    SensorPoller poller;
    QSignalSpy polled(&poller, &SensorPoller::polled);

    EXPECT_TRUE(poller.Start(first, 0));
    EXPECT_TRUE(poller.Start(second, 0));
    // Both wait at the gate together: a slow instrument does not hold up the next one.
    EXPECT_TRUE(QTest::qWaitFor([&] { return gate.Running() == 2; }, 5000));
    EXPECT_FALSE(poller.Start(first, 0)) << "a sensor still polling is not polled twice";
    EXPECT_TRUE(poller.IsPolling(first));
    EXPECT_EQ(first->RefCount(), 2) << "the poll holds its sensor";

    gate.Open();
    EXPECT_TRUE(QTest::qWaitFor([&] { return !poller.IsPolling(first) && !poller.IsPolling(second); }, 5000));
    EXPECT_EQ(first->RefCount(), 1);
    EXPECT_EQ(second->RefCount(), 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return polled.count() >= 1; }, 1000));
    EXPECT_LE(polled.count(), 2);

    EXPECT_TRUE(poller.Start(first, 0)) << "the next tick polls again";
    EXPECT_TRUE(QTest::qWaitFor([&] { return !poller.IsPolling(first); }, 5000));
    EXPECT_EQ(first->polls.load(), 2);
    EXPECT_EQ(gate.Peak(), 2);
    first->DecRef();
    second->DecRef();
}

TEST(SensorPollerTest, FinishWaitsForPollsAndLetsGoOfTheirSensors) {
    Gate gate;
    auto* sensor = new GatedSensor(gate, L"127.0.0.63");
    {
        SensorPoller poller;
        ASSERT_TRUE(poller.Start(sensor, 0));
        ASSERT_TRUE(QTest::qWaitFor([&] { return gate.Running() == 1; }, 5000));
        std::thread opener([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            gate.Open();
        });
        poller.Finish();
        opener.join();
        EXPECT_EQ(gate.Running(), 0) << "Finish returned before the poll had ended";
        EXPECT_FALSE(poller.IsPolling(sensor));
        EXPECT_EQ(sensor->RefCount(), 1);
    }
    // The poll's queued ending, delivered after Finish, finds nothing to release.
    QTest::qWait(50);
    EXPECT_EQ(sensor->RefCount(), 1);
    sensor->DecRef();
}
