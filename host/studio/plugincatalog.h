// SPDX-License-Identifier: Apache-2.0
#pragma once
// The sensor-type modules (*.sdll) of the plug-in folder: loads each one, notes which sensor types it
// brought, and initialises those with the module's handle. Modules stay loaded for the life of the
// process (the sensor objects they make may live until then).
#include <QList>
#include <QString>
#include <QStringList>

class ISensorInfo;

class PluginCatalog {
public:
    struct Module {
        QString path;
        bool loaded = false;
        QString error;                   // the system loader's message when not loaded
        void* handle = nullptr;          // the module instance given to Initialize
        QList<ISensorInfo*> sensorTypes; // the types it registered, initialised
    };

    // Loads every module of `folder` in file-name order. Returns the lines worth logging about the
    // modules found; a folder without any is described by Problem().
    QStringList LoadFolder(const QString& folder);

    const QString& Folder() const { return m_folder; }
    bool FolderFound() const { return m_folderFound; }
    const QList<Module>& Modules() const { return m_modules; }
    // Every initialised sensor type, in load order.
    QList<ISensorInfo*> SensorTypes() const;
    ISensorInfo* FindSensorType(const QString& shortName) const;
    // Why no sensor type is available (missing folder, no modules, modules that failed); empty when
    // at least one is.
    QString Problem() const;

private:
    QString m_folder;
    bool m_folderFound = false;
    QList<Module> m_modules;
};
