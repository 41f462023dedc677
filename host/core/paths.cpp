#include "paths.h"

#include "registry.h"
#include "text.h"

#include <cstdlib>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <climits>
#include <pwd.h>
#include <unistd.h>
#endif

namespace fs = std::filesystem;

namespace {

std::wstring HomeDir() {
    if (const char* home = std::getenv("HOME"); home && *home)
        return FromUtf8(home);
#ifndef _WIN32
    if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir)
        return FromUtf8(pw->pw_dir);
#endif
    return {};
}

std::wstring WithoutTrailingSeparator(std::wstring path) {
    while (path.size() > 1 && (path.back() == L'/' || path.back() == kNativeSeparator))
        path.pop_back();
    return path;
}

fs::path ToFsPath(const std::wstring& path) {
#ifdef _WIN32
    return fs::path(path);
#else
    return fs::path(ToUtf8(path));
#endif
}

std::wstring FromFsPath(const fs::path& path) {
#ifdef _WIN32
    return path.wstring();
#else
    return FromUtf8(path.string());
#endif
}

} // namespace

std::string NativePath(const std::wstring& path) {
    return ToUtf8(path);
}

std::wstring PXGetRootDir() {
    if (const char* root = std::getenv("VEXA_DATA_ROOT"); root && *root)
        return WithoutTrailingSeparator(FromUtf8(root));
    const std::wstring setting = CPXRegistry::Instance().GetString(L"Paths", L"DataRoot", L"");
    if (!setting.empty())
        return WithoutTrailingSeparator(setting);
    std::wstring base;
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg)
        base = FromUtf8(xdg);
    else
        base = HomeDir() + L"/.local/share";
    return WithoutTrailingSeparator(base) + kNativeSeparator + L"VexaSuite";
}

std::wstring PXGetExeDir() {
#ifdef _WIN32
    wchar_t buffer[32768];
    const DWORD n = GetModuleFileNameW(nullptr, buffer, 32768);
    std::wstring exe(buffer, n);
#else
    std::error_code ec;
    const fs::path exePath = fs::read_symlink("/proc/self/exe", ec);
    if (ec)
        return GetFullPath(L".");
    std::wstring exe = FromFsPath(exePath);
#endif
    const size_t slash = exe.find_last_of(L"/\\");
    if (slash == std::wstring::npos)
        return GetFullPath(L".");
    return slash == 0 ? exe.substr(0, 1) : exe.substr(0, slash);
}

bool FullDirCreate(const std::wstring& path) {
    if (path.empty())
        return false;
    std::error_code ec;
    const fs::path target = ToFsPath(path);
    fs::create_directories(target, ec);
    return fs::is_directory(target, ec);
}

bool PathAccessible(const std::wstring& path, int mode) {
    if (path.empty())
        return false;
#ifdef _WIN32
    return _waccess(path.c_str(), mode) == 0;
#else
    int flags = F_OK;
    if (mode & 2)
        flags |= W_OK;
    if (mode & 4)
        flags |= R_OK;
    return access(NativePath(path).c_str(), flags) == 0;
#endif
}

bool IsDirectory(const std::wstring& path) {
    std::error_code ec;
    return !path.empty() && fs::is_directory(ToFsPath(path), ec);
}

std::wstring GetFullPath(const std::wstring& path) {
    std::error_code ec;
    fs::path absolute = fs::absolute(ToFsPath(path.empty() ? std::wstring(L".") : path), ec);
    if (ec)
        return path;
    std::wstring result = FromFsPath(absolute.lexically_normal());
    return WithoutTrailingSeparator(result);
}
