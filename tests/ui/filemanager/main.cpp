// Runs the Manage Files cases inside a QApplication on the offscreen platform, with settings and the
// suite's data root in a temporary folder, and the link's waits pumping Qt's events as in the studio.
#include "qtpumpdispatcher.h"
#include "tempdir.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
    if (!std::getenv("QT_QPA_PLATFORM"))
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    TempDir home;
    setenv("VEXA_SETTINGS", home.file("settings.ini").c_str(), 1);
    setenv("VEXA_DATA_ROOT", home.createDir("data").c_str(), 1);
    QApplication app(argc, argv);
    InstallQtPumpDispatcher();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
