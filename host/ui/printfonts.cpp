// SPDX-License-Identifier: Apache-2.0
#include "printfonts.h"

QFont PrintHeadingFont() {
    QFont font(QStringLiteral("Arial"), 14);
    font.setStyleHint(QFont::SansSerif);
    return font;
}

QFont PrintBodyFont() {
    QFont font(QStringLiteral("Courier New"), 8);
    // Where "Courier New" is not installed, any fixed-pitch face keeps the columns.
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    return font;
}
