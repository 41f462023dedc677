// SPDX-License-Identifier: Apache-2.0
#pragma once
// Reduces a trace to what one pixel column can show: the smallest and largest value of the samples that
// fall into it, and the first and last (so that consecutive columns join where the trace really goes).
// A redraw therefore costs one pass over the visible samples and draws at most one segment per column,
// however many samples the trace has.
#include "plotrange.h"

#include <cstddef>
#include <vector>

struct ColumnExtremes {
    int column = 0; // 0 .. columns-1
    int count = 0;  // samples in the column
    double min = 0.0;
    double max = 0.0;
    double first = 0.0;
    double last = 0.0;
    double firstX = 0.0; // x of the first sample (where a lone sample really is)
    double maxX = 0.0;   // x of the largest sample (the peak a label names)
};

struct DecimatedTrace {
    std::vector<ColumnExtremes> columns; // only the columns that hold samples, in order
    // The nearest samples left and right of the range, so the line runs on to the plot's edges.
    bool hasBefore = false;
    double beforeX = 0.0, beforeY = 0.0;
    bool hasAfter = false;
    double afterX = 0.0, afterY = 0.0;
};

// The extremes of consecutive blocks of kSampleBlock samples, made once per trace: a column that
// holds a whole block takes its summary instead of visiting its samples, so a view of the whole run
// costs about samples / kSampleBlock + columns * kSampleBlock steps.
constexpr std::size_t kSampleBlock = 64;
struct SampleBlock {
    double min = 0.0;
    double max = 0.0;
    double maxX = 0.0;
};
std::vector<SampleBlock> SummariseBlocks(const double* x, const double* y, std::size_t count);

// `x` must be non-decreasing. Samples with lo <= x <= hi are spread over `columns` equal columns.
// `blocks`, when given, must be SummariseBlocks of the same samples; the result is the same.
DecimatedTrace DecimateColumns(const double* x, const double* y, std::size_t count, PlotRange range,
                               int columns, const std::vector<SampleBlock>* blocks = nullptr);
