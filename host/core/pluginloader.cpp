// SPDX-License-Identifier: Apache-2.0
#include "pluginloader.h"

#include "paths.h"
#include "sensorinfo.h"
#include "text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace {

bool HasModuleSuffix(const std::filesystem::path& path) {
    return EqualsNoCase(FromFsPath(path.extension()), PluginLoader::kModuleSuffix);
}

} // namespace

bool PluginFolderReport::AllLoaded() const {
    return std::all_of(modules.begin(), modules.end(), [](const PluginLoadResult& r) { return r.loaded; });
}

std::wstring PluginFolderReport::ToText() const {
    std::wstring text;
    if (!folderFound) {
        text = L"The module folder " + folder + L" does not exist.\n";
    } else if (modules.empty()) {
        text = L"No modules (*" + std::wstring(PluginLoader::kModuleSuffix) + L") in " + folder + L".\n";
    } else {
        text = L"Modules in " + folder + L":\n";
        for (const PluginLoadResult& module : modules) {
            std::wstring name = FromFsPath(ToFsPath(module.path).filename());
            text += L"  " + name + (module.loaded ? L": loaded\n" : L": not loaded: " + module.error + L"\n");
        }
    }
    if (sensorTypes.empty()) {
        text += L"No sensor types are registered.\n";
    } else {
        text += L"Sensor types:";
        for (const std::wstring& type : sensorTypes)
            text += L" " + type;
        text += L"\n";
    }
    return text;
}

PluginLoadResult PluginLoader::LoadModule(const std::wstring& path) {
    PluginLoadResult result;
    result.path = path;
    const std::vector<ISensorInfo*> before = ISensorInfo::SensorTypes();
    result.handle = OpenModule(path, &result.error);
    result.loaded = result.handle != nullptr;
    for (ISensorInfo* type : ISensorInfo::SensorTypes()) {
        if (std::find(before.begin(), before.end(), type) == before.end())
            result.sensorTypes.push_back(type);
    }
    return result;
}

PluginFolderReport PluginLoader::LoadFolder(const std::wstring& folder) {
    PluginFolderReport report;
    report.folder = folder;
    std::error_code error;
    const std::filesystem::path root = ToFsPath(folder);
    report.folderFound = std::filesystem::is_directory(root, error);
    if (report.folderFound) {
        std::vector<std::filesystem::path> files;
        for (std::filesystem::directory_iterator it(root, error), end; !error && it != end;
             it.increment(error)) {
            std::error_code typeError;
            if (it->is_regular_file(typeError) && HasModuleSuffix(it->path()))
                files.push_back(it->path());
        }
        std::sort(files.begin(), files.end());
        for (const std::filesystem::path& file : files)
            report.modules.push_back(LoadModule(FromFsPath(file)));
    }
    for (ISensorInfo* type : ISensorInfo::SensorTypes())
        report.sensorTypes.push_back(type->ShortName());
    return report;
}
