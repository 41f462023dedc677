// SPDX-License-Identifier: Apache-2.0
#include "axisticks.h"

#include <algorithm>
#include <cmath>

AxisTicks NiceTicks(double lo, double hi, int target) {
    AxisTicks ticks;
    if (!std::isfinite(lo) || !std::isfinite(hi) || hi <= lo || target < 1)
        return ticks;
    const double rough = (hi - lo) / std::max(target, 1);
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = power;
    for (double factor : {1.0, 2.0, 5.0, 10.0}) {
        step = factor * power;
        if (step >= rough)
            break;
    }
    // Decimals from the step itself: 0.25 never occurs, so the step's own magnitude is enough.
    ticks.decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
    const double first = std::ceil(lo / step - 1e-9) * step;
    for (double v = first; v <= hi + step * 1e-9; v += step) {
        // Snap to the step so that repeated additions do not print 0.30000000000000004.
        ticks.values.push_back(std::round(v / step) * step);
        if (ticks.values.size() > 1000)
            break;
    }
    return ticks;
}

QString FormatTick(double value, int decimals) {
    if (std::abs(value) < 0.5 * std::pow(10.0, -decimals))
        value = 0.0;
    return QString::number(value, 'f', decimals);
}
