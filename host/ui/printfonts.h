// SPDX-License-Identifier: Apache-2.0
#pragma once
// The fonts of printed reports: a 14-point "Arial" heading and an 8-point "Courier New" body, so that
// columns of figures line up on paper.
#include <QFont>

QFont PrintHeadingFont();
QFont PrintBodyFont();
