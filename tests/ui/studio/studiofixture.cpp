#include "studiofixture.h"

#include "logpane.h"
#include "managedinstrument.h"
#include "sensormanager.h"

#include <cstdlib>
#include <filesystem>

StudioTest::StudioTest() : m_registry(m_temp.file("studio.ini")) {}

StudioTest::~StudioTest() {
    if (m_window)
        m_window->close();
    m_window.reset();
}

QString StudioTest::BuiltPluginDir() {
    return QStringLiteral(VEXA_PLUGIN_DIR);
}

std::string StudioTest::CopyOfDemoTree() {
    const char* source = std::getenv("VEXA_SOURCE_DIR");
    EXPECT_NE(source, nullptr) << "VEXA_SOURCE_DIR is not set";
    const std::string target = m_temp.createDir("demo");
    std::filesystem::copy(std::string(source ? source : ".") + "/tools/vexa-sim/demo", target,
                          std::filesystem::copy_options::recursive);
    return target;
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
