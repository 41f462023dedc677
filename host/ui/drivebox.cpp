// SPDX-License-Identifier: Apache-2.0
#include "drivebox.h"

#include <QDir>
#include <QStorageInfo>
#include <QStyle>

#include <algorithm>

namespace {

constexpr int kPathRole = Qt::UserRole;
constexpr int kInstrumentRole = Qt::UserRole + 1;

#ifdef _WIN32
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseInsensitive;
#else
constexpr Qt::CaseSensitivity kPathCase = Qt::CaseSensitive;
#endif

QString WithoutTrailingSeparator(QString path) {
    while (path.size() > 1 && (path.endsWith(QLatin1Char('/')) || path.endsWith(QLatin1Char('\\'))) &&
           !path.endsWith(QLatin1String(":/")) && !path.endsWith(QLatin1String(":\\")))
        path.chop(1);
    return path;
}

// Whether `root` holds `path`: equal, or a prefix that ends at a separator.
bool RootHolds(const QString& root, const QString& path) {
    if (!path.startsWith(root, kPathCase))
        return false;
    if (path.size() == root.size())
        return true;
    const QChar last = root.back();
    if (last == QLatin1Char('/') || last == QLatin1Char('\\'))
        return true;
    const QChar next = path.at(root.size());
    return next == QLatin1Char('/') || next == QLatin1Char('\\');
}

} // namespace

CPXDriveBox::CPXDriveBox(QWidget* parent) : QComboBox(parent) {
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(12);
    FillDrives();
}

std::vector<std::wstring> CPXDriveBox::WorkstationRoots() {
    std::vector<QString> roots;
    const auto add = [&roots](const QString& path) {
        const QString root = WithoutTrailingSeparator(QDir::fromNativeSeparators(path));
        if (!root.isEmpty() && std::find(roots.begin(), roots.end(), root) == roots.end())
            roots.push_back(root);
    };
    add(QDir::rootPath());
    add(QDir::homePath());
    std::vector<QString> volumes;
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (volume.isValid() && volume.isReady())
            volumes.push_back(volume.rootPath());
    }
    std::sort(volumes.begin(), volumes.end());
    for (const QString& volume : volumes)
        add(volume);

    std::vector<std::wstring> result;
    for (const QString& root : roots)
        result.push_back(QDir::toNativeSeparators(root).toStdWString());
    return result;
}

void CPXDriveBox::FillDrives() {
    SetRoots(WorkstationRoots());
}

void CPXDriveBox::SetRoots(const std::vector<std::wstring>& roots) {
    const bool hadInstrument = HasInstrument();
    const QString instrument = hadInstrument ? itemText(InstrumentIndex()) : QString();
    clear();
    const QIcon driveIcon = style()->standardIcon(QStyle::SP_DriveHDIcon, nullptr, this);
    const QIcon homeIcon = style()->standardIcon(QStyle::SP_DirHomeIcon, nullptr, this);
    const QString home = QDir::toNativeSeparators(QDir::homePath());
    for (const std::wstring& root : roots) {
        const QString path = QString::fromStdWString(root);
        addItem(path == home ? homeIcon : driveIcon, path, path);
    }
    if (hadInstrument)
        AddInstrument(instrument.toStdWString());
}

std::vector<std::wstring> CPXDriveBox::Roots() const {
    std::vector<std::wstring> roots;
    for (int i = 0; i < count(); ++i) {
        if (!itemData(i, kInstrumentRole).toBool())
            roots.push_back(itemData(i, kPathRole).toString().toStdWString());
    }
    return roots;
}

void CPXDriveBox::AddInstrument(const std::wstring& name) {
    RemoveInstrument();
    addItem(style()->standardIcon(QStyle::SP_ComputerIcon, nullptr, this), QString::fromStdWString(name));
    setItemData(count() - 1, true, kInstrumentRole);
}

void CPXDriveBox::RemoveInstrument() {
    const int index = InstrumentIndex();
    if (index >= 0)
        removeItem(index);
}

bool CPXDriveBox::HasInstrument() const {
    return InstrumentIndex() >= 0;
}

std::wstring CPXDriveBox::GetCurDrive() const {
    const int index = currentIndex();
    if (index < 0 || itemData(index, kInstrumentRole).toBool())
        return {};
    return itemData(index, kPathRole).toString().toStdWString();
}

bool CPXDriveBox::IsInstrumentSelected() const {
    const int index = currentIndex();
    return index >= 0 && itemData(index, kInstrumentRole).toBool();
}

bool CPXDriveBox::SelectInstrument() {
    const int index = InstrumentIndex();
    if (index < 0)
        return false;
    setCurrentIndex(index);
    return true;
}

bool CPXDriveBox::SelectDrive(const std::wstring& path) {
    const QString target = QString::fromStdWString(path);
    int best = -1;
    qsizetype bestLength = -1;
    for (int i = 0; i < count(); ++i) {
        if (itemData(i, kInstrumentRole).toBool())
            continue;
        const QString root = itemData(i, kPathRole).toString();
        if (root.size() > bestLength && RootHolds(root, target)) {
            best = i;
            bestLength = root.size();
        }
    }
    if (best < 0)
        return false;
    setCurrentIndex(best);
    return true;
}

int CPXDriveBox::InstrumentIndex() const {
    for (int i = 0; i < count(); ++i) {
        if (itemData(i, kInstrumentRole).toBool())
            return i;
    }
    return -1;
}
