// SPDX-License-Identifier: Apache-2.0
#pragma once
// A closed interval on one axis of a plot, in data units (seconds, m/z, counts).

struct PlotRange {
    double lo = 0.0;
    double hi = 0.0;

    double Width() const { return hi - lo; }
    bool Contains(double v) const { return v >= lo && v <= hi; }
    bool operator==(const PlotRange&) const = default;
};
