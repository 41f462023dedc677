// SPDX-License-Identifier: Apache-2.0
#include "registrystore.h"

#include "text.h"

#include <windows.h>

namespace {

constexpr char kStoreName[] = "HKEY_CURRENT_USER\\Software\\VexaSuite";
constexpr wchar_t kRootKey[] = L"Software\\VexaSuite";

// Section "A/B" is the key Software\VexaSuite\A\B.
std::wstring KeyPath(const std::string& section) {
    std::wstring path = kRootKey;
    if (!section.empty())
        path += L"\\" + ReplaceAll(FromUtf8(section), L"/", L"\\");
    return path;
}

void LoadKey(HKEY key, const std::string& section, SettingsSections& sections) {
    wchar_t name[16384];
    for (DWORD i = 0;; ++i) {
        DWORD nameLength = DWORD(std::size(name));
        DWORD type = 0;
        DWORD bytes = 0;
        if (RegEnumValueW(key, i, name, &nameLength, nullptr, &type, nullptr, &bytes) != ERROR_SUCCESS)
            break;
        if (type != REG_SZ && type != REG_EXPAND_SZ)
            continue;
        std::wstring value(bytes / sizeof(wchar_t) + 1, L'\0');
        DWORD size = DWORD(value.size() * sizeof(wchar_t));
        nameLength = DWORD(std::size(name));
        if (RegEnumValueW(key, i, name, &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(value.data()),
                          &size) != ERROR_SUCCESS)
            continue;
        value.resize(size / sizeof(wchar_t));
        while (!value.empty() && value.back() == L'\0')
            value.pop_back();
        sections[section][ToUtf8(std::wstring(name, nameLength))] = ToUtf8(value);
    }
    for (DWORD i = 0;; ++i) {
        DWORD nameLength = DWORD(std::size(name));
        if (RegEnumKeyExW(key, i, name, &nameLength, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        const std::string child = ToUtf8(std::wstring(name, nameLength));
        HKEY sub = nullptr;
        if (RegOpenKeyExW(key, name, 0, KEY_READ, &sub) != ERROR_SUCCESS)
            continue;
        LoadKey(sub, section.empty() ? child : section + "/" + child, sections);
        RegCloseKey(sub);
    }
}

} // namespace

std::string PlatformSettingsLocation() {
    return kStoreName;
}

bool IsPlatformSettingsStore(const std::string& location) {
    return location == kStoreName;
}

void LoadPlatformSettings(SettingsSections& sections) {
    sections.clear();
    HKEY key = nullptr;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, kRootKey, 0, KEY_READ, &key) != ERROR_SUCCESS)
        return;
    LoadKey(key, "", sections);
    RegCloseKey(key);
}

bool SetPlatformSetting(const std::string& section, const std::string& key, const std::string& value) {
    HKEY handle = nullptr;
    if (RegCreateKeyExW(HKEY_CURRENT_USER, KeyPath(section).c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr,
                        &handle, nullptr) != ERROR_SUCCESS)
        return false;
    const std::wstring wide = FromUtf8(value);
    const LSTATUS status =
        RegSetValueExW(handle, FromUtf8(key).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(wide.c_str()),
                       DWORD((wide.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(handle);
    return status == ERROR_SUCCESS;
}

bool RemovePlatformSetting(const std::string& section, const std::string& key) {
    HKEY handle = nullptr;
    const LSTATUS opened =
        RegOpenKeyExW(HKEY_CURRENT_USER, KeyPath(section).c_str(), 0, KEY_SET_VALUE, &handle);
    if (opened == ERROR_FILE_NOT_FOUND)
        return true;
    if (opened != ERROR_SUCCESS)
        return false;
    const LSTATUS status = RegDeleteValueW(handle, FromUtf8(key).c_str());
    RegCloseKey(handle);
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

long CurrentProcessId() {
    return static_cast<long>(GetCurrentProcessId());
}
