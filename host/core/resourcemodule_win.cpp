// SPDX-License-Identifier: Apache-2.0
#include "resourcemodule.h"

#include <windows.h>

#include <deque>

namespace resmod {

struct Resource {
    ::HRSRC handle = nullptr;
};

// The system's module handle, loaded as a data file: nothing in it runs.
struct Module {
    ::HMODULE handle = nullptr;
    // Handles given out by FindResourceW stay valid until the module is freed.
    std::deque<Resource> resources;
};

namespace {
thread_local int t_lastError = 0;

void KeepLastError(int code) {
    t_lastError = code;
}
} // namespace

HMODULE LoadLibraryW(const std::wstring& path) {
    ::HMODULE handle = LoadLibraryExW(path.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (handle == nullptr) {
        KeepLastError(static_cast<int>(::GetLastError()));
        return nullptr;
    }
    KeepLastError(0);
    return new Module{handle, {}};
}

void FreeLibrary(HMODULE module) {
    if (module == nullptr)
        return;
    ::FreeLibrary(module->handle);
    delete module;
}

int LoadStringW(HMODULE module, unsigned id, wchar_t* buffer, int bufferMax) {
    if (!module || !buffer || bufferMax <= 0) {
        KeepLastError(kErrInvalidParameter);
        return 0;
    }
    buffer[0] = L'\0';
    ::SetLastError(0);
    const int count = ::LoadStringW(module->handle, id, buffer, bufferMax);
    KeepLastError(count > 0 ? 0 : (::GetLastError() != 0 ? int(::GetLastError()) : kErrResourceNameNotFound));
    return count;
}

HRSRC FindResourceW(HMODULE module, unsigned id, const wchar_t* type) {
    if (!module || !type) {
        KeepLastError(kErrInvalidParameter);
        return nullptr;
    }
    ::HRSRC found = ::FindResourceW(module->handle, MAKEINTRESOURCEW(id), type);
    if (found == nullptr) {
        KeepLastError(static_cast<int>(::GetLastError()));
        return nullptr;
    }
    KeepLastError(0);
    module->resources.push_back(Resource{found});
    return &module->resources.back();
}

unsigned SizeofResource(HMODULE module, HRSRC resource) {
    return module && resource ? ::SizeofResource(module->handle, resource->handle) : 0;
}

const void* LoadResource(HMODULE module, HRSRC resource) {
    return module && resource ? ::LoadResource(module->handle, resource->handle) : nullptr;
}

const void* LockResource(const void* loaded) {
    return loaded ? ::LockResource(const_cast<void*>(loaded)) : nullptr;
}

int GetLastError() {
    return t_lastError;
}

} // namespace resmod
