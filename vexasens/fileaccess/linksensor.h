// SPDX-License-Identifier: Apache-2.0
#pragma once
// The VEXA sensor object that serves a host, for the back ends that talk over its link.
#include "sensorref.h"

#include <string>

class VEXASensorObject;

// The live VEXA sensor for `host`, held, or none when the host is empty or no VEXA sensor serves it. On
// a thread with a LinkSensorOverride for that host, the override's sensor.
SensorRef<VEXASensorObject> SelectLinkSensor(const std::wstring& host);

// While it lives, the back ends that this thread makes for the sensor's own host use `sensor`, not
// the first sensor registered for that host: several threads can then each copy over a link of their
// own to one instrument. Scoped to the creating thread; an inner override replaces an outer one until
// it ends. The caller keeps `sensor` alive meanwhile.
class LinkSensorOverride {
public:
    explicit LinkSensorOverride(VEXASensorObject* sensor);
    ~LinkSensorOverride();
    LinkSensorOverride(const LinkSensorOverride&) = delete;
    LinkSensorOverride& operator=(const LinkSensorOverride&) = delete;

private:
    VEXASensorObject* m_previous;
};
