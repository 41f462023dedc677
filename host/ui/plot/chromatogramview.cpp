// SPDX-License-Identifier: Apache-2.0
#include "chromatogramview.h"

#include "columnextremes.h"

#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace {
const QColor kMarkerColour(0xc0, 0x20, 0x20);
const QColor kSelectionColour(0x2f, 0x6f, 0xd0, 50);
const QColor kBackgroundColour(0xe0, 0x8a, 0x1e, 60);

// The polyline of one decimated trace: each column's first, lowest, highest and last value on the
// column's centre (a lone sample at its own x), joined column to column.
QPolygonF TraceLine(const DecimatedTrace& trace, const std::function<double(double)>& toX,
                    const std::function<double(double)>& toY, double columnWidth, double left) {
    QPolygonF line;
    line.reserve(static_cast<int>(trace.columns.size()) * 4 + 2);
    if (trace.hasBefore)
        line << QPointF(toX(trace.beforeX), toY(trace.beforeY));
    for (const ColumnExtremes& c : trace.columns) {
        if (c.count == 1) {
            line << QPointF(toX(c.firstX), toY(c.first));
            continue;
        }
        const double px = left + (c.column + 0.5) * columnWidth;
        line << QPointF(px, toY(c.first)) << QPointF(px, toY(c.min)) << QPointF(px, toY(c.max))
             << QPointF(px, toY(c.last));
    }
    if (trace.hasAfter)
        line << QPointF(toX(trace.afterX), toY(trace.afterY));
    return line;
}
} // namespace

ChromatogramView::ChromatogramView(QWidget* parent) : PlotCanvas(parent) {}

ChromatogramView::~ChromatogramView() = default;

int ChromatogramView::AddTrace(PlotTrace trace) {
    const std::size_t count = std::min(trace.x.size(), trace.y.size());
    m_blocks.push_back(SummariseBlocks(trace.x.data(), trace.y.data(), count));
    m_traces.push_back(std::move(trace));
    DataChanged();
    return TraceCount() - 1;
}

void ChromatogramView::RemoveTrace(int index) {
    if (index < 0 || index >= TraceCount())
        return;
    m_traces.erase(m_traces.begin() + index);
    m_blocks.erase(m_blocks.begin() + index);
    DataChanged();
}

void ChromatogramView::ClearTraces() {
    m_traces.clear();
    m_blocks.clear();
    m_marker.reset();
    m_selection.reset();
    m_background.reset();
    DataChanged();
}

void ChromatogramView::SetNormalised(bool normalised) {
    m_normalised = normalised;
    update();
}

void ChromatogramView::SetMarker(std::optional<double> time) {
    m_marker = time;
    update();
}

void ChromatogramView::SetSelection(std::optional<PlotRange> range) {
    m_selection = range;
    update();
}

void ChromatogramView::SetBackground(std::optional<PlotRange> range) {
    m_background = range;
    update();
}

void ChromatogramView::SetEmptyText(const QString& text) {
    m_emptyText = text;
    update();
}

PlotRange ChromatogramView::DataX() const {
    PlotRange range{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
    for (const PlotTrace& trace : m_traces) {
        if (trace.x.empty())
            continue;
        range.lo = std::min(range.lo, trace.x.front());
        range.hi = std::max(range.hi, trace.x.back());
    }
    if (!(range.hi >= range.lo))
        return {};
    if (range.hi == range.lo) // a single scan still gets an axis
        return {range.lo - 0.5, range.hi + 0.5};
    return range;
}

double ChromatogramView::NearestSampleTime(double time) const {
    if (m_traces.empty() || m_traces.front().x.empty())
        return time;
    const std::vector<double>& x = m_traces.front().x;
    const auto next = std::lower_bound(x.begin(), x.end(), time);
    if (next == x.begin())
        return *next;
    if (next == x.end())
        return x.back();
    return (time - *(next - 1) <= *next - time) ? *(next - 1) : *next;
}

PlotRange ChromatogramView::Prepare(PlotRange x, int columns) const {
    m_columns.clear();
    m_factors.clear();
    double lowest = std::numeric_limits<double>::infinity();
    double highest = -std::numeric_limits<double>::infinity();
    for (std::size_t t = 0; t < m_traces.size(); ++t) {
        const PlotTrace& trace = m_traces[t];
        const std::size_t count = std::min(trace.x.size(), trace.y.size());
        DecimatedTrace reduced =
            DecimateColumns(trace.x.data(), trace.y.data(), count, x, columns, &m_blocks[t]);
        double traceLow = std::numeric_limits<double>::infinity();
        double traceHigh = -std::numeric_limits<double>::infinity();
        for (const ColumnExtremes& c : reduced.columns) {
            traceLow = std::min(traceLow, c.min);
            traceHigh = std::max(traceHigh, c.max);
        }
        double factor = 1.0;
        if (m_normalised)
            factor = traceHigh > 0 && std::isfinite(traceHigh) ? 100.0 / traceHigh : 1.0;
        if (!reduced.columns.empty()) {
            lowest = std::min(lowest, traceLow * factor);
            highest = std::max(highest, traceHigh * factor);
        }
        m_columns.push_back(std::move(reduced));
        m_factors.push_back(factor);
    }
    if (!(highest >= lowest))
        return {0.0, 1.0};
    return {lowest, highest};
}

void ChromatogramView::DrawData(QPainter& painter, const Frame& frame) const {
    const double columnWidth = frame.area.width() / std::max(1, static_cast<int>(frame.area.width()));
    for (std::size_t i = 0; i < m_columns.size() && i < m_traces.size(); ++i) {
        const double factor = m_factors[i];
        const QPolygonF line = TraceLine(
            m_columns[i], [&](double v) { return frame.ToPixelX(v); },
            [&](double v) { return frame.ToPixelY(v * factor); }, columnWidth, frame.area.left());
        painter.setPen(QPen(m_traces[i].color, 0));
        painter.drawPolyline(line);
    }
    if (m_traces.size() > 1)
        DrawLegend(painter, frame);
}

void ChromatogramView::DrawLegend(QPainter& painter, const Frame& frame) const {
    const QFontMetrics metrics(painter.font());
    const int line = metrics.height();
    double y = frame.area.top() + 4;
    int width = 0;
    for (const PlotTrace& trace : m_traces)
        width = std::max(width, metrics.horizontalAdvance(trace.name));
    const double left = frame.area.right() - width - 34;
    painter.fillRect(QRectF(left - 4, y - 2, width + 36, line * m_traces.size() + 4),
                     QColor(255, 255, 255, 220));
    for (const PlotTrace& trace : m_traces) {
        painter.setPen(QPen(trace.color, 2));
        painter.drawLine(QPointF(left, y + line / 2.0), QPointF(left + 20, y + line / 2.0));
        painter.setPen(Qt::black);
        painter.drawText(QPointF(left + 26, y + metrics.ascent()), trace.name);
        y += line;
    }
}

void ChromatogramView::DrawOverlay(QPainter& painter, const Frame& frame) const {
    const auto band = [&](PlotRange r, const QColor& colour) {
        const double a = frame.ToPixelX(r.lo);
        const double b = std::max(a + 1, frame.ToPixelX(r.hi));
        painter.fillRect(QRectF(a, frame.area.top(), b - a, frame.area.height()), colour);
    };
    if (m_background)
        band(*m_background, kBackgroundColour);
    if (m_selection)
        band(*m_selection, kSelectionColour);
    if (m_marker) {
        const double px = frame.ToPixelX(*m_marker);
        painter.setPen(QPen(kMarkerColour, 0));
        painter.drawLine(QPointF(px, frame.area.top()), QPointF(px, frame.area.bottom()));
    }
}

QString ChromatogramView::XTitle() const {
    return tr("Retention time (min)");
}

QString ChromatogramView::YTitle() const {
    return m_normalised ? tr("Relative abundance (%)") : tr("Abundance");
}

void ChromatogramView::StepKey(int direction) {
    if (m_traces.empty() || m_traces.front().x.empty())
        return;
    const std::vector<double>& x = m_traces.front().x;
    std::size_t index;
    if (!m_marker) {
        const PlotRange v = VisibleX();
        index = static_cast<std::size_t>(std::lower_bound(x.begin(), x.end(), v.lo) - x.begin());
    } else {
        const double at = NearestSampleTime(*m_marker);
        index = static_cast<std::size_t>(std::lower_bound(x.begin(), x.end(), at) - x.begin());
        if (direction < 0 && index > 0)
            --index;
        else if (direction > 0 && index + 1 < x.size())
            index = static_cast<std::size_t>(std::upper_bound(x.begin(), x.end(), at) - x.begin());
    }
    index = std::min(index, x.size() - 1);
    const double time = x[index];
    const PlotRange v = VisibleX();
    if (IsZoomed() && !v.Contains(time))
        PanBy(time < v.lo ? time - v.lo - v.Width() * 0.1 : time - v.hi + v.Width() * 0.1);
    m_selection.reset();
    SetMarker(time);
    emit Picked(time);
}

void ChromatogramView::Pick(double x) {
    const double time = NearestSampleTime(x);
    m_selection.reset();
    SetMarker(time);
    emit Picked(time);
}

void ChromatogramView::DragRange(PlotRange range, bool background) {
    if (background) {
        SetBackground(range);
    } else {
        m_marker.reset();
        SetSelection(range);
    }
    PlotCanvas::DragRange(range, background);
}
