// SPDX-License-Identifier: Apache-2.0
#include "pxsettings.h"

#include "registry.h"

#include <QStringList>

namespace {

QString KeyPath(const std::wstring& section, const std::wstring& key) {
    return QString::fromStdWString(section) + QLatin1Char('/') + QString::fromStdWString(key);
}

} // namespace

CPXSettings::CPXSettings() : CPXSettings(DefaultPath()) {}

CPXSettings::CPXSettings(const QString& path)
    : m_settings(std::make_unique<QSettings>(path, QSettings::IniFormat)),
      m_isRegistryFile(path == DefaultPath()) {}

QString CPXSettings::DefaultPath() {
    return QString::fromStdString(CPXRegistry::Instance().Path());
}

QVariant CPXSettings::Read(const std::wstring& section, const std::wstring& key) const {
    // Picks up what CPXRegistry or another process wrote since the last read.
    m_settings->sync();
    return m_settings->value(KeyPath(section, key));
}

std::wstring CPXSettings::GetString(const std::wstring& section, const std::wstring& key,
                                    const std::wstring& fallback) const {
    const QVariant value = Read(section, key);
    if (!value.isValid())
        return fallback;
    // An unquoted value with commas reads back as a list; it was one text in the file.
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QLatin1Char(',')).toStdWString();
    return value.toString().toStdWString();
}

int CPXSettings::GetInt(const std::wstring& section, const std::wstring& key, int fallback) const {
    bool ok = false;
    const int value = QString::fromStdWString(GetString(section, key)).trimmed().toInt(&ok);
    return ok ? value : fallback;
}

bool CPXSettings::Contains(const std::wstring& section, const std::wstring& key) const {
    return Read(section, key).isValid();
}

bool CPXSettings::SetString(const std::wstring& section, const std::wstring& key, const std::wstring& value) {
    m_settings->setValue(KeyPath(section, key), QString::fromStdWString(value));
    return Saved();
}

bool CPXSettings::SetInt(const std::wstring& section, const std::wstring& key, int value) {
    m_settings->setValue(KeyPath(section, key), value);
    return Saved();
}

bool CPXSettings::Remove(const std::wstring& section, const std::wstring& key) {
    m_settings->remove(KeyPath(section, key));
    return Saved();
}

bool CPXSettings::Saved() {
    m_settings->sync();
    const bool ok = m_settings->status() == QSettings::NoError;
    if (ok && m_isRegistryFile)
        CPXRegistry::Instance().Reload();
    return ok;
}
