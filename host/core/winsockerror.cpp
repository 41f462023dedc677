// SPDX-License-Identifier: Apache-2.0
#include "winsockerror.h"

#include <mutex>
#include <string>
#include <vector>

std::wstring ErrorMeaning(int code) {
    switch (code) {
    case 0:
        return L"no error";
    case 2:
        return L"file not found";
    case 5:
        return L"input/output error";
    case 9:
        return L"no open file";
    case 12:
        return L"out of memory";
    case 13:
        return L"permission denied";
    case 17:
        return L"file exists";
    case 22:
        return L"invalid argument";
    case 28:
        return L"no space left on device";
    case 34:
        return L"result too large";
    case kWsaWouldBlock:
        return L"operation would block";
    case 10037:
        return L"operation already in progress";
    case kWsaNotSock:
        return L"not a socket";
    case 10040:
        return L"message too long";
    case 10048:
        return L"address already in use";
    case kWsaAddrNotAvail:
        return L"address not available";
    case kWsaNetDown:
        return L"network is down";
    case kWsaNetUnreach:
        return L"network unreachable";
    case 10052:
        return L"network dropped connection on reset";
    case kWsaConnAborted:
        return L"connection aborted";
    case kWsaConnReset:
        return L"connection reset by peer";
    case kWsaNoBufs:
        return L"no buffer space available";
    case 10056:
        return L"already connected";
    case kWsaNotConn:
        return L"not connected";
    case kWsaShutdown:
        return L"connection shut down";
    case kWsaTimedOut:
        return L"connection timed out";
    case kWsaConnRefused:
        return L"connection refused";
    case kWsaHostDown:
        return L"host is down";
    case kWsaHostUnreach:
        return L"no route to host";
    default:
        break;
    }
    // Other small numbers are the workstation's own errno values: use the system's text.
    if (code <= 0 || code >= 200)
        return {};
    std::wstring meaning;
    for (const char c : SystemErrorText(code))
        meaning += static_cast<wchar_t>(static_cast<unsigned char>(c));
    if (!meaning.empty() && meaning[0] >= L'A' && meaning[0] <= L'Z' &&
        (meaning.size() < 2 || !(meaning[1] >= L'A' && meaning[1] <= L'Z')))
        meaning[0] = static_cast<wchar_t>(meaning[0] - L'A' + L'a');
    return meaning;
}

namespace {

std::mutex& SourcesMutex() {
    static std::mutex mutex;
    return mutex;
}

std::vector<std::wstring (*)(int)>& Sources() {
    static std::vector<std::wstring (*)(int)> sources;
    return sources;
}

} // namespace

void RegisterErrorMeaningSource(std::wstring (*source)(int)) {
    std::lock_guard lock(SourcesMutex());
    Sources().push_back(source);
}

void UnregisterErrorMeaningSource(std::wstring (*source)(int)) {
    std::lock_guard lock(SourcesMutex());
    std::erase(Sources(), source);
}

std::wstring DescribeError(int code) {
    std::wstring meaning = ErrorMeaning(code);
    if (meaning.empty()) {
        std::lock_guard lock(SourcesMutex());
        for (auto source : Sources())
            if (!(meaning = source(code)).empty())
                break;
    }
    if (meaning.empty())
        return std::to_wstring(code);
    return std::to_wstring(code) + L" (" + meaning + L")";
}
