#include "plugincatalog.h"

#include "pluginloader.h"
#include "sensorinfo.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace {
struct LoadedModule {
    void* handle = nullptr;
    QList<ISensorInfo*> sensorTypes;
};

// Modules loaded so far in this process, by canonical path. A module registers its sensor types only
// the first time it is loaded, so a second catalog (a second window, a test) must learn them here.
// GUI thread only.
QHash<QString, LoadedModule>& LoadedModules() {
    static QHash<QString, LoadedModule> modules;
    return modules;
}

// The handle of a module that is already loaded, without taking another reference on it.
void* LoadedModuleHandle(const QString& path) {
#ifdef _WIN32
    return GetModuleHandleW(reinterpret_cast<const wchar_t*>(path.utf16()));
#else
    void* handle = dlopen(QFile::encodeName(path).constData(), RTLD_NOW | RTLD_NOLOAD);
    if (handle)
        dlclose(handle); // balances RTLD_NOLOAD's reference; the module itself stays loaded
    return handle;
#endif
}
} // namespace

QStringList PluginCatalog::LoadFolder(const QString& folder) {
    QStringList log;
    m_folder = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    m_modules.clear();
    const QDir dir(m_folder);
    m_folderFound = dir.exists();
    // A missing folder or one without modules is told by Problem().
    if (!m_folderFound)
        return log;
    const QString pattern = QLatin1Char('*') + QString::fromWCharArray(PluginLoader::kModuleSuffix);
    const QStringList files = dir.entryList({pattern}, QDir::Files | QDir::Readable, QDir::Name);
    for (const QString& file : files) {
        Module module = LoadModule(dir.filePath(file), &log);
        for (ISensorInfo* type : std::as_const(module.sensorTypes)) {
            log << QStringLiteral("Loaded %1: sensor type %2 (%3), %4 tools, %5 file types.")
                       .arg(file, QString::fromStdWString(type->ShortName()),
                            QString::fromStdWString(type->GetDescription()))
                       .arg(type->Tools().size())
                       .arg(type->FileTypes().size());
        }
        if (module.loaded && module.sensorTypes.isEmpty())
            log << QStringLiteral("%1 was loaded but registered no sensor type.").arg(file);
        m_modules.append(module);
    }
    return log;
}

PluginCatalog::Module PluginCatalog::LoadModule(const QString& path, QStringList* log) {
    Module module;
    module.path = path;
    const QString file = QFileInfo(path).fileName();
    const QString key = QFileInfo(path).canonicalFilePath();
    if (const auto known = LoadedModules().constFind(key); known != LoadedModules().constEnd()) {
        module.loaded = true;
        module.handle = known->handle;
        module.sensorTypes = known->sensorTypes;
        return module;
    }
    const std::vector<ISensorInfo*> before = ISensorInfo::SensorTypes();
    const PluginLoadResult result = PluginLoader::LoadModule(path.toStdWString());
    module.loaded = result.loaded;
    module.error = QString::fromStdWString(result.error);
    if (!module.loaded) {
        *log << QStringLiteral("Could not load %1: %2").arg(file, module.error);
        return module;
    }
    module.handle = LoadedModuleHandle(path);
    for (ISensorInfo* type : ISensorInfo::SensorTypes()) {
        if (std::find(before.begin(), before.end(), type) != before.end())
            continue;
        if (!type->IsInitialized() && !type->Initialize(module.handle)) {
            *log << QStringLiteral("%1: sensor type %2 failed to initialise.")
                        .arg(file, QString::fromStdWString(type->ShortName()));
            continue;
        }
        module.sensorTypes.append(type);
    }
    LoadedModules().insert(key, LoadedModule{module.handle, module.sensorTypes});
    return module;
}

QList<ISensorInfo*> PluginCatalog::SensorTypes() const {
    QList<ISensorInfo*> types;
    for (const Module& module : m_modules)
        types += module.sensorTypes;
    return types;
}

ISensorInfo* PluginCatalog::FindSensorType(const QString& shortName) const {
    for (ISensorInfo* type : SensorTypes()) {
        if (QString::fromStdWString(type->ShortName()).compare(shortName, Qt::CaseInsensitive) == 0)
            return type;
    }
    return nullptr;
}

QString PluginCatalog::Problem() const {
    if (!SensorTypes().isEmpty())
        return {};
    const QString folder = QDir::toNativeSeparators(m_folder);
    if (!m_folderFound)
        return QStringLiteral("The plug-in folder %1 does not exist, so no sensor type is available.")
            .arg(folder);
    if (m_modules.isEmpty())
        return QStringLiteral(
                   "No sensor modules (*.sdll) were found in %1. Instruments cannot be used until a "
                   "module is placed there.")
            .arg(folder);
    QStringList failures;
    for (const Module& module : m_modules) {
        if (!module.loaded)
            failures << QStringLiteral("%1: %2").arg(QFileInfo(module.path).fileName(), module.error);
    }
    if (!failures.isEmpty())
        return QStringLiteral("No sensor module in %1 could be loaded: %2")
            .arg(folder, failures.join(QStringLiteral("; ")));
    return QStringLiteral("The modules in %1 registered no sensor type.").arg(folder);
}
