// SPDX-License-Identifier: Apache-2.0
#include "paths.h"

#include "text.h"

#include <climits>
#include <cstdlib>
#include <system_error>

#include <pwd.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::wstring HomeDir() {
    if (const char* home = std::getenv("HOME"); home && *home)
        return FromUtf8(home);
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir)
        return FromUtf8(pw->pw_dir);
    return {};
}

} // namespace

std::string NativePath(const std::wstring& path) {
    return ToUtf8(path);
}

fs::path ToFsPath(const std::wstring& path) {
    return fs::path(ToUtf8(path));
}

std::wstring FromFsPath(const fs::path& path) {
    return FromUtf8(path.string());
}

std::wstring PerUserDataFolder() {
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg)
        return FromUtf8(xdg);
    return HomeDir() + L"/.local/share";
}

std::wstring ProgramPath() {
    std::error_code ec;
    const fs::path exePath = fs::read_symlink("/proc/self/exe", ec);
    return ec ? std::wstring() : FromFsPath(exePath);
}

bool PathAccessible(const std::wstring& path, int mode) {
    if (path.empty())
        return false;
    int flags = F_OK;
    if (mode & 2)
        flags |= W_OK;
    if (mode & 4)
        flags |= R_OK;
    return access(NativePath(path).c_str(), flags) == 0;
}

std::FILE* OpenNativeFile(const std::wstring& path, const char* mode) {
    return std::fopen(NativePath(path).c_str(), mode);
}
