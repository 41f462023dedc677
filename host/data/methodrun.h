// SPDX-License-Identifier: Apache-2.0
#pragma once
// One instrument's run as the workstation follows it, from its status (the running process, elapsed
// and total seconds) and its method-ended notification. The caller gives the time: a steady clock in
// milliseconds. Not thread-safe; one owner.
//
// A status poll may have been on its way while a run started or ended, so a status that contradicts
// what just happened is taken as stale for a moment (kStaleMs): an idle status right after a start,
// a running one right after an end.
#include "instrumentactivity.h"

#include <cstdint>
#include <string>

class MethodRun {
public:
    enum class Phase { Idle, Running, Finished, Stopped };
    static constexpr int64_t kStaleMs = 2500;

    // A run this workstation has just started (the instrument accepted it).
    void Started(const std::wstring& path, int totalSeconds, int64_t nowMs);
    void Observe(const InstrumentActivity& activity, int64_t nowMs);
    // The notification's text: "method finished <data file>", "method stopped <data file>", or
    // "method finished" alone (a replay writes nothing).
    void Ended(const std::wstring& text, int64_t nowMs);
    // Forgets an ended run (the panel was dismissed); a running one stays.
    void Clear();

    Phase GetPhase() const { return m_phase; }
    bool IsRunning() const { return m_phase == Phase::Running; }
    bool HasEnded() const { return m_phase == Phase::Finished || m_phase == Phase::Stopped; }
    // The instrument path of the method (or replay) and the data file the run wrote (empty: none).
    const std::wstring& Path() const { return m_path; }
    const std::wstring& DataFile() const { return m_dataFile; }
    bool StartedHere() const { return m_startedHere; }
    // Whether the method-ended notification of this run has come.
    bool Notified() const { return m_notified; }
    // When the run started or ended, in the caller's milliseconds.
    int64_t ChangedAt() const { return m_changedAt; }
    // Seconds; -1 when the instrument does not say.
    int Total() const { return m_total; }
    // Seconds run by `nowMs`: the last reported count plus the time since, never past the total.
    int ElapsedAt(int64_t nowMs) const;

private:
    void Begin(const std::wstring& path, bool here, int64_t nowMs);
    void Finish(Phase phase, int64_t nowMs);

    Phase m_phase = Phase::Idle;
    std::wstring m_path;
    std::wstring m_dataFile;
    bool m_startedHere = false;
    bool m_seenRunning = false; // a status has shown this run running
    bool m_notified = false;
    int m_total = -1;
    int m_elapsed = 0;
    int64_t m_elapsedAt = 0; // when m_elapsed was reported
    int64_t m_changedAt = 0; // when the run started or ended
};
