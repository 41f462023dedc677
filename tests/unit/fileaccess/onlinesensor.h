// SPDX-License-Identifier: Apache-2.0
#pragma once
// A sensor on line to a scripted instrument; the last reference goes with the fixture.
#include "scriptedinstrument.h"
#include "sensorref.h"
#include "vexasensorobject.h"

class OnlineSensor : public SensorRef<VEXASensorObject> {
public:
    explicit OnlineSensor(ScriptedInstrument& instrument)
        : SensorRef(Adopt(new VEXASensorObject(nullptr, ISensorAddress(instrument.host())))) {
        get()->GoOnline();
    }
    bool online() const { return get()->IsLinkOpen(); }
};
