#pragma once
// A sensor on line to a scripted instrument; the last reference goes with the fixture.
#include "scriptedinstrument.h"
#include "vexasensorobject.h"

class OnlineSensor {
public:
    explicit OnlineSensor(ScriptedInstrument& instrument)
        : m_sensor(new VEXASensorObject(nullptr, ISensorAddress(instrument.host()))) {
        m_sensor->GoOnline();
    }
    ~OnlineSensor() { m_sensor->DecRef(); }
    OnlineSensor(const OnlineSensor&) = delete;
    OnlineSensor& operator=(const OnlineSensor&) = delete;
    VEXASensorObject* operator->() const { return m_sensor; }
    VEXASensorObject* get() const { return m_sensor; }
    bool online() const { return m_sensor->IsLinkOpen(); }

private:
    VEXASensorObject* m_sensor;
};
