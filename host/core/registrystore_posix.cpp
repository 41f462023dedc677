// SPDX-License-Identifier: Apache-2.0
#include "registrystore.h"

#include <cstdlib>

#include <pwd.h>
#include <unistd.h>

// <config folder>/VexaSuite/vexa.ini; there is no store besides files.
std::string PlatformSettingsLocation() {
    std::string config;
    if (const char* xdg = std::getenv("XDG_CONFIG_HOME"); xdg && *xdg) {
        config = xdg;
    } else {
        std::string home;
        if (const char* env = std::getenv("HOME"); env && *env)
            home = env;
        else if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir)
            home = pw->pw_dir;
        config = home + "/.config";
    }
    return config + "/VexaSuite/vexa.ini";
}

bool IsPlatformSettingsStore(const std::string&) {
    return false;
}

void LoadPlatformSettings(SettingsSections& sections) {
    sections.clear();
}

bool SetPlatformSetting(const std::string&, const std::string&, const std::string&) {
    return false;
}

bool RemovePlatformSetting(const std::string&, const std::string&) {
    return false;
}

long CurrentProcessId() {
    return static_cast<long>(getpid());
}
