// SPDX-License-Identifier: Apache-2.0
#pragma once
// Draws part of a bitmap with one colour left out, the suite's way of drawing icons and animation
// frames over any background without an alpha channel.
#include <QImage>
#include <QPainter>
#include <QRect>

// Draws `source` from `sourceTopLeft` into `target` (same size, clipped to the source's edges) with
// every pixel of colour `key` (a COLORREF: 0x00BBGGRR) left out.
void PXDrawTransparent(QPainter& painter, const QRect& target, const QImage& source,
                       const QPoint& sourceTopLeft, unsigned key);
