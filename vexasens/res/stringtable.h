// SPDX-License-Identifier: Apache-2.0
#pragma once
// The module's string table: every user-visible text by its numeric identifier (res/resource.h).
#include "pxresource.h"

#include <cstddef>

// This module's handle for the host's resource functions (PXRegisterStringTable, PXResourceScope).
const void* VexaResourceModule();

// The table itself.
const PXStringEntry* VexaStringTable(std::size_t* count);

// Makes the table known to the host's string loader (PXLoadCString) under VexaResourceModule().
// Idempotent; the module's static objects call it before anything loads a string, and unregister it
// when the module goes.
void RegisterVexaStrings();
void UnregisterVexaStrings();
