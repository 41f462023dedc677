// SPDX-License-Identifier: Apache-2.0
#include "studiooptions.h"

#include <QCommandLineParser>
#include <QDir>

StudioOptions::Outcome StudioOptions::Parse(const QStringList& arguments, QString* problem) {
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("VEXA Studio: operate VEXARON instruments from the PC."));
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();
    const QCommandLineOption pluginOption(
        QStringLiteral("plugins"),
        QStringLiteral("Folder with the sensor modules (*.sdll); default: "
                       "plugins beside the program, else " VEXA_PLUGIN_DIR_FROM_PROGRAM " from it."),
        QStringLiteral("DIR"));
    const QCommandLineOption instrumentOption(
        QStringLiteral("instrument"),
        QStringLiteral("Adds an instrument for this run only and takes it on line (repeatable)."),
        QStringLiteral("ADDRESS"));
    parser.addOption(pluginOption);
    parser.addOption(instrumentOption);
    m_usage = parser.helpText();

    if (!parser.parse(arguments)) {
        if (problem)
            *problem = parser.errorText();
        return Outcome::Error;
    }
    if (parser.isSet(helpOption))
        return Outcome::Help;
    if (parser.isSet(versionOption))
        return Outcome::Version;
    if (!parser.positionalArguments().isEmpty()) {
        if (problem)
            *problem = QStringLiteral("Unexpected argument: %1").arg(parser.positionalArguments().first());
        return Outcome::Error;
    }
    pluginDir = parser.value(pluginOption);
    instruments = parser.values(instrumentOption);
    for (const QString& address : std::as_const(instruments)) {
        if (address.trimmed().isEmpty()) {
            if (problem)
                *problem = QStringLiteral("--instrument needs an address");
            return Outcome::Error;
        }
    }
    return Outcome::Run;
}

QString DefaultPluginDir(const QString& programDir) {
    const QDir dir(programDir);
    if (dir.exists(QStringLiteral("plugins")))
        return dir.filePath(QStringLiteral("plugins"));
    return QDir::cleanPath(dir.filePath(QStringLiteral(VEXA_PLUGIN_DIR_FROM_PROGRAM)));
}
