// SPDX-License-Identifier: Apache-2.0
#include "winsockerror.h"

#include <cerrno>
#include <cstring>

namespace {

// strerror_r comes in a GNU form (returns the text) and an XSI form (returns a status).
[[maybe_unused]] const char* StrErrorResult(int status, const char* buffer) {
    return status == 0 ? buffer : nullptr;
}
[[maybe_unused]] const char* StrErrorResult(const char* text, const char*) {
    return text;
}

} // namespace

int WinsockFromErrno(int err) {
    switch (err) {
#if EAGAIN != EWOULDBLOCK
    case EAGAIN:
#endif
    case EWOULDBLOCK:
    case EINPROGRESS:
        return kWsaWouldBlock;
    case EALREADY:
        return 10037;
    case ENOTSOCK:
        return kWsaNotSock;
    case EDESTADDRREQ:
        return 10039;
    case EMSGSIZE:
        return 10040;
    case EPROTOTYPE:
        return 10041;
    case ENOPROTOOPT:
        return 10042;
    case EPROTONOSUPPORT:
        return 10043;
    case EOPNOTSUPP:
        return 10045;
    case EAFNOSUPPORT:
        return 10047;
    case EADDRINUSE:
        return 10048;
    case EADDRNOTAVAIL:
        return kWsaAddrNotAvail;
    case ENETDOWN:
        return kWsaNetDown;
    case ENETUNREACH:
        return kWsaNetUnreach;
    case ENETRESET:
        return 10052;
    case ECONNABORTED:
        return kWsaConnAborted;
    case ECONNRESET:
        return kWsaConnReset;
    case ENOBUFS:
        return kWsaNoBufs;
    case EISCONN:
        return 10056;
    case ENOTCONN:
        return kWsaNotConn;
    case EPIPE:
        return kWsaShutdown;
    case ETIMEDOUT:
        return kWsaTimedOut;
    case ECONNREFUSED:
        return kWsaConnRefused;
    case EHOSTDOWN:
        return kWsaHostDown;
    case EHOSTUNREACH:
        return kWsaHostUnreach;
    default:
        return err;
    }
}

int LastSocketError() {
    return WinsockFromErrno(errno);
}

std::string SystemErrorText(int code) {
    char buffer[256] = {};
    const char* text = StrErrorResult(strerror_r(code, buffer, sizeof buffer), buffer);
    if (text == nullptr || std::strncmp(text, "Unknown error", 13) == 0)
        return {};
    return text;
}
