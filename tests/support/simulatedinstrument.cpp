// SPDX-License-Identifier: Apache-2.0
#include "simulatedinstrument.h"

#include "demotree.h"
#include "remotename.h"
#include "vexacommsensor.h"
#include "vexasensorobject.h"

#include <stdexcept>

SimulatedInstrument::SimulatedInstrument(Tree tree) {
    if (tree == Tree::Demo)
        CopyDemoTree(m_tree.path());
    else
        m_tree.createDir("Data");
}

SimulatedInstrument::~SimulatedInstrument() {
    dropSensor();
    stop();
}

void SimulatedInstrument::start(const std::vector<std::string>& simArgs) {
    stop();
    m_sim = std::make_unique<SimulatorProcess>(m_tree.path(), simArgs);
}

void SimulatedInstrument::stop() {
    if (m_sim)
        m_sim->stop();
}

VEXASensorObject& SimulatedInstrument::makeSensor(Commands commands) {
    if (!m_sensor) {
        if (!m_sim)
            throw std::logic_error("a sensor needs the simulator started first");
        m_sensor = SensorRef<VEXASensorObject>::Adopt(new VEXASensorObject(nullptr, ISensorAddress(host())));
        if (commands == Commands::Attached)
            AttachVexaCommSensor(*m_sensor);
    }
    return *m_sensor;
}

bool SimulatedInstrument::goOnline(Commands commands) {
    return makeSensor(commands).GoOnline();
}

void SimulatedInstrument::dropSensor() {
    if (!m_sensor)
        return;
    m_sensor->Disconnect(0);
    m_sensor.Reset();
}

std::wstring SimulatedInstrument::remote(const std::wstring& path) const {
    return MakeFilename(L"", path, host());
}

std::string SimulatedInstrument::remote(const std::string& path) const {
    return "@" + address() + ":" + path;
}

bool SimulatedInstrument::online() const {
    return m_sensor && m_sensor->IsLinkOpen();
}
