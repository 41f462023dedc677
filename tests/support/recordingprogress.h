// SPDX-License-Identifier: Apache-2.0
#pragma once
// A copy progress that records what a copy job reports and cancels once `cancelAfter` bytes went by
// (never when negative). Thread-safe, as the interface asks. Header only: the support library itself
// does not link the host core.
#include "copyprogress.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <vector>

class RecordingProgress : public ICopyProgress {
public:
    void SetCurrentFile(const std::wstring& name) override {
        std::lock_guard lock(m_mutex);
        files.push_back(name);
    }
    void SetFileSize(int64_t bytes) override {
        std::lock_guard lock(m_mutex);
        sizes.push_back(bytes);
    }
    void AddBytes(int64_t bytes) override {
        total += bytes;
        {
            std::lock_guard lock(m_mutex);
            blocks.push_back(bytes);
        }
        if (onBlock)
            onBlock();
    }
    bool IsCancelled() const override { return cancelAfter >= 0 && total >= cancelAfter; }
    void SetDone() override { ++done; }
    void SetTotal(int64_t bytes, int count) override {
        totalBytes = bytes;
        totalFiles = count;
    }

    // Read once the copy has ended.
    std::vector<std::wstring> files;
    std::vector<int64_t> sizes, blocks;
    std::atomic<int64_t> total{0};
    std::atomic<int> done{0};
    std::atomic<int64_t> totalBytes{-1};
    std::atomic<int> totalFiles{-1};
    // Set before the copy.
    int64_t cancelAfter = -1;
    std::function<void()> onBlock;

private:
    std::mutex m_mutex;
};
