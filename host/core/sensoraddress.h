// SPDX-License-Identifier: Apache-2.0
#pragma once
#include <cstdint>
#include <string>

// The address of one instrument: a host text (dotted IPv4 or a host name).
class ISensorAddress {
public:
    ISensorAddress() = default;
    explicit ISensorAddress(std::wstring host) : m_host(std::move(host)) {}

    const std::wstring& GetHostname() const { return m_host; }
    void SetHostname(const std::wstring& host) { m_host = host; }
    // Non-empty and well formed as a host: no ':', '@', '/', '\\' or white space, at most 253 chars.
    // Whether the name actually resolves is not asked here (that would block).
    bool IsValid() const;
    bool operator==(const ISensorAddress& other) const { return m_host == other.m_host; }

private:
    std::wstring m_host;
};

// Resolves a dotted IPv4 address or a host name to an IPv4 address in network byte order; 0 on failure.
uint32_t get_inet_addr(const std::wstring& host);
