// SPDX-License-Identifier: Apache-2.0
#include "toolicons.h"

#include "sensorinfo.h"
#include "toolcategory.h"

#include <QFile>
#include <QPainter>
#include <QPainterPath>

namespace {
QColor CategoryColor(int category) {
    switch (category) {
    case kToolCategoryStatus:
        return QColor(0x2e, 0x7d, 0x32); // green
    case kToolCategoryFiles:
        return QColor(0x15, 0x65, 0xc0); // blue
    case kToolCategoryRun:
        return QColor(0xe6, 0x51, 0x00); // orange
    case kToolCategoryMethods:
        return QColor(0x6a, 0x1b, 0x9a); // purple
    case kToolCategoryPrograms:
        return QColor(0x00, 0x83, 0x8f); // teal
    default:
        return QColor(0x54, 0x6e, 0x7a); // slate
    }
}

QPixmap DrawTile(const QColor& color, const QString& glyph, int size) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF tile(0.5, 0.5, size - 1.0, size - 1.0);
    QPainterPath path;
    path.addRoundedRect(tile, size * 0.22, size * 0.22);
    painter.fillPath(path, color);
    painter.setPen(QPen(color.darker(130), 1.0));
    painter.drawPath(path);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(qMax(8, static_cast<int>(size * (glyph.size() > 1 ? 0.42 : 0.62))));
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(tile, Qt::AlignCenter, glyph);
    return pixmap;
}

// One or two letters that tell the tool apart from its neighbours: the initials of a name of
// several words ("Safety DB" -> "SD"), else the first letter.
QString Glyph(const QString& name) {
    const QStringList words = name.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return QStringLiteral("?");
    if (words.size() == 1)
        return words.first().left(1).toUpper();
    return (words[0].left(1) + words[1].left(1)).toUpper();
}
} // namespace

QIcon ToolIcons::ModuleIcon(int iconId) {
    if (iconId <= 0)
        return {};
    // An icon drawn at both sizes, as a module's icon resource holds them.
    QIcon sized;
    for (int size : {16, 32}) {
        const QString path = QStringLiteral(":/icons/%1-%2.png").arg(iconId).arg(size);
        if (QFile::exists(path))
            sized.addFile(path, QSize(size, size));
    }
    if (!sized.isNull())
        return sized;
    for (const char* suffix : {".png", ".svg", ".ico"}) {
        const QString path = QStringLiteral(":/icons/%1%2").arg(iconId).arg(QLatin1String(suffix));
        if (QFile::exists(path))
            return QIcon(path);
    }
    return {};
}

QIcon ToolIcons::DrawnIcon(const SensorTool& tool) {
    const QColor color = CategoryColor(tool.category);
    const QString glyph = Glyph(QString::fromStdWString(tool.name));
    QIcon icon;
    icon.addPixmap(DrawTile(color, glyph, 16));
    icon.addPixmap(DrawTile(color, glyph, 24));
    icon.addPixmap(DrawTile(color, glyph, 32));
    return icon;
}

QIcon ToolIcons::ForTool(const SensorTool& tool) {
    const QIcon icon = ModuleIcon(tool.icon);
    return icon.isNull() ? DrawnIcon(tool) : icon;
}
