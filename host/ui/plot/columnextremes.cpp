#include "columnextremes.h"

#include <algorithm>

DecimatedTrace DecimateColumns(const double* x, const double* y, std::size_t count, PlotRange range,
                               int columns) {
    DecimatedTrace out;
    if (count == 0 || columns <= 0 || !(range.hi > range.lo))
        return out;
    const double* begin = std::lower_bound(x, x + count, range.lo);
    const double* end = std::upper_bound(begin, x + count, range.hi);
    const std::size_t first = static_cast<std::size_t>(begin - x);
    const std::size_t last = static_cast<std::size_t>(end - x);
    if (first > 0) {
        out.hasBefore = true;
        out.beforeX = x[first - 1];
        out.beforeY = y[first - 1];
    }
    if (last < count) {
        out.hasAfter = true;
        out.afterX = x[last];
        out.afterY = y[last];
    }
    const double scale = columns / range.Width();
    ColumnExtremes current;
    bool open = false;
    for (std::size_t i = first; i < last; ++i) {
        const int column = std::min(columns - 1, static_cast<int>((x[i] - range.lo) * scale));
        const double v = y[i];
        if (!open || column != current.column) {
            if (open)
                out.columns.push_back(current);
            current = {column, 1, v, v, v, v, x[i], x[i]};
            open = true;
            continue;
        }
        ++current.count;
        current.min = std::min(current.min, v);
        if (v > current.max) {
            current.max = v;
            current.maxX = x[i];
        }
        current.last = v;
    }
    if (open)
        out.columns.push_back(current);
    return out;
}
