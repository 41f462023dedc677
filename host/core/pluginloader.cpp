#include "pluginloader.h"

#include "paths.h"
#include "sensorinfo.h"
#include "text.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {

std::wstring WidePath(const std::filesystem::path& path) {
#ifdef _WIN32
    return path.wstring();
#else
    return FromUtf8(path.string());
#endif
}

bool HasModuleSuffix(const std::filesystem::path& path) {
    return EqualsNoCase(WidePath(path.extension()), PluginLoader::kModuleSuffix);
}

#ifdef _WIN32
std::wstring SystemMessage(DWORD error) {
    wchar_t* text = nullptr;
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                       FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::wstring message = text != nullptr ? text : L"";
    LocalFree(text);
    while (!message.empty() && (message.back() == L'\n' || message.back() == L'\r'))
        message.pop_back();
    return std::to_wstring(error) + L" (" + message + L")";
}
#endif

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
            std::wstring name = WidePath(std::filesystem::path(NativePath(module.path)).filename());
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
#ifdef _WIN32
    result.handle = LoadLibraryW(path.c_str());
    if (result.handle == nullptr)
        result.error = SystemMessage(GetLastError());
#else
    dlerror(); // clear a message left by someone else
    result.handle = dlopen(NativePath(path).c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (result.handle == nullptr) {
        const char* message = dlerror();
        result.error = FromUtf8(message != nullptr ? message : "unknown loader error");
    }
#endif
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
    const std::filesystem::path root(NativePath(folder));
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
            report.modules.push_back(LoadModule(WidePath(file)));
    }
    for (ISensorInfo* type : ISensorInfo::SensorTypes())
        report.sensorTypes.push_back(type->ShortName());
    return report;
}
