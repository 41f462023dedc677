// SPDX-License-Identifier: Apache-2.0
#pragma once
// The progress of one copy job, shared between the worker that reports it and the window that shows
// it. Every operation is thread-safe: the worker writes through ICopyProgress, the UI thread reads a
// snapshot and sets the cancel flag.
#include "copyprogress.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

class CCopyProgressState : public ICopyProgress {
public:
    struct Snapshot {
        std::wstring currentFile;
        int64_t fileSize = -1; // negative: unknown
        int64_t fileBytes = 0;
        int64_t totalBytes = 0; // copied so far, all files
        int64_t totalSize = -1; // negative: unknown
        int filesStarted = 0;
        int totalFiles = -1; // negative: unknown
        bool done = false;
        std::wstring note; // why the current file waits (a lost link); empty while it moves
    };

    // Back to the state of a job that has not started (the cancel flag included).
    void Reset();
    Snapshot Take() const;

    void Cancel() { m_cancelled.store(true); }

    void SetCurrentFile(const std::wstring& name) override;
    void SetFileSize(int64_t bytes) override;
    void AddBytes(int64_t bytes) override;
    bool IsCancelled() const override { return m_cancelled.load(); }
    void SetDone() override;
    void SetTotal(int64_t bytes, int files) override;
    void RetryFile(const std::wstring& note) override;

private:
    mutable std::mutex m_mutex;
    Snapshot m_state;
    std::atomic<bool> m_cancelled{false};
};
