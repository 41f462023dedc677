// SPDX-License-Identifier: Apache-2.0
#include "margin.h"

#include "printfonts.h"

#include <QFontMetricsF>
#include <QPaintDevice>

#include <algorithm>
#include <cmath>

double MarginUnitMillimetres(const Margin& margin) {
    return margin.unit == 0 ? 25.4 : 10.0;
}

QRect MarginEdges(const QRect& page, double widthMm, double heightMm, const Margin& margin) {
    if (widthMm <= 0 || heightMm <= 0)
        return page;
    const double f = MarginUnitMillimetres(margin);
    const int left = int(page.left() + margin.left * f * page.width() / widthMm);
    const int top = int(page.top() + margin.top * f * page.height() / heightMm);
    const int pageRight = page.left() + page.width();
    const int pageBottom = page.top() + page.height();
    const int right = int(pageRight - margin.right * f * (pageRight - left) / widthMm);
    const int bottom = int(pageBottom - margin.bottom * f * (pageBottom - top) / heightMm);
    // QRect's right and bottom are inclusive; the edges are exclusive, as GDI's rectangles are.
    return QRect(QPoint(left, top), QPoint(right - 1, bottom - 1));
}

QRect MarginEdges(const QPaintDevice& device, const Margin& margin) {
    return MarginEdges(QRect(0, 0, device.width(), device.height()), device.widthMM(), device.heightMM(),
                       margin);
}

int GetLinesPerPage(QPaintDevice& device, const Margin& margin) {
    const QRect edges = MarginEdges(device, margin);
    const double lineHeight = QFontMetricsF(PrintBodyFont(), &device).lineSpacing();
    if (lineHeight <= 0)
        return 1;
    return std::max(1, int(std::floor((edges.height()) / lineHeight)));
}
