#pragma once
// The module's string table: every user-visible text by its numeric identifier (res/resource.h).
#include <cstddef>

struct VexaStringEntry {
    int id;
    const wchar_t* text;
};

// The table itself, sorted by identifier.
const VexaStringEntry* VexaStringTable(std::size_t* count);

// Makes the table known to the host's string loader (PXLoadCString) for this module. Idempotent; the
// module's static objects call it before anything loads a string.
void RegisterVexaStrings();
