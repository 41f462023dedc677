// SPDX-License-Identifier: Apache-2.0
#pragma once
// Work handed between the window's thread and a QThreadPool: a task started on the pool, and the
// results the tasks leave for the window's thread.
//
// Start builds the task whole before it tells ThreadSanitizer of the hand-over (threadhandover.h), so
// its pass checks what the task touches instead of reporting the pool's own hand-over. Results go back
// through a ResultQueue under a std::mutex, which it sees as it is.
#include "threadhandover.h"

#include <QThreadPool>

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace PoolHandOver {

// The token is one per call site, not per task: the task's own captures cannot be read before the
// acquire that makes them safe to read. Its end is released on the pool itself, for WaitForDone.
template <class Task> void Start(QThreadPool& pool, Task task) {
    static char token;
    std::function<void()> run = [&pool, task = std::move(task)]() mutable {
        ThreadHandOver::Acquire(&token);
        task();
        ThreadHandOver::Release(&pool);
    };
    ThreadHandOver::Release(&token);
    pool.start(std::move(run));
}

// Waits for every task started on `pool`: afterwards what they touched may be read or destroyed.
inline void WaitForDone(QThreadPool& pool) {
    pool.waitForDone();
    ThreadHandOver::Acquire(&pool);
}

} // namespace PoolHandOver

// What pool tasks leave for the window's thread. Push on any thread; TakeAll on the window's thread.
template <class Result> class ResultQueue {
public:
    // True when the queue was empty: the caller posts one wake-up for everything pushed until the
    // window's thread takes it.
    bool Push(Result result) {
        std::lock_guard lock(m_mutex);
        m_results.push_back(std::move(result));
        return m_results.size() == 1;
    }

    std::vector<Result> TakeAll() {
        std::lock_guard lock(m_mutex);
        return std::exchange(m_results, {});
    }

private:
    std::mutex m_mutex;
    std::vector<Result> m_results;
};
