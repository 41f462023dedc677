// SPDX-License-Identifier: Apache-2.0
#include "hostsessions.h"

VEXASensorObject* HostSessions::Linked(const std::wstring& host, int* error) {
    Entry& entry = m_sessions[host];
    if (!entry.session) {
        entry.session = std::make_unique<CliSession>();
        entry.linked = entry.session->Connect(host, &entry.error);
    }
    if (error)
        *error = entry.error;
    return entry.linked ? entry.session->Sensor() : nullptr;
}
