// SPDX-License-Identifier: Apache-2.0
// vexa-studio: the host an operator opens to work with VEXARON instruments.
#include "qtpumpdispatcher.h"
#include "registry.h"
#include "studiooptions.h"
#include "studiowindow.h"
#include "vexaversion.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>

#include <cstdio>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("VEXA Studio"));
    QApplication::setOrganizationName(QStringLiteral("VexaSuite"));
    QApplication::setApplicationVersion(QString::fromLatin1(kVexaVersion));
    // The desktop entry and icon the package installs; a build-folder run simply has no icon.
    QApplication::setDesktopFileName(QStringLiteral("org.vexasens.VexaStudio"));
    QApplication::setWindowIcon(QIcon::fromTheme(QStringLiteral("org.vexasens.VexaStudio")));

    StudioOptions options;
    QString problem;
    switch (options.Parse(QApplication::arguments(), &problem)) {
    case StudioOptions::Outcome::Help:
        std::fputs(qUtf8Printable(options.Usage()), stdout);
        return 0;
    case StudioOptions::Outcome::Version:
        std::puts(VexaVersionLine("vexa-studio").c_str());
        return 0;
    case StudioOptions::Outcome::Error:
        std::fprintf(stderr, "vexa-studio: %s\n\n%s", qUtf8Printable(problem),
                     qUtf8Printable(options.Usage()));
        return 2;
    case StudioOptions::Outcome::Run:
        break;
    }

    // Network waits on this thread dispatch the window's events between their slices.
    InstallQtPumpDispatcher();

    StudioWindow::Startup startup;
    startup.pluginDir = options.pluginDir.isEmpty() ? DefaultPluginDir(QApplication::applicationDirPath())
                                                    : options.pluginDir;
    startup.instruments = options.instruments;
    StudioWindow window(startup, CPXRegistry::Instance());
    window.show();
    // Connecting happens with the window on screen, so the operator sees it progress.
    QTimer::singleShot(0, &window, &StudioWindow::Start);
    return QApplication::exec();
}
