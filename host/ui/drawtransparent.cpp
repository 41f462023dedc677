// SPDX-License-Identifier: Apache-2.0
#include "drawtransparent.h"

#include <QBitmap>
#include <QPixmap>

void PXDrawTransparent(QPainter& painter, const QRect& target, const QImage& source,
                       const QPoint& sourceTopLeft, unsigned key) {
    const QRect part = QRect(sourceTopLeft, target.size()).intersected(source.rect());
    if (part.isEmpty())
        return;
    const QImage piece = source.copy(part).convertToFormat(QImage::Format_RGB32);
    const QRgb keyColour = qRgb(key & 0xFF, (key >> 8) & 0xFF, (key >> 16) & 0xFF);
    QPixmap pixmap = QPixmap::fromImage(piece);
    pixmap.setMask(QBitmap::fromImage(piece.createMaskFromColor(keyColour, Qt::MaskInColor)));
    painter.drawPixmap(target.topLeft(), pixmap);
}
