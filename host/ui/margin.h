// SPDX-License-Identifier: Apache-2.0
#pragma once
// Print margins and the page arithmetic that goes with them. A margin is given in inches (unit 0) or in
// centimetres (any other unit); the edges are computed from the device's page in device pixels and its
// size in millimetres, as the suite has always placed printed text.
#include <cstdint>

#include <QRect>

class QPaintDevice;

struct Margin {
    float top = 1.0f;
    float bottom = 1.0f;
    float left = 1.25f;
    float right = 1.25f;
    int32_t unit = 0; // 0: inches; any other value: centimetres
};

// The millimetres per margin unit: 25.4 for inches, 10 for centimetres.
double MarginUnitMillimetres(const Margin& margin);

// The text area of a page. `page` is the page in device pixels, `widthMm`/`heightMm` its size.
// left = page.left + Left * f * width / widthMm; top likewise; right and bottom take the distance from
// the edge already found (right - left edge, bottom - top edge), each truncated to an integer.
QRect MarginEdges(const QRect& page, double widthMm, double heightMm, const Margin& margin);
// The same for a device's whole page (its width and height in pixels and in millimetres).
QRect MarginEdges(const QPaintDevice& device, const Margin& margin);

// How many lines of the 8-point "Courier New" body font fit between the top and bottom edges of the
// device's page (at least 1).
int GetLinesPerPage(QPaintDevice& device, const Margin& margin);
