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

void ISensorObserver::SetSensorMask(uint32_t mask, int enable) {
    if (enable)
        m_sensorMask |= mask;
    else
        m_sensorMask &= ~mask;
}

void ISensorObserver::SetAllDeviceMasks(uint32_t mask, int enable) {
    if (enable)
        m_deviceMask |= mask;
    else
        m_deviceMask &= ~mask;
}

// Codes below 0x100 are state changes and always pass. Codes from 0x100000 up are device notifications
// (the backup's completion, for one) and are filtered by the device mask, the rest by the sensor mask;
// the mask bit is chosen by bits 8..12 of the code, so a mask of all ones passes everything.
bool ISensorObserver::Accepts(uint32_t code) const {
    if (code < 0x100)
        return true;
    const uint32_t bit = 1u << ((code >> 8) & 31);
    return ((code >= 0x100000 ? m_deviceMask : m_sensorMask) & bit) != 0;
}
