// SPDX-License-Identifier: Apache-2.0
#include "sensorobserver.h"

#include "sensorobject.h"

ISensorObserver::~ISensorObserver() {
    SetSensor(nullptr);
}

void ISensorObserver::SetSensor(ISensorObject* sensor) {
    if (sensor == m_sensor)
        return;
    if (m_sensor)
        m_sensor->RemoveObserver(this);
    m_sensor = sensor;
    if (m_sensor)
        m_sensor->AddObserver(this);
}

namespace {

void ChangeMask(uint32_t& current, bool& set, uint32_t mask, bool enable) {
    // Until a first call the observer takes everything; that call says what it wants.
    if (!set)
        current = enable ? 0 : 0xFFFFFFFF;
    set = true;
    if (enable)
        current |= mask;
    else
        current &= ~mask;
}

} // namespace

void ISensorObserver::SetSensorMask(uint32_t mask, int enable) {
    ChangeMask(m_sensorMask, m_sensorMaskSet, mask, enable != 0);
}

void ISensorObserver::SetAllDeviceMasks(uint32_t mask, int enable) {
    ChangeMask(m_deviceMask, m_deviceMaskSet, mask, enable != 0);
}

uint32_t ISensorObserver::MaskBit(uint32_t code) {
    if (code < 0x100)
        return kEventMaskState;
    switch (code) {
    case kSensorEventBackup:
        return kEventMaskBackup;
    case kSensorEventMethodEnded:
        return kEventMaskProcessEnded;
    default:
        return kEventMaskOther;
    }
}

bool ISensorObserver::Accepts(uint32_t code) const {
    return ((IsDeviceCode(code) ? m_deviceMask : m_sensorMask) & MaskBit(code)) != 0;
}
