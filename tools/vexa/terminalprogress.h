// SPDX-License-Identifier: Apache-2.0
#pragma once
// The progress of a transfer on stderr: a bar with bytes, speed and time left, drawn only when stderr
// is a terminal and the run is not quiet. Cancelled by Ctrl+C (see InterruptGuard). Thread-safe.
#include "cli.h"
#include "copyprogress.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>

class TerminalProgress : public ICopyProgress {
public:
    explicit TerminalProgress(const CliContext& ctx);
    ~TerminalProgress() override;

    void SetCurrentFile(const std::wstring& name) override;
    void SetFileSize(int64_t bytes) override;
    void AddBytes(int64_t bytes) override;
    bool IsCancelled() const override;
    void SetDone() override;
    void SetTotal(int64_t bytes, int files) override;
    // Says why on stderr (unless quiet), on a line of its own even without a terminal.
    void RetryFile(const std::wstring& note) override;

    int64_t BytesMoved() const { return m_total.load(); }

private:
    void Draw(bool final);

    bool m_enabled;
    bool m_quiet;
    mutable std::mutex m_mutex;
    std::wstring m_file;
    int64_t m_fileSize = -1;
    int64_t m_fileBytes = 0;
    int64_t m_jobBytes = -1;
    int m_jobFiles = 0;
    int m_filesStarted = 0;
    std::atomic<int64_t> m_total{0};
    uint32_t m_start;
    uint32_t m_lastDraw = 0;
    bool m_drawn = false;
};
