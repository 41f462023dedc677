// SPDX-License-Identifier: Apache-2.0
#include "vexatextfile.h"

#include "stdiofile.h"
#include "text.h"

#include <cerrno>

std::wstring ToEditorText(std::string_view bytes) {
    std::string expanded;
    expanded.reserve(bytes.size() + bytes.size() / 16);
    for (char c : bytes) {
        if (c == '\n')
            expanded += '\r';
        expanded += c;
    }
    return FromUtf8(expanded);
}

std::string FromEditorText(const std::wstring& text) {
    std::string bytes = ToUtf8(text);
    std::erase(bytes, '\r');
    return bytes;
}

bool ReadTextForEditing(const std::wstring& fullName, std::wstring* text, int* error) {
    StdioFile file;
    if (!file.Open(fullName, L"r")) {
        *error = file.GetError();
        return false;
    }
    std::string bytes;
    char block[kTextFileReadBlock];
    for (;;) {
        const int count = file.Read(block, kTextFileReadBlock);
        if (count < 0) {
            *error = file.GetError();
            return false;
        }
        if (count == 0)
            break;
        bytes.append(block, static_cast<size_t>(count));
    }
    file.Close();
    *text = ToEditorText(bytes);
    *error = 0;
    return true;
}

bool WriteEditedText(const std::wstring& fullName, const std::wstring& text, int* error) {
    StdioFile file;
    if (!file.Open(fullName, L"w")) {
        *error = file.GetError();
        return false;
    }
    const std::string bytes = FromEditorText(text);
    size_t done = 0;
    while (done < bytes.size()) {
        const int count = file.Write(bytes.data() + done, static_cast<int>(bytes.size() - done));
        if (count <= 0) {
            *error = file.GetError() != 0 ? file.GetError() : EIO;
            return false;
        }
        done += static_cast<size_t>(count);
    }
    // A remote file sends its last data when it is closed: only then is the write known to be whole.
    if (!file.Close()) {
        *error = file.GetError() != 0 ? file.GetError() : EIO;
        return false;
    }
    *error = 0;
    return true;
}
