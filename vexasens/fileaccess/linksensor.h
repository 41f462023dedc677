#pragma once
// The VEXA sensor object that serves a host, for the back ends that talk over its link.
#include <string>

class VEXASensorObject;

// The live VEXA sensor for `host` with a reference taken (release it with DecRef), or null when the
// host is empty or no VEXA sensor serves it.
VEXASensorObject* SelectLinkSensor(const std::wstring& host);
