// SPDX-License-Identifier: Apache-2.0
#pragma once
// The studio's command line: the plug-in folder and the instruments given for this run only.
#include <QString>
#include <QStringList>

class StudioOptions {
public:
    enum class Outcome { Run, Help, Version, Error };

    // Reads the arguments (the program name first). On Error, `problem` says what is wrong.
    Outcome Parse(const QStringList& arguments, QString* problem);
    QString Usage() const { return m_usage; }

    // Folder searched for *.sdll modules; empty means DefaultPluginDir().
    QString pluginDir;
    // Addresses of instruments added for this run (not saved) and taken on line at start.
    QStringList instruments;

private:
    QString m_usage;
};

// The default plug-in folder of a program in `programDir`: "plugins" beside it when there is one (the
// build folder), else the installed plug-in folder, lib/vexa-studio/plugins beside the bin folder.
QString DefaultPluginDir(const QString& programDir);
