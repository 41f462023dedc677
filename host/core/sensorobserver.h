// SPDX-License-Identifier: Apache-2.0
#pragma once
#include "sensorevent.h"
#include <cstdint>

class ISensorObject;

// Receives a sensor's notifications. OnSensorEvent is called on the thread that raised the event (the
// UI thread's timer in the studio); UI observers post it on to their own thread.
class ISensorObserver {
public:
    virtual ~ISensorObserver();
    // Subscribes to a sensor (null unsubscribes).
    void SetSensor(ISensorObject* sensor);
    ISensorObject* GetSensor() const { return m_sensor; }
    // An observer that never sets a mask receives every notification of that kind. The first call
    // selects: enabling bits then means exactly those bits, disabling means all but those; later calls
    // add or remove bits. The bits are the kEventMask values of sensorevent.h.
    void SetSensorMask(uint32_t mask, int enable);
    void SetAllDeviceMasks(uint32_t mask, int enable);
    // Whether an event code passes the masks.
    bool Accepts(uint32_t code) const;
    // The mask bit that selects `code`, and whether it is a device notification.
    static uint32_t MaskBit(uint32_t code);
    static bool IsDeviceCode(uint32_t code) { return code >= 0x100000; }
    virtual void OnSensorEvent(const ISensorEvent& event) = 0;

private:
    ISensorObject* m_sensor = nullptr;
    uint32_t m_sensorMask = 0xFFFFFFFF;
    uint32_t m_deviceMask = 0xFFFFFFFF;
    bool m_sensorMaskSet = false;
    bool m_deviceMaskSet = false;
};
