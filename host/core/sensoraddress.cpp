// SPDX-License-Identifier: Apache-2.0
#include "sensoraddress.h"

#include "socketcalls.h"
#include "text.h"

#include <cwctype>

bool ISensorAddress::IsValid() const {
    if (m_host.empty() || m_host.size() > 253)
        return false;
    for (wchar_t c : m_host) {
        if (c == L':' || c == L'@' || c == L'/' || c == L'\\' || std::iswspace(static_cast<wint_t>(c)) ||
            std::iswcntrl(static_cast<wint_t>(c)))
            return false;
    }
    return true;
}

uint32_t get_inet_addr(const std::wstring& host) {
    // Texts that cannot be a host are refused before any name lookup is attempted.
    if (!ISensorAddress(host).IsValid())
        return 0;
    return ResolveIPv4(ToUtf8(host));
}
