// SPDX-License-Identifier: Apache-2.0
#include "runrequest.h"

#include "filetype.h"
#include "instrumentactivity.h"
#include "text.h"
#include "vexafileref.h"
#include "vexamethod.h"
#include "vexamethodsequence.h"

#include <QCoreApplication>

#include <algorithm>

namespace {
QString Tr(const char* text) {
    return QCoreApplication::translate("RunRequest", text);
}

QString LastPart(const QString& name) {
    const qsizetype cut = std::max(name.lastIndexOf(QLatin1Char('/')), name.lastIndexOf(QLatin1Char(':')));
    return name.mid(cut + 1);
}
} // namespace

RunRequest RunRequest::Load(const QString& file) {
    RunRequest request;
    request.m_file = file;
    request.m_sequence = EqualsNoCase(GetFileType(file.toStdWString()), L"xmth");
    VexaFileRef ref;
    if (!ref.Open(file.toStdWString())) {
        request.m_problem = QString::fromStdWString(ref.GetLastErrorText());
        return request;
    }
    if (request.m_sequence) {
        const VexaMethodSequence sequence(ref);
        if (!sequence.IsValid()) {
            request.m_problem = QString::fromStdWString(sequence.GetInvalidReason());
            return request;
        }
        request.m_plan = SequencePlan(sequence.GetSteps());
        for (const VexaSequenceStep& step : sequence.GetSteps())
            request.m_steps
                << Tr("%1 x %2").arg(LastPart(QString::fromStdWString(step.method))).arg(step.repeat);
        return request;
    }
    const VexaMethod method(ref);
    if (!method.IsValid()) {
        request.m_problem = QString::fromStdWString(method.GetInvalidReason());
        return request;
    }
    request.m_description = QString::fromStdWString(method.getDescription());
    const int64_t seconds = method.GetRunTimeSeconds();
    request.m_runSeconds = seconds > 0 ? int(seconds) : -1;
    return request;
}

QString RunRequest::Name() const {
    return LastPart(m_file);
}

QString RunRequest::Refusal() const {
    if (!m_sequence)
        return {};
    if (!m_problem.isEmpty())
        return Tr("The sequence %1 cannot be read: %2").arg(Name(), m_problem);
    if (m_plan.TotalRuns() == 0)
        return Tr("The sequence %1 has no runs.").arg(Name());
    return {};
}

QString RunRequest::Question(const QString& instrument) const {
    if (m_sequence)
        return QCoreApplication::translate("RunRequest",
                                           "Run the sequence %1 on %2?\n\n%n run(s), one after the "
                                           "other: %3.",
                                           nullptr, m_plan.TotalRuns())
            .arg(Name(), instrument, m_steps.join(QStringLiteral(", ")));
    QString text = Tr("Run %1 on %2?").arg(Name(), instrument);
    if (!m_problem.isEmpty())
        return text + QStringLiteral("\n\n") + Tr("The method could not be read here: %1").arg(m_problem);
    if (!m_description.isEmpty())
        text += QStringLiteral("\n\n") + m_description;
    text += QStringLiteral("\n\n") +
            (m_runSeconds > 0 ? Tr("Run time: %1").arg(QString::fromStdWString(FormatRunTime(m_runSeconds)))
                              : Tr("Run time: not set (the method has no end event)."));
    return text;
}
