// SPDX-License-Identifier: Apache-2.0
#pragma once
// The runs of a method sequence, in order: each step's method as many times as the step repeats it.
// The plan only counts; whoever runs it starts each run and asks for the next when one has ended.
#include "vexamethodsequence.h"

#include <string>
#include <vector>

class SequencePlan {
public:
    struct Run {
        std::wstring method; // the step's method, as the sequence names it
        int step = 0;        // 0-based
        int repeat = 0;      // 1-based, of `repeats`
        int repeats = 0;
    };

    SequencePlan() = default;
    // Steps that repeat less than once are left out.
    explicit SequencePlan(std::vector<VexaSequenceStep> steps);

    int TotalRuns() const;
    // Runs handed out by Next so far.
    int RunsStarted() const { return m_started; }
    bool HasNext() const;
    // The next run; call only when HasNext.
    Run Next();
    // No further runs: the sequence was stopped.
    void Cancel() { m_cancelled = true; }
    bool IsCancelled() const { return m_cancelled; }

private:
    std::vector<VexaSequenceStep> m_steps;
    size_t m_step = 0;
    int m_repeat = 0; // runs of m_step handed out
    int m_started = 0;
    bool m_cancelled = false;
};
