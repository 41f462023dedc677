// SPDX-License-Identifier: Apache-2.0
#include "sequenceplan.h"

#include <algorithm>
#include <iterator>

SequencePlan::SequencePlan(std::vector<VexaSequenceStep> steps) {
    std::copy_if(steps.begin(), steps.end(), std::back_inserter(m_steps),
                 [](const VexaSequenceStep& step) { return step.repeat >= 1; });
}

int SequencePlan::TotalRuns() const {
    int total = 0;
    for (const VexaSequenceStep& step : m_steps)
        total += step.repeat;
    return total;
}

bool SequencePlan::HasNext() const {
    return !m_cancelled && m_step < m_steps.size();
}

SequencePlan::Run SequencePlan::Next() {
    const VexaSequenceStep& step = m_steps[m_step];
    Run run{step.method, int(m_step), ++m_repeat, step.repeat};
    ++m_started;
    if (m_repeat >= step.repeat) {
        ++m_step;
        m_repeat = 0;
    }
    return run;
}
