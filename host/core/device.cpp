// SPDX-License-Identifier: Apache-2.0
#include "device.h"

IDevice::IDevice(std::wstring name, ISensorObject* sensor) : m_name(std::move(name)), m_sensor(sensor) {}

IDevice::IDevice(const IDevice& other) {
    Assign(other);
}

IDevice& IDevice::operator=(const IDevice& other) {
    if (this != &other)
        Assign(other);
    return *this;
}

void IDevice::Assign(const IDevice& other) {
    if (this == &other)
        return;
    Snapshot values;
    bool hasSnapshot = false;
    {
        std::lock_guard lock(other.m_mutex);
        values = other.m_values;
        hasSnapshot = other.m_hasSnapshot;
    }
    std::lock_guard lock(m_mutex);
    m_name = other.m_name;
    m_sensor = other.m_sensor;
    m_values = std::move(values);
    m_hasSnapshot = hasSnapshot;
}

void IDevice::SetSnapshot(Snapshot values) {
    std::lock_guard lock(m_mutex);
    m_values = std::move(values);
    m_hasSnapshot = true;
    ++m_serial;
}

uint64_t IDevice::SnapshotSerial() const {
    std::lock_guard lock(m_mutex);
    return m_serial;
}

IDevice::Snapshot IDevice::GetSnapshot() const {
    std::lock_guard lock(m_mutex);
    return m_values;
}

bool IDevice::GetValue(const std::string& key, std::string* value) const {
    std::lock_guard lock(m_mutex);
    auto it = m_values.find(key);
    if (it == m_values.end())
        return false;
    if (value)
        *value = it->second;
    return true;
}

bool IDevice::HasSnapshot() const {
    std::lock_guard lock(m_mutex);
    return m_hasSnapshot;
}

void IDevice::ClearSnapshot() {
    std::lock_guard lock(m_mutex);
    m_values.clear();
    m_hasSnapshot = false;
}
