// SPDX-License-Identifier: Apache-2.0
#include "terminalprogress.h"

#include "interruptguard.h"
#include "pumpwait.h"
#include "remotename.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include <unistd.h>

namespace {

std::string HumanBytes(double bytes) {
    const char* units[] = {"B", "KiB", "MiB", "GiB", "TiB"};
    int unit = 0;
    while (bytes >= 1024 && unit < 4) {
        bytes /= 1024;
        ++unit;
    }
    char text[32];
    std::snprintf(text, sizeof text, unit == 0 ? "%.0f %s" : "%.1f %s", bytes, units[unit]);
    return text;
}

std::string Clock(double seconds) {
    if (seconds < 0 || seconds > 359999)
        return "--:--";
    const long s = long(seconds + 0.5);
    char text[32];
    if (s >= 3600)
        std::snprintf(text, sizeof text, "%ld:%02ld:%02ld", s / 3600, s / 60 % 60, s % 60);
    else
        std::snprintf(text, sizeof text, "%ld:%02ld", s / 60, s % 60);
    return text;
}

} // namespace

TerminalProgress::TerminalProgress(const CliContext& ctx)
    : m_enabled(!ctx.options.quiet && isatty(STDERR_FILENO) != 0), m_quiet(ctx.options.quiet),
      m_start(TickCount()) {}

TerminalProgress::~TerminalProgress() {
    std::lock_guard lock(m_mutex);
    if (m_drawn)
        std::cerr << "\n";
}

void TerminalProgress::SetCurrentFile(const std::wstring& name) {
    std::lock_guard lock(m_mutex);
    m_file = name;
    m_fileBytes = 0;
    m_fileSize = -1;
    ++m_filesStarted;
}

void TerminalProgress::SetFileSize(int64_t bytes) {
    std::lock_guard lock(m_mutex);
    m_fileSize = bytes;
}

void TerminalProgress::SetTotal(int64_t bytes, int files) {
    std::lock_guard lock(m_mutex);
    m_jobBytes = bytes;
    m_jobFiles = files;
}

void TerminalProgress::AddBytes(int64_t bytes) {
    m_total += bytes;
    std::lock_guard lock(m_mutex);
    m_fileBytes += bytes;
    if (TickCount() - m_lastDraw >= 100)
        Draw(false);
}

void TerminalProgress::RetryFile(const std::wstring& note) {
    std::lock_guard lock(m_mutex);
    m_total -= m_fileBytes;
    m_fileBytes = 0;
    if (m_filesStarted > 0)
        --m_filesStarted;
    if (m_quiet)
        return;
    std::cerr << (m_drawn ? "\r\x1b[K" : "") << "vexa: " << ToUtf8(LastPathPart(m_file)) << ": "
              << ToUtf8(note) << "\n"
              << std::flush;
    m_drawn = false;
}

bool TerminalProgress::IsCancelled() const {
    return InterruptGuard::Interrupted();
}

void TerminalProgress::SetDone() {
    std::lock_guard lock(m_mutex);
    Draw(true);
}

// Called with the lock held.
void TerminalProgress::Draw(bool final) {
    if (!m_enabled || (final && !m_drawn && m_total == 0))
        return;
    m_lastDraw = TickCount();
    const double seconds = std::max(0.001, (TickCount() - m_start) / 1000.0);
    const double speed = double(m_total.load()) / seconds;
    // A job of several files shows the job's share; a single file its own.
    const bool job = m_jobBytes > 0 && m_jobFiles > 1;
    const int64_t done = job ? m_total.load() : m_fileBytes;
    const int64_t size = job ? m_jobBytes : m_fileSize;
    std::string name = ToUtf8(LastPathPart(m_file));
    if (name.size() > 28)
        name = name.substr(0, 25) + "...";
    std::string line = name;
    if (job)
        line += " (" + std::to_string(m_filesStarted) + "/" + std::to_string(m_jobFiles) + ")";
    if (size > 0) {
        const double share = std::min(1.0, double(done) / double(size));
        const int width = 24, filled = int(share * width);
        line += " [" + std::string(size_t(filled), '#') + std::string(size_t(width - filled), ' ') + "] ";
        char percent[8];
        std::snprintf(percent, sizeof percent, "%3d%%", int(share * 100));
        line += percent;
    }
    line += "  " + HumanBytes(double(done)) + "  " + HumanBytes(speed) + "/s";
    if (size > 0 && !final)
        line += "  ETA " + Clock(speed > 0 ? double(size - done) / speed : -1);
    std::cerr << "\r" << line << "\x1b[K" << std::flush;
    m_drawn = true;
}
