// SPDX-License-Identifier: Apache-2.0
#pragma once
// What the operator chose to run, read before the question is asked: a method with its description and
// run time, or a sequence with its runs. Reading may fail (the question then says why, and a method
// that cannot be read can still be run: the instrument reads it, not the workstation).
#include "sequenceplan.h"

#include <QString>
#include <QStringList>

class RunRequest {
public:
    // Reads `file` (a full name, "@HOST:/Method/x.mth" or "@HOST:/Method/x.xmth").
    static RunRequest Load(const QString& file);

    bool IsSequence() const { return m_sequence; }
    const QString& File() const { return m_file; }
    // The file's name without its folder.
    QString Name() const;
    // A method's description and run time in seconds (-1 unknown).
    const QString& Description() const { return m_description; }
    int RunSeconds() const { return m_runSeconds; }
    // Why the file could not be read; empty when it was.
    const QString& Problem() const { return m_problem; }
    // A sequence's runs (empty for a method, or a sequence that could not be read).
    const SequencePlan& Plan() const { return m_plan; }

    // "Run Default.mth on VEXA-1?" with the description and the run time, or the sequence's runs.
    QString Question(const QString& instrument) const;
    // A sequence that cannot run (unreadable, no runs): why; empty when it can.
    QString Refusal() const;

private:
    QString m_file;
    bool m_sequence = false;
    QString m_description;
    int m_runSeconds = -1;
    QString m_problem;
    SequencePlan m_plan;
    QStringList m_steps; // "Default.mth x 2"
};
