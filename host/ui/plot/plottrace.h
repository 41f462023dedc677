// SPDX-License-Identifier: Apache-2.0
#pragma once
// One line of a chromatogram: its samples (x non-decreasing, in seconds) and how it is drawn.
#include <QColor>
#include <QString>

#include <vector>

struct PlotTrace {
    QString name;
    QColor color;
    std::vector<double> x;
    std::vector<double> y;
};
