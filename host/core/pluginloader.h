// SPDX-License-Identifier: Apache-2.0
#pragma once
// Loads the sensor-type modules (*.sdll) of a folder into the running host. A module exports no
// functions: loading it constructs its static plug-in description, which registers itself with the
// host (ISensorInfo::SensorTypes). Modules stay loaded for the life of the process, because the
// sensor objects they make may live until then.
//
// The host program must export its own symbols (vexa_host_program in cmake/VexaHost.cmake), so that a
// module binds to the host's registries instead of bringing copies of its own.
#include <string>
#include <vector>

class ISensorInfo;

struct PluginLoadResult {
    std::wstring path;
    bool loaded = false;
    std::wstring error;                    // the system loader's message when not loaded
    void* handle = nullptr;                // the module instance (for ISensorInfo::Initialize) when loaded
    std::vector<ISensorInfo*> sensorTypes; // the types that loading it registered (none on a second load)
};

struct PluginFolderReport {
    std::wstring folder;
    bool folderFound = false;
    std::vector<PluginLoadResult> modules; // in file-name order
    std::vector<std::wstring> sensorTypes; // short names of every sensor type known afterwards

    bool AllLoaded() const;
    // A readable account: one line per module, then the sensor types, or why nothing was loaded.
    std::wstring ToText() const;
};

class PluginLoader {
public:
    inline static const wchar_t kModuleSuffix[] = L".sdll";

    // Loads every module of `folder` (each at most once per process).
    static PluginFolderReport LoadFolder(const std::wstring& folder);
    // Loads one module file.
    static PluginLoadResult LoadModule(const std::wstring& path);

private:
    // The system loader's call: the module's handle, or null with the loader's message in `error`.
    static void* OpenModule(const std::wstring& path, std::wstring* error);
};
