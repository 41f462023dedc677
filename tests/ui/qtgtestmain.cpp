// SPDX-License-Identifier: Apache-2.0
// The main of the GoogleTest programs with windows: a QApplication (offscreen unless the platform is
// set), the GUI thread's pumping wait as in the studio, and settings and data folders of their own
// before anything reads them.
#include "qtpumpdispatcher.h"
#include "tempdir.h"

#include <QApplication>
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    TempDir home;
    setenv("VEXA_SETTINGS", home.file("settings.ini").c_str(), 1);
    setenv("VEXA_DATA_ROOT", home.createDir("data").c_str(), 1);
    QApplication app(argc, argv);
    InstallQtPumpDispatcher();
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
