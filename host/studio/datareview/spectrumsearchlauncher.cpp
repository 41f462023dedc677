// SPDX-License-Identifier: Apache-2.0
#include "spectrumsearchlauncher.h"

#include "registry.h"

#include <QCoreApplication>
#include <QProcess>

namespace {
const wchar_t kSection[] = L"Programs";
const wchar_t kProgramKey[] = L"Nist";
const wchar_t kArgumentsKey[] = L"NistArguments";
const QString kFilePlaceholder = QStringLiteral("%1");

QString Tr(const char* text) {
    return QCoreApplication::translate("SpectrumSearchLauncher", text);
}
} // namespace

QStringList SpectrumSearchLauncher::Arguments(const QString& pattern, const QString& spectrumFile) {
    QStringList arguments = QProcess::splitCommand(pattern);
    bool named = false;
    for (QString& argument : arguments) {
        if (argument.contains(kFilePlaceholder)) {
            // A literal replace: the file's own name may hold "%" or "%1".
            argument.replace(kFilePlaceholder, spectrumFile);
            named = true;
        }
    }
    return named ? arguments : QStringList();
}

bool SpectrumSearchLauncher::Start(const QString& spectrumFile, QString* error) {
    CPXRegistry& settings = CPXRegistry::Instance();
    const QString program = QString::fromStdWString(settings.GetString(kSection, kProgramKey, L""));
    QString pattern = QString::fromStdWString(settings.GetString(kSection, kArgumentsKey, L""));
    if (pattern.trimmed().isEmpty())
        pattern = kFilePlaceholder;
    if (program.isEmpty()) {
        if (error)
            *error = Tr("No library search program is configured: set Programs/Nist to the program and "
                        "Programs/NistArguments to its command line (%1 where the spectrum file goes) in %2.")
                         .arg(kFilePlaceholder, QString::fromStdString(settings.Path()));
        return false;
    }
    const QStringList arguments = Arguments(pattern, spectrumFile);
    if (arguments.isEmpty()) {
        if (error)
            *error = Tr("Programs/NistArguments (\"%1\") does not say where the spectrum file goes: put %2 "
                        "there.")
                         .arg(pattern, kFilePlaceholder);
        return false;
    }
    if (!QProcess::startDetached(program, arguments)) {
        if (error)
            *error = Tr("%1 could not be started.").arg(program);
        return false;
    }
    return true;
}
