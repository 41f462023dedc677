// SPDX-License-Identifier: Apache-2.0
#include "filetype.h"

#include "remotename.h"

std::wstring GetFileType(const std::wstring& name) {
    const std::wstring file = LastPathPart(name);
    const size_t dot = file.rfind(L'.');
    if (dot == std::wstring::npos)
        return {};
    return file.substr(dot + 1);
}
