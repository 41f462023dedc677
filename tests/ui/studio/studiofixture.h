// SPDX-License-Identifier: Apache-2.0
#pragma once
// A studio window over settings of its own, started with the given plug-in folder and run instruments.
#include "registry.h"
#include "studiowindow.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <QTest>

#include <functional>
#include <memory>
#include <string>

class ManagedInstrument;

class StudioTest : public ::testing::Test {
protected:
    StudioTest();
    ~StudioTest() override;

    // The build's plug-in folder holding VexaSens.sdll.
    static QString BuiltPluginDir();

    // Makes, shows and starts the window.
    StudioWindow& StartStudio(const QString& pluginDir, const QStringList& instruments = {});
    StudioWindow& Window() { return *m_window; }
    ManagedInstrument& Instrument(int row);
    // The row of the tool named `name` in the window's tool list (a test failure and -1 when none).
    static int ToolRow(StudioWindow& window, const QString& name);
    QString LogText() const;

    // Processes events until `done` holds or `ms` pass; returns whether it held.
    static bool WaitFor(const std::function<bool()>& done, int ms = 15000) {
        return QTest::qWaitFor(done, ms);
    }

    TempDir m_temp;
    CPXRegistry m_registry;
    std::unique_ptr<StudioWindow> m_window;
};
