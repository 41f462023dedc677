#pragma once
// A simulator serving a temporary instrument tree, a sensor on line to it, and the module's two file
// back-end factories, so that StdioFile, FileInfo and the folder lists reach it as the studio does.
#include "recordingprogress.h"
#include "sensorref.h"
#include "simulator.h"
#include "tempdir.h"
#include "vexasensorobject.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

std::string CompressibleBytes(size_t size);
// Names under `folder` (recursively) that start with the copy's temporary prefix or the simulator's
// upload prefix.
std::vector<std::string> LeftoverTemporaries(const std::string& folder);

class SimulatedInstrument {
public:
    explicit SimulatedInstrument(const std::vector<std::string>& simArgs = {});
    ~SimulatedInstrument();

    const std::string& root() const { return m_root.path(); }
    TempDir& tree() { return m_root; }
    SimulatorProcess& sim() { return *m_sim; }
    std::wstring host() const { return m_sim->host(); }
    // "@HOST:" + path
    std::wstring Remote(const std::wstring& path) const;
    VEXASensorObject* sensor() const { return m_sensor.get(); }
    bool online() const;

private:
    TempDir m_root;
    std::unique_ptr<SimulatorProcess> m_sim;
    SensorRef<VEXASensorObject> m_sensor;
};
