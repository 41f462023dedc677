// SPDX-License-Identifier: Apache-2.0
#include "netfileimpl.h"

#include "text.h"

#include <algorithm>
#include <climits>

bool NETFileImpl::ReadString(std::wstring& line) {
    if (!m_open)
        return false;
    std::string bytes;
    bool readAny = false;
    char c = 0;
    while (Read(&c, 1) == 1) {
        readAny = true;
        if (c == '\r')
            continue;
        if (c == '\n')
            break;
        bytes.push_back(c);
    }
    line = FromUtf8(bytes);
    return readAny;
}

int NETFileImpl::WriteString(const std::wstring& text) {
    m_pendingText += ToUtf8(text);
    return static_cast<int>(text.size());
}

void NETFileImpl::FlushPendingText() {
    if (m_pendingText.empty())
        return;
    std::string text;
    text.swap(m_pendingText);
    // Text beyond INT_MAX bytes goes in pieces: Write takes an int count.
    std::size_t offset = 0;
    while (offset < text.size()) {
        const int piece = static_cast<int>(std::min<std::size_t>(text.size() - offset, INT_MAX));
        if (Write(text.data() + offset, piece) != piece)
            break;
        offset += static_cast<std::size_t>(piece);
    }
}
