// SPDX-License-Identifier: Apache-2.0
#pragma once
// Tick positions at the steps people read a scale by: 1, 2 or 5 times a power of ten.
#include <QString>

#include <vector>

struct AxisTicks {
    std::vector<double> values; // ascending, all inside the range asked for
    int decimals = 0;           // digits after the point that tell the ticks apart
};

// About `target` ticks (at least 2 when lo < hi) inside [lo, hi]. An empty or non-finite range gives
// no ticks.
AxisTicks NiceTicks(double lo, double hi, int target);

// A tick label with the ticks' decimals; "-0" reads "0".
QString FormatTick(double value, int decimals);
