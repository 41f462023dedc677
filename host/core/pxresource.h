// SPDX-License-Identifier: Apache-2.0
#pragma once
// String tables of loaded modules. A module registers its table when loaded; texts are looked up by
// numeric id in the calling thread's current module first, then in every registered table.
#include <cstddef>
#include <string>

struct PXStringEntry {
    int id;
    const wchar_t* text;
};

// Registers (or replaces) the table of a module. The entries must outlive the registration.
void PXRegisterStringTable(const void* module, const PXStringEntry* entries, size_t count);
void PXUnregisterStringTable(const void* module);

// Sets the calling thread's current module; returns the previous one.
const void* PXSetResourceModule(const void* module);

// The text with that id; empty when no table has it.
std::wstring PXLoadCString(int id);

// Makes a module current for one scope and restores the previous one at its end.
class PXResourceScope {
public:
    explicit PXResourceScope(const void* module) : m_previous(PXSetResourceModule(module)) {}
    ~PXResourceScope() { PXSetResourceModule(m_previous); }
    PXResourceScope(const PXResourceScope&) = delete;
    PXResourceScope& operator=(const PXResourceScope&) = delete;

private:
    const void* m_previous;
};
