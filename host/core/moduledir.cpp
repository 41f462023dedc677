// SPDX-License-Identifier: Apache-2.0
#include "moduledir.h"

#include "paths.h"
#include "text.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cstring>
#include <dlfcn.h>
#endif

std::wstring PXGetModuleDir(const void* address) {
#ifdef _WIN32
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCWSTR>(address), &module))
        return PXGetExeDir();
    wchar_t buffer[32768];
    const DWORD n = GetModuleFileNameW(module, buffer, 32768);
    const std::wstring file(buffer, n);
#else
    Dl_info info{};
    // The program itself may be reported by the name it was started with: only a path names a folder.
    if (!dladdr(address, &info) || !info.dli_fname || !std::strchr(info.dli_fname, '/'))
        return PXGetExeDir();
    const std::wstring file = GetFullPath(FromUtf8(info.dli_fname));
#endif
    const size_t slash = file.find_last_of(L"/\\");
    if (slash == std::wstring::npos)
        return PXGetExeDir();
    return slash == 0 ? file.substr(0, 1) : file.substr(0, slash);
}
