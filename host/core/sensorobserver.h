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
    void SetSensorMask(uint32_t mask, int enable);
    void SetAllDeviceMasks(uint32_t mask, int enable);
    // Whether an event code passes the masks (codes below 0x100 are state changes and always pass).
    bool Accepts(uint32_t code) const;
    virtual void OnSensorEvent(const ISensorEvent& event) = 0;

private:
    ISensorObject* m_sensor = nullptr;
    uint32_t m_sensorMask = 0xFFFFFFFF;
    uint32_t m_deviceMask = 0xFFFFFFFF;
};
