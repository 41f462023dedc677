// SPDX-License-Identifier: Apache-2.0
#include "moduledir.h"

#include "paths.h"
#include "text.h"

#include <cstring>
#include <dlfcn.h>

std::wstring PXGetModuleDir(const void* address) {
    Dl_info info{};
    // The program itself may be reported by the name it was started with: only a path names a folder.
    if (!dladdr(address, &info) || !info.dli_fname || !std::strchr(info.dli_fname, '/'))
        return PXGetExeDir();
    const std::wstring file = GetFullPath(FromUtf8(info.dli_fname));
    const size_t slash = file.find_last_of(L'/');
    return slash == 0 ? file.substr(0, 1) : file.substr(0, slash);
}
