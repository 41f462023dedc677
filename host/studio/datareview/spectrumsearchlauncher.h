// SPDX-License-Identifier: Apache-2.0
#pragma once
// Hands a spectrum file to the library search program the operator configured: setting Programs/Nist
// names the program, Programs/NistArguments its command line, where %1 stands for the spectrum
// file ("%1" when the setting is absent or empty; quoted parts stay one argument).
#include <QString>
#include <QStringList>

class SpectrumSearchLauncher {
public:
    // The arguments for `spectrumFile` as the pattern says; empty when the pattern names no %1, so the
    // file would not reach the program.
    static QStringList Arguments(const QString& pattern, const QString& spectrumFile);

    // Starts the configured program on `spectrumFile`, detached. False with the reason (no program
    // configured, a pattern without %1, or the program could not be started).
    static bool Start(const QString& spectrumFile, QString* error);
};
