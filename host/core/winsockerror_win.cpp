// SPDX-License-Identifier: Apache-2.0
#include "winsockerror.h"

#include <winsock2.h>

#include <cstring>

int LastSocketError() {
    return WSAGetLastError();
}

// The C runtime's texts for its errno values (strerror keeps its text per thread there).
std::string SystemErrorText(int code) {
    const char* text = std::strerror(code);
    if (text == nullptr || std::strncmp(text, "Unknown error", 13) == 0)
        return {};
    return text;
}
