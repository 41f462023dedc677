// SPDX-License-Identifier: Apache-2.0
#pragma once
// The platform's side of CPXRegistry: where the settings live by default, and the platform's own
// store where it has one (the Windows registry under HKEY_CURRENT_USER\Software\VexaSuite). Sections
// are "A/B" paths, values UTF-8, as CPXRegistry keeps them.
#include <map>
#include <string>

using SettingsSections = std::map<std::string, std::map<std::string, std::string>>;

// The default settings location: an INI file path, or the name of the platform's store.
std::string PlatformSettingsLocation();
// Whether `location` names the platform's store rather than an INI file.
bool IsPlatformSettingsStore(const std::string& location);
void LoadPlatformSettings(SettingsSections& sections);
bool SetPlatformSetting(const std::string& section, const std::string& key, const std::string& value);
bool RemovePlatformSetting(const std::string& section, const std::string& key);
// For temporary file names that other processes do not pick.
long CurrentProcessId();
