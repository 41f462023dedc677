// SPDX-License-Identifier: Apache-2.0
#include "moduledir.h"

#include "paths.h"

#include <windows.h>

std::wstring PXGetModuleDir(const void* address) {
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                                GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<LPCWSTR>(address), &module))
        return PXGetExeDir();
    wchar_t buffer[32768];
    const DWORD n = GetModuleFileNameW(module, buffer, 32768);
    const std::wstring file(buffer, n);
    const size_t slash = file.find_last_of(L"/\\");
    return slash == std::wstring::npos ? PXGetExeDir() : file.substr(0, slash);
}
