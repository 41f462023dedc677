// SPDX-License-Identifier: Apache-2.0
#include "defaultmethodmodules.h"

#include "fileinfo.h"
#include "paths.h"
#include "resourcemodule.h"
#include "text.h"

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <system_error>

namespace {

constexpr unsigned kCountString = 1000;
constexpr unsigned kModelString = 999;
constexpr unsigned kFirstMethodResource = 1000;
constexpr int kStringBuffer = 256;
constexpr const wchar_t* kResourceType = L"DefaultMethod";

struct ModuleCloser {
    void operator()(resmod::Module* module) const { resmod::FreeLibrary(module); }
};
using ModuleHandle = std::unique_ptr<resmod::Module, ModuleCloser>;

std::wstring Join(const std::wstring& folder, const std::wstring& name) {
    if (!folder.empty() && folder.back() == kNativeSeparator)
        return folder + name;
    return folder + kNativeSeparator + name;
}

// The number at the start of a text, as _wtoi reads it (0 when there is none), bounded by the largest
// count whose resource ids still fit in 16 bits, so a hostile count cannot make the scan run for ever.
int MethodCount(const wchar_t* text) {
    const long value = std::wcstol(text, nullptr, 10);
    return int(std::clamp(value, 0L, long(0xffff - kFirstMethodResource)));
}

// A module with a bad count would otherwise report every one of thousands of missing strings.
constexpr int kProblemsPerModule = 5;

std::vector<std::wstring> ListFolder(const std::wstring& folder, const wchar_t* pattern) {
    std::vector<FileInfo> entries;
    std::vector<std::wstring> names;
    if (!FileInfo::ReadSensorDir(L"", folder, entries, pattern, 0))
        return names;
    for (const FileInfo& entry : entries)
        if (!entry.IsFolder() && entry.name != L"." && entry.name != L"..")
            names.push_back(entry.name);
    std::sort(names.begin(), names.end());
    return names;
}

// A name for a temporary file beside the installed methods, starting with the method's name.
std::wstring TemporaryName(const std::wstring& folder, const std::wstring& prefix) {
    static std::mt19937 random{std::random_device{}()};
    for (;;) {
        const std::wstring candidate =
            Join(folder, prefix + L"." + std::to_wstring(random() % 1000000) + L".tmp");
        if (!PathAccessible(candidate, 0))
            return candidate;
    }
}

} // namespace

DefaultMethodModules::DefaultMethodModules(std::wstring moduleFolder, std::wstring methodFolder,
                                           ValidFileTest isValid, EqualFilesTest areEqual)
    : m_moduleFolder(std::move(moduleFolder)), m_methodFolder(std::move(methodFolder)),
      m_isValid(std::move(isValid)), m_areEqual(std::move(areEqual)) {}

std::wstring DefaultMethodModules::ModelFromFileName(const std::wstring& fileName) {
    // Files named "Default..." belong to the Brisk instruments: that is where the generic methods
    // came from, and older installations rely on it.
    static const std::pair<const wchar_t*, const wchar_t*> kPrefixes[] = {
        {L"QV", L"QV"},       {L"Tarn", L"Tarn"},     {L"Brisk", L"Brisk"},
        {L"Corvo", L"Corvo"}, {L"Default", L"Brisk"}, {L"ZLK", L"ZLK"},
    };
    for (const auto& [prefix, model] : kPrefixes) {
        const size_t length = std::wcslen(prefix);
        if (fileName.size() >= length && EqualsNoCase(std::wstring_view(fileName).substr(0, length), prefix))
            return model;
    }
    return L"Brisk";
}

std::wstring DefaultMethodModules::PreferredModel(int instrumentModel) {
    return instrumentModel == 5 ? L"RJW" : L"";
}

std::vector<std::wstring> DefaultMethodModules::ModuleFiles() const {
    return ListFolder(m_moduleFolder, L"*.ddll");
}

DefaultMethodModel& DefaultMethodModules::ModelRecord(const std::wstring& name) {
    for (DefaultMethodModel& model : m_models)
        if (model.name == name)
            return model;
    m_models.push_back(DefaultMethodModel{false, name, {}});
    return m_models.back();
}

std::vector<DefaultMethodModules::ModuleMethod>
DefaultMethodModules::ListModuleMethods(std::vector<std::wstring>* problems) const {
    std::vector<ModuleMethod> methods;
    for (const std::wstring& file : ModuleFiles()) {
        ModuleHandle module(resmod::LoadLibraryW(Join(m_moduleFolder, file)));
        if (!module) {
            if (problems)
                problems->push_back(file + L": " + resmod::GetErrorMessage(resmod::GetLastError()));
            continue;
        }
        wchar_t buffer[kStringBuffer];
        const std::wstring model = resmod::LoadStringW(module.get(), kModelString, buffer, kStringBuffer) > 0
                                       ? std::wstring(buffer)
                                       : ModelFromFileName(file);
        // Without a count string the module contributes nothing.
        const int count = resmod::LoadStringW(module.get(), kCountString, buffer, kStringBuffer) > 0
                              ? MethodCount(buffer)
                              : 0;
        int reported = 0;
        for (int i = 1; i <= count; ++i) {
            if (resmod::LoadStringW(module.get(), unsigned(i), buffer, kStringBuffer) == 0) {
                if (problems && reported++ < kProblemsPerModule)
                    problems->push_back(file + L": method " + std::to_wstring(i) + L": " +
                                        resmod::GetErrorMessage(resmod::GetLastError()));
                continue;
            }
            methods.push_back(ModuleMethod{file, model, buffer, kFirstMethodResource + unsigned(i)});
        }
    }
    return methods;
}

std::vector<std::wstring> DefaultMethodModules::Scan() {
    m_models.clear();
    m_toInstall.clear();
    std::vector<std::wstring> problems;
    for (const ModuleMethod& method : ListModuleMethods(&problems)) {
        ModelRecord(method.model).methods.push_back(method.name);
        m_toInstall.push_back(method.name);
    }
    // Methods already installed and readable stay as they are, even when the user has edited them.
    for (const std::wstring& installed : InstalledValidMethods())
        std::erase(m_toInstall, installed);
    return problems;
}

std::vector<std::wstring> DefaultMethodModules::InstalledValidMethods() const {
    std::vector<std::wstring> names;
    for (const std::wstring& name : ListFolder(m_methodFolder, L"*.dmth"))
        if (m_isValid(Join(m_methodFolder, name)))
            names.push_back(name);
    return names;
}

std::vector<std::wstring> DefaultMethodModules::InstallMissing() {
    std::vector<std::wstring> problems;
    for (const ModuleMethod& method : ListModuleMethods(nullptr)) {
        if (m_toInstall.empty())
            break;
        // The first module that lists a name installs it; a later module's method of the same name
        // must not replace it.
        if (std::erase(m_toInstall, method.name) == 0)
            continue;
        std::wstring problem;
        if (!WriteFactoryBytes(method, Join(m_methodFolder, method.name), &problem))
            problems.push_back(problem);
    }
    return problems;
}

void DefaultMethodModules::TickModels(int instrumentModel) {
    const std::wstring preferred = PreferredModel(instrumentModel);
    bool any = false;
    for (DefaultMethodModel& model : m_models) {
        model.ticked = m_models.size() >= 2 && !preferred.empty() && model.name == preferred;
        any = any || model.ticked;
    }
    if (!any)
        for (DefaultMethodModel& model : m_models)
            model.ticked = true;
}

bool DefaultMethodModules::WriteFactoryBytes(const ModuleMethod& method, const std::wstring& path,
                                             std::wstring* problem) const {
    ModuleHandle module(resmod::LoadLibraryW(Join(m_moduleFolder, method.module)));
    resmod::HRSRC resource =
        module ? resmod::FindResourceW(module.get(), method.resourceId, kResourceType) : nullptr;
    const unsigned size = resmod::SizeofResource(module.get(), resource);
    // A missing or empty resource is no method: leave the file alone.
    if (!resource || size == 0)
        return true;
    const auto* bytes =
        static_cast<const char*>(resmod::LockResource(resmod::LoadResource(module.get(), resource)));
    // Written under a temporary name and then moved over the old file, so a full disk never leaves a
    // half-written method behind. Wide paths and filesystem::rename, which replaces an existing file on
    // Windows too (the C library's rename does not there).
    const std::wstring temporary = TemporaryName(m_methodFolder, method.name);
    std::error_code ignored;
    {
        std::ofstream out(ToFsPath(temporary), std::ios::binary | std::ios::trunc);
        out.write(bytes, std::streamsize(size));
        out.close();
        if (!out) {
            std::filesystem::remove(ToFsPath(temporary), ignored);
            *problem = path + L": cannot be written";
            return false;
        }
    }
    std::error_code error;
    std::filesystem::rename(ToFsPath(temporary), ToFsPath(path), error);
    if (error) {
        std::filesystem::remove(ToFsPath(temporary), ignored);
        *problem = path + L": cannot be replaced";
        return false;
    }
    return true;
}

std::vector<DefaultMethodRestoreRow> DefaultMethodModules::CompareWithFactory() const {
    std::vector<DefaultMethodRestoreRow> rows;
    for (const ModuleMethod& method : ListModuleMethods(nullptr)) {
        const std::wstring factory = TemporaryName(m_methodFolder, method.name);
        std::wstring problem;
        const bool written = WriteFactoryBytes(method, factory, &problem);
        const bool equal = written && m_areEqual(factory, Join(m_methodFolder, method.name));
        std::error_code ignored;
        std::filesystem::remove(ToFsPath(factory), ignored);
        rows.push_back(DefaultMethodRestoreRow{method.name, !equal});
    }
    return rows;
}

std::vector<std::wstring> DefaultMethodModules::Restore(const std::vector<uint8_t>& flags) const {
    std::vector<std::wstring> problems;
    size_t row = 0;
    for (const ModuleMethod& method : ListModuleMethods(nullptr)) {
        if (row < flags.size() && flags[row]) {
            std::wstring problem;
            if (!WriteFactoryBytes(method, Join(m_methodFolder, method.name), &problem))
                problems.push_back(problem);
        }
        ++row;
    }
    return problems;
}
