// SPDX-License-Identifier: Apache-2.0
#pragma once
// Workstation paths. The platform's native separator is used where the suite writes a backslash.
#include <cstdio>
#include <filesystem>
#include <string>

#ifdef _WIN32
inline constexpr wchar_t kNativeSeparator = L'\\';
#else
inline constexpr wchar_t kNativeSeparator = L'/';
#endif

// The suite's data root: $VEXA_DATA_ROOT, else the setting Paths/DataRoot, else the per-user data
// folder + "/VexaSuite".
std::wstring PXGetRootDir();
// The folder of the running program.
std::wstring PXGetExeDir();
// Creates a folder and every missing parent; true when it exists afterwards.
bool FullDirCreate(const std::wstring& path);
// Whether a path exists (and is readable/writable for mode 6, as _waccess).
bool PathAccessible(const std::wstring& path, int mode);
bool IsDirectory(const std::wstring& path);
// Makes a path absolute against the current folder and removes "." and ".." parts.
std::wstring GetFullPath(const std::wstring& path);
// Narrow native path for the platform's narrow file functions (UTF-8).
std::string NativePath(const std::wstring& path);
// A path for std::filesystem: wide on Windows, UTF-8 elsewhere, and back.
std::filesystem::path ToFsPath(const std::wstring& path);
std::wstring FromFsPath(const std::filesystem::path& path);
// fopen with a wide path (_wfopen on Windows).
std::FILE* OpenNativeFile(const std::wstring& path, const char* mode);
// The platform's per-user data folder (XDG data home, %APPDATA%) and the running program's path.
std::wstring PerUserDataFolder();
std::wstring ProgramPath();
