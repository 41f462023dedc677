// SPDX-License-Identifier: Apache-2.0
#include "savenamechooser.h"

#include <QApplication>
#include <QFileDialog>

bool ChooseLocalSaveName(const std::wstring& current, const std::wstring& extension, std::wstring* chosen) {
    const QString pattern = QString::fromStdWString(extension);
    const QString path = QFileDialog::getSaveFileName(QApplication::activeWindow(), QString(),
                                                      QString::fromStdWString(current),
                                                      QString("*.%1 (*.%1);;* (*)").arg(pattern));
    if (path.isEmpty())
        return false;
    *chosen = path.toStdWString();
    if (!pattern.isEmpty() && !path.contains('.'))
        *chosen += L"." + extension;
    return true;
}
