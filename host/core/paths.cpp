// SPDX-License-Identifier: Apache-2.0
#include "paths.h"

#include "registry.h"
#include "text.h"

#include <cstdlib>
#include <system_error>

namespace fs = std::filesystem;

namespace {

std::wstring WithoutTrailingSeparator(std::wstring path) {
    while (path.size() > 1 && (path.back() == L'/' || path.back() == kNativeSeparator))
        path.pop_back();
    return path;
}

} // namespace

std::wstring PXGetRootDir() {
    if (const char* root = std::getenv("VEXA_DATA_ROOT"); root && *root)
        return WithoutTrailingSeparator(FromUtf8(root));
    const std::wstring setting = CPXRegistry::Instance().GetString(L"Paths", L"DataRoot", L"");
    if (!setting.empty())
        return WithoutTrailingSeparator(setting);
    return WithoutTrailingSeparator(PerUserDataFolder()) + kNativeSeparator + L"VexaSuite";
}

// The folder part of the running program's path.
std::wstring PXGetExeDir() {
    const std::wstring exe = ProgramPath();
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
