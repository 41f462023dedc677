// SPDX-License-Identifier: Apache-2.0
#include "vexaicons.h"

#include <QFile>
#include <QString>

#include <mutex>

// The resources live in a static library: a program that links it must register them itself. Outside
// any namespace, as Q_INIT_RESOURCE requires.
static void InitIconResources() {
    Q_INIT_RESOURCE(vexaicons);
}

static void RegisterIcons() {
    static std::once_flag once;
    std::call_once(once, InitIconResources);
}

QIcon VexaIcon(int iconId) {
    RegisterIcons();
    QIcon icon;
    for (int size : {16, 32}) {
        const QString path = QStringLiteral(":/icons/%1-%2.png").arg(iconId).arg(size);
        if (QFile::exists(path))
            icon.addFile(path, QSize(size, size));
    }
    return icon;
}
