// SPDX-License-Identifier: Apache-2.0
#pragma once
// Keeps the configured instruments in the settings, section "Instruments":
// Count, then <i>/Name, <i>/Address and <i>/Type for i = 0 .. Count-1.
#include "instrumentconfig.h"

#include <QList>

class CPXRegistry;

class InstrumentStore {
public:
    explicit InstrumentStore(CPXRegistry& registry) : m_registry(registry) {}

    // Entries without an address are skipped; a missing name becomes the address.
    QList<InstrumentConfig> Load() const;
    // Replaces the saved list; false when the settings file could not be written.
    bool Save(const QList<InstrumentConfig>& instruments);

private:
    CPXRegistry& m_registry;
};
