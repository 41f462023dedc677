// SPDX-License-Identifier: Apache-2.0
#include "studiofixture.h"

#include "logpane.h"
#include "managedinstrument.h"
#include "sensormanager.h"
#include "toollist.h"

StudioTest::StudioTest() : m_registry(m_temp.file("studio.ini")) {}

StudioTest::~StudioTest() {
    if (m_window)
        m_window->close();
    m_window.reset();
}

QString StudioTest::BuiltPluginDir() {
    return QStringLiteral(VEXA_PLUGIN_DIR);
}

int StudioTest::ToolRow(StudioWindow& window, const QString& name) {
    for (int i = 0; i < window.Tools()->ToolCount(); ++i) {
        if (window.Tools()->ToolName(i) == name)
            return i;
    }
    ADD_FAILURE() << "no tool " << name.toStdString();
    return -1;
}

StudioWindow& StudioTest::StartStudio(const QString& pluginDir, const QStringList& instruments) {
    StudioWindow::Startup startup;
    startup.pluginDir = pluginDir;
    startup.instruments = instruments;
    m_window = std::make_unique<StudioWindow>(startup, m_registry);
    m_window->show();
    m_window->Start();
    return *m_window;
}

ManagedInstrument& StudioTest::Instrument(int row) {
    ManagedInstrument* instrument = m_window->Sensors().At(row);
    if (!instrument)
        throw std::out_of_range("no instrument in row " + std::to_string(row));
    return *instrument;
}

QString StudioTest::LogText() const {
    return m_window->Log()->Text();
}
