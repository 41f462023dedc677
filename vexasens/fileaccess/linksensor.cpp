#include "linksensor.h"

#include "text.h"
#include "vexasensorobject.h"

namespace {
thread_local VEXASensorObject* t_override = nullptr;
} // namespace

VEXASensorObject* SelectLinkSensor(const std::wstring& host) {
    if (host.empty())
        return nullptr;
    if (t_override && EqualsNoCase(t_override->GetSensorAddress().GetHostname(), host)) {
        t_override->IncRef();
        return t_override;
    }
    // Finding and holding happen under the registry's lock, so the sensor cannot vanish in between.
    ISensorObject* found = ISensorObject::SelectAndRef(ISensorAddress(host));
    auto* sensor = dynamic_cast<VEXASensorObject*>(found);
    if (found && !sensor)
        found->DecRef();
    return sensor;
}

LinkSensorOverride::LinkSensorOverride(VEXASensorObject* sensor) : m_previous(t_override) {
    t_override = sensor;
}

LinkSensorOverride::~LinkSensorOverride() {
    t_override = m_previous;
}
