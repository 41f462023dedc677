// SPDX-License-Identifier: Apache-2.0
#include "pluginloader.h"

#include "paths.h"
#include "text.h"

#include <dlfcn.h>

void* PluginLoader::OpenModule(const std::wstring& path, std::wstring* error) {
    dlerror(); // clear a message left by someone else
    void* handle = dlopen(NativePath(path).c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) {
        const char* message = dlerror();
        *error = FromUtf8(message != nullptr ? message : "unknown loader error");
    }
    return handle;
}
