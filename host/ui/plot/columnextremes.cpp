// SPDX-License-Identifier: Apache-2.0
#include "columnextremes.h"

#include <algorithm>

std::vector<SampleBlock> SummariseBlocks(const double* x, const double* y, std::size_t count) {
    std::vector<SampleBlock> blocks;
    blocks.reserve(count / kSampleBlock);
    for (std::size_t start = 0; start + kSampleBlock <= count; start += kSampleBlock) {
        SampleBlock block{y[start], y[start], x[start]};
        for (std::size_t i = start + 1; i < start + kSampleBlock; ++i) {
            block.min = std::min(block.min, y[i]);
            if (y[i] > block.max) {
                block.max = y[i];
                block.maxX = x[i];
            }
        }
        blocks.push_back(block);
    }
    return blocks;
}

DecimatedTrace DecimateColumns(const double* x, const double* y, std::size_t count, PlotRange range,
                               int columns, const std::vector<SampleBlock>* blocks) {
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
    const auto columnOf = [&](double v) {
        return std::min(columns - 1, static_cast<int>((v - range.lo) * scale));
    };
    ColumnExtremes current;
    bool open = false;
    // Adds `n` samples of one column: their extremes, the first's and the last's value.
    const auto add = [&](int column, int n, double low, double high, double highX, double firstY,
                         double firstX, double lastY) {
        if (!open || column != current.column) {
            if (open)
                out.columns.push_back(current);
            current = {column, n, low, high, firstY, lastY, firstX, highX};
            open = true;
            return;
        }
        current.count += n;
        current.min = std::min(current.min, low);
        if (high > current.max) {
            current.max = high;
            current.maxX = highX;
        }
        current.last = lastY;
    };
    const bool useBlocks = blocks && blocks->size() == count / kSampleBlock;
    for (std::size_t i = first; i < last;) {
        if (useBlocks && i % kSampleBlock == 0 && i + kSampleBlock <= last) {
            const int column = columnOf(x[i]);
            if (column == columnOf(x[i + kSampleBlock - 1])) {
                const SampleBlock& block = (*blocks)[i / kSampleBlock];
                add(column, static_cast<int>(kSampleBlock), block.min, block.max, block.maxX, y[i], x[i],
                    y[i + kSampleBlock - 1]);
                i += kSampleBlock;
                continue;
            }
        }
        add(columnOf(x[i]), 1, y[i], y[i], x[i], y[i], x[i], y[i]);
        ++i;
    }
    if (open)
        out.columns.push_back(current);
    return out;
}
