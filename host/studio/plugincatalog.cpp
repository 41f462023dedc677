// SPDX-License-Identifier: Apache-2.0
#include "plugincatalog.h"

#include "pluginloader.h"
#include "sensorinfo.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace {
// The sensor types of every module loaded so far in this process, by the module's canonical path. A
// module registers its types only the first time it is loaded, so a second catalog (a second window,
// a test) learns them here. GUI thread only.
QHash<QString, QList<ISensorInfo*>>& KnownSensorTypes() {
    static QHash<QString, QList<ISensorInfo*>> types;
    return types;
}
} // namespace

QStringList PluginCatalog::LoadFolder(const QString& folder) {
    QStringList log;
    m_folder = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    m_modules.clear();
    const PluginFolderReport report = PluginLoader::LoadFolder(m_folder.toStdWString());
    m_folderFound = report.folderFound;
    for (const PluginLoadResult& result : report.modules) {
        Module module;
        module.path = QString::fromStdWString(result.path);
        module.loaded = result.loaded;
        module.error = QString::fromStdWString(result.error);
        module.handle = result.handle;
        const QString file = QFileInfo(module.path).fileName();
        if (!module.loaded) {
            log << QStringLiteral("Could not load %1: %2").arg(file, module.error);
            m_modules.append(module);
            continue;
        }
        const QString key = QFileInfo(module.path).canonicalFilePath();
        QList<ISensorInfo*> types(result.sensorTypes.begin(), result.sensorTypes.end());
        if (types.isEmpty())
            types = KnownSensorTypes().value(key);
        else
            KnownSensorTypes().insert(key, types);
        for (ISensorInfo* type : std::as_const(types)) {
            const QString name = QString::fromStdWString(type->ShortName());
            if (!type->IsInitialized() && !type->Initialize(module.handle)) {
                log << QStringLiteral("%1: sensor type %2 failed to initialise.").arg(file, name);
                continue;
            }
            module.sensorTypes.append(type);
            log << QStringLiteral("Loaded %1: sensor type %2 (%3), %4 tools, %5 file types.")
                       .arg(file, name, QString::fromStdWString(type->GetDescription()))
                       .arg(type->Tools().size())
                       .arg(type->FileTypes().size());
        }
        if (module.sensorTypes.isEmpty())
            log << QStringLiteral("%1 was loaded but registered no sensor type.").arg(file);
        m_modules.append(module);
    }
    return log;
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
        return QStringLiteral("No sensor modules (*%1) were found in %2. Instruments cannot be used until a "
                              "module is placed there.")
            .arg(QString::fromWCharArray(PluginLoader::kModuleSuffix), folder);
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
