// SPDX-License-Identifier: Apache-2.0
#include "paths.h"

#include "text.h"

#include <windows.h>

#include <cstdlib>
#include <io.h>

namespace fs = std::filesystem;

std::string NativePath(const std::wstring& path) {
    return ToUtf8(path);
}

fs::path ToFsPath(const std::wstring& path) {
    return fs::path(path);
}

std::wstring FromFsPath(const fs::path& path) {
    return path.wstring();
}

// The roaming application data folder; the profile folder when that is not set.
std::wstring PerUserDataFolder() {
    for (const wchar_t* name : {L"APPDATA", L"USERPROFILE"}) {
        if (const wchar_t* value = _wgetenv(name); value && *value)
            return value;
    }
    return L".";
}

std::wstring ProgramPath() {
    std::wstring buffer(32768, L'\0');
    const DWORD n = GetModuleFileNameW(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
    buffer.resize(n);
    return buffer;
}

bool PathAccessible(const std::wstring& path, int mode) {
    return !path.empty() && _waccess(path.c_str(), mode & 6) == 0;
}

std::FILE* OpenNativeFile(const std::wstring& path, const char* mode) {
    return _wfopen(path.c_str(), FromUtf8(mode).c_str());
}
