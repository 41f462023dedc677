// SPDX-License-Identifier: Apache-2.0
#pragma once
// A simulated instrument: a temporary tree, the simulator serving it, and (when asked for) a sensor
// object for it, as the studio makes one. The simulator starts when the test says so, so that the
// test can fill the tree or pick fault switches first; it may be stopped and started again (on a
// fresh address). Going away, the sensor goes off line and is released before the simulator stops.
//
// The module's file back-end factories are not part of this: a test program that reaches the
// instrument through StdioFile or FileInfo compiles in the module objects.
#include "sensorref.h"
#include "simulator.h"
#include "tempdir.h"

#include <memory>
#include <string>
#include <vector>

class VEXASensorObject;

class SimulatedInstrument {
public:
    // Fresh: an empty Data folder, as a new instrument has. Demo: a copy of the demo tree.
    enum class Tree { Fresh, Demo };
    // Attached: the sensor gets the module's communication sensor (a second connection for commands,
    // status and parameters), as the studio's sensors do. None: the file link alone.
    enum class Commands { Attached, None };

    explicit SimulatedInstrument(Tree tree = Tree::Fresh);
    ~SimulatedInstrument();
    SimulatedInstrument(const SimulatedInstrument&) = delete;
    SimulatedInstrument& operator=(const SimulatedInstrument&) = delete;

    // Starts the simulator on the tree; `simArgs` pass through (e.g. {"--fault", "stall-after=100"}).
    // A running simulator is stopped first.
    void start(const std::vector<std::string>& simArgs = {});
    void stop();
    // The sensor object for the running simulator, made on first use; off line until goOnline().
    VEXASensorObject& makeSensor(Commands commands = Commands::Attached);
    // makeSensor(), then takes it on line: whether it went on line.
    bool goOnline(Commands commands = Commands::Attached);
    // Takes the sensor off line and releases it (a later makeSensor() makes a new one).
    void dropSensor();

    TempDir& tree() { return m_tree; }
    const std::string& root() const { return m_tree.path(); }
    // A path in the tree as the workstation sees it.
    std::string file(const std::string& relative) const { return m_tree.file(relative); }
    SimulatorProcess& sim() { return *m_sim; }
    const std::string& address() const { return m_sim->address(); }
    std::wstring host() const { return m_sim->host(); }
    // The instrument's name for `path` ("/Data/a.mth"): "@HOST:" + path.
    std::wstring remote(const std::wstring& path) const;
    std::string remote(const std::string& path) const;
    VEXASensorObject* sensor() const { return m_sensor.get(); }
    bool online() const;

private:
    TempDir m_tree;
    std::unique_ptr<SimulatorProcess> m_sim;
    SensorRef<VEXASensorObject> m_sensor;
};
