// SPDX-License-Identifier: Apache-2.0
#include "methodrun.h"

#include <algorithm>

void MethodRun::Started(const std::wstring& path, int totalSeconds, int64_t nowMs) {
    Begin(path, true, nowMs);
    m_total = totalSeconds > 0 ? totalSeconds : -1;
}

void MethodRun::Begin(const std::wstring& path, bool here, int64_t nowMs) {
    m_phase = Phase::Running;
    m_path = path;
    m_dataFile.clear();
    m_startedHere = here;
    m_seenRunning = false;
    m_notified = false;
    m_total = -1;
    m_elapsed = 0;
    m_elapsedAt = nowMs;
    m_changedAt = nowMs;
}

void MethodRun::Finish(Phase phase, int64_t nowMs) {
    if (m_phase == Phase::Running) {
        m_elapsed = ElapsedAt(nowMs);
        m_elapsedAt = nowMs;
    }
    m_phase = phase;
    if (phase == Phase::Finished && m_total > 0)
        m_elapsed = m_total;
    m_changedAt = nowMs;
}

void MethodRun::Observe(const InstrumentActivity& activity, int64_t nowMs) {
    if (!activity.hasStatus)
        return;
    const bool fresh = nowMs - m_changedAt >= kStaleMs;
    if (!activity.IsRunning()) {
        // The end's notification may still be on its way; it adds the data file when it comes.
        if (m_phase == Phase::Running && (m_seenRunning || fresh))
            Finish(Phase::Finished, nowMs);
        return;
    }
    const std::wstring path = activity.ProcessPath();
    if (m_phase != Phase::Running) {
        if (HasEnded() && !fresh)
            return;
        Begin(path, false, nowMs);
    } else if (path != m_path && m_seenRunning) {
        // Another run followed unseen: this one is someone else's.
        Begin(path, false, nowMs);
    }
    m_seenRunning = true;
    if (activity.total > 0)
        m_total = activity.total;
    if (activity.elapsed >= 0) {
        m_elapsed = activity.elapsed;
        m_elapsedAt = nowMs;
    }
}

void MethodRun::Ended(const std::wstring& text, int64_t nowMs) {
    const std::wstring stopped = L"method stopped";
    const bool wasStopped = text.rfind(stopped, 0) == 0;
    const std::wstring verb = wasStopped ? stopped : L"method finished";
    std::wstring file;
    if (text.rfind(verb, 0) == 0 && text.size() > verb.size() + 1 && text[verb.size()] == L' ') {
        file = text.substr(verb.size() + 1);
        file.erase(0, file.find_first_not_of(L' '));
        file.erase(file.find_last_not_of(L' ') + 1);
    }
    // A notification after the status already showed the end completes that end.
    if (m_phase == Phase::Idle && file.empty())
        return;
    if (m_phase == Phase::Running || m_phase == Phase::Idle)
        Finish(wasStopped ? Phase::Stopped : Phase::Finished, nowMs);
    else if (wasStopped)
        m_phase = Phase::Stopped;
    m_dataFile = file;
    m_notified = true;
}

void MethodRun::Clear() {
    if (HasEnded()) {
        m_phase = Phase::Idle;
        m_dataFile.clear();
    }
}

int MethodRun::ElapsedAt(int64_t nowMs) const {
    if (m_phase == Phase::Idle)
        return -1;
    if (m_phase != Phase::Running)
        return m_elapsed;
    const int64_t since = std::max<int64_t>(0, nowMs - m_elapsedAt) / 1000;
    const int64_t elapsed = m_elapsed + since;
    return int(m_total > 0 ? std::min<int64_t>(elapsed, m_total) : elapsed);
}
