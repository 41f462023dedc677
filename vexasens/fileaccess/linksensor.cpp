#include "linksensor.h"

#include "vexasensorobject.h"

VEXASensorObject* SelectLinkSensor(const std::wstring& host) {
    if (host.empty())
        return nullptr;
    // Finding and holding happen under the registry's lock, so the sensor cannot vanish in between.
    ISensorObject* found = ISensorObject::SelectAndRef(ISensorAddress(host));
    auto* sensor = dynamic_cast<VEXASensorObject*>(found);
    if (found && !sensor)
        found->DecRef();
    return sensor;
}
