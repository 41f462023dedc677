#pragma once
// Workstation paths. The platform's native separator is used where the suite writes a backslash.
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
// Narrow native path for the platform's file functions.
std::string NativePath(const std::wstring& path);
