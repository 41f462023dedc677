// SPDX-License-Identifier: Apache-2.0
#include "pxresource.h"

#include <mutex>
#include <utility>
#include <vector>

namespace {

struct StringTable {
    const void* module;
    const PXStringEntry* entries;
    size_t count;
};

std::mutex& TablesMutex() {
    static std::mutex mutex;
    return mutex;
}

// In registration order, so that when several modules share an id the first loaded one answers.
std::vector<StringTable>& Tables() {
    static std::vector<StringTable> tables;
    return tables;
}

thread_local const void* t_currentModule = nullptr;

const wchar_t* FindIn(const StringTable& table, int id) {
    for (size_t i = 0; i < table.count; ++i) {
        if (table.entries[i].id == id)
            return table.entries[i].text;
    }
    return nullptr;
}

} // namespace

void PXRegisterStringTable(const void* module, const PXStringEntry* entries, size_t count) {
    std::lock_guard lock(TablesMutex());
    for (auto& table : Tables()) {
        if (table.module == module) {
            table.entries = entries;
            table.count = entries ? count : 0;
            return;
        }
    }
    Tables().push_back({module, entries, entries ? count : 0});
}

void PXUnregisterStringTable(const void* module) {
    std::lock_guard lock(TablesMutex());
    auto& tables = Tables();
    std::erase_if(tables, [module](const StringTable& table) { return table.module == module; });
}

const void* PXSetResourceModule(const void* module) {
    return std::exchange(t_currentModule, module);
}

std::wstring PXLoadCString(int id) {
    std::lock_guard lock(TablesMutex());
    const auto& tables = Tables();
    if (t_currentModule != nullptr) {
        for (const auto& table : tables) {
            if (table.module == t_currentModule) {
                if (const wchar_t* text = FindIn(table, id))
                    return text;
                break;
            }
        }
    }
    for (const auto& table : tables) {
        if (const wchar_t* text = FindIn(table, id))
            return text;
    }
    return {};
}
