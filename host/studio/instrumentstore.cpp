// SPDX-License-Identifier: Apache-2.0
#include "instrumentstore.h"

#include "registry.h"

namespace {
const std::wstring kSection = L"Instruments";

std::wstring EntrySection(int index) {
    return kSection + L"/" + std::to_wstring(index);
}
} // namespace

QList<InstrumentConfig> InstrumentStore::Load() const {
    QList<InstrumentConfig> result;
    m_registry.Reload();
    const int count = m_registry.GetInt(kSection, L"Count", 0);
    // A hand-edited count cannot make the loop run away.
    for (int i = 0; i < count && i < 1000; ++i) {
        const std::wstring section = EntrySection(i);
        InstrumentConfig config;
        config.address = QString::fromStdWString(m_registry.GetString(section, L"Address", L"")).trimmed();
        if (config.address.isEmpty())
            continue;
        config.name = QString::fromStdWString(m_registry.GetString(section, L"Name", L"")).trimmed();
        if (config.name.isEmpty())
            config.name = config.address;
        const QString type = QString::fromStdWString(m_registry.GetString(section, L"Type", L"")).trimmed();
        if (!type.isEmpty())
            config.sensorType = type;
        result.append(config);
    }
    return result;
}

bool InstrumentStore::Save(const QList<InstrumentConfig>& instruments) {
    const int oldCount = m_registry.GetInt(kSection, L"Count", 0);
    bool ok = true;
    for (int i = 0; i < instruments.size(); ++i) {
        const std::wstring section = EntrySection(i);
        ok = m_registry.SetString(section, L"Name", instruments[i].name.toStdWString()) && ok;
        ok = m_registry.SetString(section, L"Address", instruments[i].address.toStdWString()) && ok;
        ok = m_registry.SetString(section, L"Type", instruments[i].sensorType.toStdWString()) && ok;
    }
    for (int i = static_cast<int>(instruments.size()); i < oldCount && i < 1000; ++i) {
        const std::wstring section = EntrySection(i);
        m_registry.Remove(section, L"Name");
        m_registry.Remove(section, L"Address");
        m_registry.Remove(section, L"Type");
    }
    ok = m_registry.SetInt(kSection, L"Count", static_cast<int>(instruments.size())) && ok;
    return ok;
}
