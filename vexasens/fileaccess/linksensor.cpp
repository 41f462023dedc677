// SPDX-License-Identifier: Apache-2.0
#include "linksensor.h"

#include "text.h"
#include "vexasensorobject.h"

namespace {
thread_local VEXASensorObject* t_override = nullptr;
} // namespace

SensorRef<VEXASensorObject> SelectLinkSensor(const std::wstring& host) {
    if (host.empty())
        return {};
    if (t_override && EqualsNoCase(t_override->GetSensorAddress().GetHostname(), host))
        return SensorRef<VEXASensorObject>::Share(t_override);
    // Finding and holding happen under the registry's lock, so the sensor cannot vanish in between.
    return SensorRef<VEXASensorObject>::AdoptIf(ISensorObject::SelectAndRef(ISensorAddress(host)));
}

LinkSensorOverride::LinkSensorOverride(VEXASensorObject* sensor) : m_previous(t_override) {
    t_override = sensor;
}

LinkSensorOverride::~LinkSensorOverride() {
    t_override = m_previous;
}
