// SPDX-License-Identifier: Apache-2.0
#pragma once
// The instrument sessions of one command, one per host; the link is tried once per host.
#include "cli.h"

#include <map>
#include <memory>
#include <string>

class HostSessions {
public:
    // The sensor for `host` with its link open, or null (`error` then says why the link did not open).
    VEXASensorObject* Linked(const std::wstring& host, int* error);

private:
    struct Entry {
        std::unique_ptr<CliSession> session;
        bool linked = false;
        int error = 0;
    };
    std::map<std::wstring, Entry> m_sessions;
};
