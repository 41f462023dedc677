#include "sensoraddress.h"

#include "text.h"

#include <cwctype>

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#endif

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
    const std::string narrow = ToUtf8(host);
    in_addr address{};
    if (inet_pton(AF_INET, narrow.c_str(), &address) == 1)
        return address.s_addr;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* result = nullptr;
    if (getaddrinfo(narrow.c_str(), nullptr, &hints, &result) != 0 || result == nullptr)
        return 0;
    uint32_t value = 0;
    for (const addrinfo* ai = result; ai != nullptr; ai = ai->ai_next) {
        if (ai->ai_family == AF_INET && ai->ai_addr != nullptr) {
            value = reinterpret_cast<const sockaddr_in*>(ai->ai_addr)->sin_addr.s_addr;
            break;
        }
    }
    freeaddrinfo(result);
    return value;
}
