#include "simfixture.h"

#include "remotename.h"
#include "vexafileinfoimplfactory.h"
#include "vexastdiofileimplfactory.h"

#include <filesystem>
#include <random>

namespace {

// The module's factories, as the loaded module holds them.
VexaStdioFileImplFactory g_stdioFactory;
VexaFileInfoImplFactory g_fileInfoFactory;

} // namespace

std::string CompressibleBytes(size_t size) {
    std::string text;
    for (int line = 0; text.size() < size; ++line)
        text += "scan " + std::to_string(line) + ": 0.000 0.000 0.000\n";
    text.resize(size);
    return text;
}

std::vector<std::string> LeftoverTemporaries(const std::string& folder) {
    std::vector<std::string> found;
    std::error_code error;
    for (auto it = std::filesystem::recursive_directory_iterator(folder, error);
         !error && it != std::filesystem::recursive_directory_iterator(); it.increment(error)) {
        const std::string name = it->path().filename().string();
        if (name.rfind("___temp@@", 0) == 0 || name.rfind(".vexa-sim-upload.", 0) == 0)
            found.push_back(it->path().string());
    }
    return found;
}

SimulatedInstrument::SimulatedInstrument(const std::vector<std::string>& simArgs) {
    m_root.createDir("Data");
    m_sim = std::make_unique<SimulatorProcess>(m_root.path(), simArgs);
    m_sensor =
        SensorRef<VEXASensorObject>::Adopt(new VEXASensorObject(nullptr, ISensorAddress(m_sim->host())));
    m_sensor->GoOnline();
}

SimulatedInstrument::~SimulatedInstrument() {
    m_sensor.Reset();
    m_sim->stop();
}

std::wstring SimulatedInstrument::Remote(const std::wstring& path) const {
    return MakeFilename(L"", path, host());
}

bool SimulatedInstrument::online() const {
    return m_sensor->IsLinkOpen();
}
