// SPDX-License-Identifier: Apache-2.0
#pragma once
// The factory default methods: the ".ddll" resource modules beside the programs, the models they name,
// the ".dmth" files installed from them into the DefaultMethods folder, and their restoration. The
// default-methods dialog shows this; it holds no Qt and no dialog state of its own.
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// One model and the method file names (with extension) that its modules list. A name may stand
// under several models.
struct DefaultMethodModel {
    bool ticked = false;
    std::wstring name;
    std::vector<std::wstring> methods;
};

// One method of one module, as the restore list shows it.
struct DefaultMethodRestoreRow {
    std::wstring name;    // file name with extension
    bool changed = false; // the installed file is missing, unreadable or differs from the factory one
};

class DefaultMethodModules {
public:
    // Whether a file holds a valid method, and whether two method files hold equal methods (false when
    // either cannot be read). The method library answers both.
    using ValidFileTest = std::function<bool(const std::wstring& path)>;
    using EqualFilesTest = std::function<bool(const std::wstring& a, const std::wstring& b)>;

    DefaultMethodModules(std::wstring moduleFolder, std::wstring methodFolder, ValidFileTest isValid,
                         EqualFilesTest areEqual);

    // The model a module file stands for when it carries no model string: by the start of its name.
    static std::wstring ModelFromFileName(const std::wstring& fileName);

    // Reads every module: the model list (in order of discovery) and the methods not yet installed.
    // Returns one line per module string that could not be read, naming the module and the reason.
    std::vector<std::wstring> Scan();
    // Writes the factory bytes of every method that is not installed yet; installed files, even
    // edited ones, are kept. Returns one line per file that could not be written.
    std::vector<std::wstring> InstallMissing();
    // Ticks the models equal to the preferred model of an instrument model number; when that ticks
    // none, or there are fewer than two models, ticks them all.
    void TickModels(int instrumentModel);

    std::vector<DefaultMethodModel>& Models() { return m_models; }
    const std::vector<DefaultMethodModel>& Models() const { return m_models; }
    const std::wstring& MethodFolder() const { return m_methodFolder; }

    // Compares every factory method with its installed file, one row per method of every module.
    std::vector<DefaultMethodRestoreRow> CompareWithFactory() const;
    // Writes the factory bytes of the methods whose flag is set (flags parallel to the rows of
    // CompareWithFactory) over the installed files. Returns one line per file that could not be written.
    std::vector<std::wstring> Restore(const std::vector<uint8_t>& flags) const;

    // The preferred model for an instrument model number (empty: none).
    static std::wstring PreferredModel(int instrumentModel);

private:
    struct ModuleMethod {
        std::wstring module;
        std::wstring model;
        std::wstring name;
        unsigned resourceId;
    };
    // Every method of every module, in module and method order.
    std::vector<ModuleMethod> ListModuleMethods(std::vector<std::wstring>* problems) const;
    std::vector<std::wstring> ModuleFiles() const;
    std::vector<std::wstring> InstalledValidMethods() const;
    DefaultMethodModel& ModelRecord(const std::wstring& name);
    // Writes a module's resource bytes to `path` whole; false with a reason line on failure.
    bool WriteFactoryBytes(const ModuleMethod& method, const std::wstring& path, std::wstring* problem) const;

    std::wstring m_moduleFolder;
    std::wstring m_methodFolder;
    ValidFileTest m_isValid;
    EqualFilesTest m_areEqual;
    std::vector<DefaultMethodModel> m_models;
    std::vector<std::wstring> m_toInstall;
};
