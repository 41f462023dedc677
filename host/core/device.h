// SPDX-License-Identifier: Apache-2.0
#pragma once
// One named device of a sensor. Its state is a snapshot of key/value texts taken from the instrument
// (the "VEXA" device holds the last `status` answer); readers copy it with Assign.
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>

class ISensorObject;

class IDevice {
public:
    IDevice() = default;
    explicit IDevice(std::wstring name, ISensorObject* sensor = nullptr);
    IDevice(const IDevice& other);
    IDevice& operator=(const IDevice& other);
    virtual ~IDevice() = default;

    const std::wstring& GetName() const { return m_name; }
    ISensorObject* GetSensor() const { return m_sensor; }
    // Copies name, sensor and snapshot from another device.
    void Assign(const IDevice& other);

    using Snapshot = std::map<std::string, std::string>;
    void SetSnapshot(Snapshot values);
    Snapshot GetSnapshot() const;
    // A value of the snapshot; false when the key is missing.
    bool GetValue(const std::string& key, std::string* value) const;
    // Whether a snapshot has been taken since the sensor went on line.
    bool HasSnapshot() const;
    void ClearSnapshot();
    // Counts the snapshots taken, so a reader can tell a new status from the one it has seen.
    uint64_t SnapshotSerial() const;

private:
    std::wstring m_name;
    ISensorObject* m_sensor = nullptr;
    mutable std::mutex m_mutex;
    Snapshot m_values;
    bool m_hasSnapshot = false;
    uint64_t m_serial = 0;
};
