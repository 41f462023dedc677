// SPDX-License-Identifier: Apache-2.0
#pragma once
// The suite's settings seen from the user interface: QSettings over the same INI file as CPXRegistry
// (the file named by $VEXA_SETTINGS, else the default). Values are addressed as CPXRegistry's are: a
// section ("Tune") and a key ("RemoveReportDays"). Every read sees the file as it is now, and every
// write is saved at once and made known to CPXRegistry. UI thread.
#include <QSettings>

#include <memory>
#include <string>

class CPXSettings {
public:
    // Over the suite's settings file.
    CPXSettings();
    // Over another file (tests).
    explicit CPXSettings(const QString& path);

    std::wstring GetString(const std::wstring& section, const std::wstring& key,
                           const std::wstring& fallback = {}) const;
    int GetInt(const std::wstring& section, const std::wstring& key, int fallback) const;
    bool Contains(const std::wstring& section, const std::wstring& key) const;
    bool SetString(const std::wstring& section, const std::wstring& key, const std::wstring& value);
    bool SetInt(const std::wstring& section, const std::wstring& key, int value);
    bool Remove(const std::wstring& section, const std::wstring& key);

    QString FileName() const { return m_settings->fileName(); }

    // The settings file CPXRegistry uses.
    static QString DefaultPath();

private:
    QVariant Read(const std::wstring& section, const std::wstring& key) const;
    bool Saved();

    std::unique_ptr<QSettings> m_settings;
    bool m_isRegistryFile;
};
