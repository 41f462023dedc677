// SPDX-License-Identifier: Apache-2.0
#include "resourcemodule.h"

#include "paths.h"
#include "peresourcereader.h"

#include <algorithm>
#include <deque>
#include <memory>
#include <span>

namespace resmod {

struct Resource {
    std::span<const uint8_t> bytes;
};

struct Module {
    PEResourceReader reader;
    // Handles given out by FindResourceW stay valid until the module is freed.
    std::deque<Resource> resources;
};

namespace {
thread_local int t_lastError = 0;

void SetLastError(int code) {
    t_lastError = code;
}
} // namespace

HMODULE LoadLibraryW(const std::wstring& path) {
    if (!PathAccessible(path, 4)) {
        SetLastError(kErrFileNotFound);
        return nullptr;
    }
    auto module = std::make_unique<Module>();
    if (!module->reader.Open(path)) {
        SetLastError(kErrBadExeFormat);
        return nullptr;
    }
    SetLastError(0);
    return module.release();
}

void FreeLibrary(HMODULE module) {
    delete module;
}

int LoadStringW(HMODULE module, unsigned id, wchar_t* buffer, int bufferMax) {
    if (!module || !buffer || bufferMax <= 0) {
        SetLastError(kErrInvalidParameter);
        return 0;
    }
    buffer[0] = L'\0';
    const auto text = module->reader.LoadString(id);
    if (!text) {
        SetLastError(kErrResourceNameNotFound);
        return 0;
    }
    const size_t count = std::min(text->size(), size_t(bufferMax - 1));
    text->copy(buffer, count);
    buffer[count] = L'\0';
    SetLastError(0);
    return int(count);
}

HRSRC FindResourceW(HMODULE module, unsigned id, const wchar_t* type) {
    if (!module || !type) {
        SetLastError(kErrInvalidParameter);
        return nullptr;
    }
    const auto bytes = module->reader.FindResource(std::wstring(type), id);
    if (!bytes) {
        SetLastError(kErrResourceNameNotFound);
        return nullptr;
    }
    module->resources.push_back(Resource{*bytes});
    return &module->resources.back();
}

unsigned SizeofResource(HMODULE module, HRSRC resource) {
    return module && resource ? unsigned(resource->bytes.size()) : 0;
}

const void* LoadResource(HMODULE module, HRSRC resource) {
    return module && resource ? resource->bytes.data() : nullptr;
}

const void* LockResource(const void* loaded) {
    return loaded;
}

int GetLastError() {
    return t_lastError;
}

} // namespace resmod
