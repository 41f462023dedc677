// SPDX-License-Identifier: Apache-2.0
#pragma once
// The platform's calls for resource-only modules (".ddll"), so code that reads them reads as it would on
// Windows. Here they sit on PEResourceReader; a Windows build may forward them to the system's loader.
// Not thread-safe per module: a module handle belongs to the thread that loaded it.
#include <string>

namespace resmod {

struct Module;
struct Resource;
using HMODULE = Module*;
using HRSRC = const Resource*;

// Error numbers of the resource calls, as the platform numbers them.
enum : int {
    kErrFileNotFound = 2,
    kErrInvalidParameter = 87,
    kErrBadExeFormat = 193,
    kErrResourceTypeNotFound = 1813,
    kErrResourceNameNotFound = 1814,
};

// Loads a module for its resources; null with GetLastError() set on failure.
HMODULE LoadLibraryW(const std::wstring& path);
void FreeLibrary(HMODULE module);
// Copies string `id` into `buffer` (at most `bufferMax - 1` characters, always terminated) and returns
// its length; 0 when the string is absent (GetLastError() then says why).
int LoadStringW(HMODULE module, unsigned id, wchar_t* buffer, int bufferMax);
// The resource of a named type and numeric id; null when there is none. Valid until FreeLibrary.
HRSRC FindResourceW(HMODULE module, unsigned id, const wchar_t* type);
unsigned SizeofResource(HMODULE module, HRSRC resource);
const void* LoadResource(HMODULE module, HRSRC resource);
const void* LockResource(const void* loaded);

// The calling thread's last error of these calls, and its text ("193 (not a valid module)").
int GetLastError();
std::wstring GetErrorMessage(int code);

} // namespace resmod
