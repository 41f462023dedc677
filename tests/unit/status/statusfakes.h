// SPDX-License-Identifier: Apache-2.0
#pragma once
// A sensor that can be put on line without a network, and the scripted command channel for it.
#include "fakechannel.h"
#include "sensorobject.h"

#include <string>

// A sensor whose link is a flag, so it goes on line without an instrument; counts device look-ups.
class OfflineCapableSensor : public ISensorObject {
public:
    explicit OfflineCapableSensor(const std::wstring& host) : ISensorObject(nullptr, ISensorAddress(host)) {}
    void Connect(bool open) override { m_linkOpen = open; }
    bool IsLinkOpen() const override { return m_linkOpen; }
    IDevice& GetDevice(const std::wstring& name) override {
        ++deviceLookups;
        return ISensorObject::GetDevice(name);
    }
    int deviceLookups = 0;

private:
    bool m_linkOpen = false;
};
