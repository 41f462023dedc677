// SPDX-License-Identifier: Apache-2.0
#include "spectrumview.h"

#include "columnextremes.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {
const QColor kBarColour(0x1f, 0x4e, 0x8c);
const QColor kLabelColour(0x20, 0x20, 0x20);
// A mass unit either side, so the outermost bars are not on the frame.
constexpr double kMassMargin = 1.0;
// Peaks below this share of the visible maximum get no label: they are noise next to the spectrum.
constexpr double kLabelFloor = 0.02;
} // namespace

SpectrumView::SpectrumView(QWidget* parent) : PlotCanvas(parent) {}

SpectrumView::~SpectrumView() = default;

void SpectrumView::SetSpectrum(std::vector<double> mz, std::vector<double> intensity, const QString& title) {
    const std::size_t count = std::min(mz.size(), intensity.size());
    mz.resize(count);
    m_mz = std::move(mz);
    m_relative.assign(count, 0.0);
    m_baseMass = 0.0;
    m_baseIntensity = 0.0;
    m_nominal = true;
    for (std::size_t i = 0; i < count; ++i) {
        if (intensity[i] > m_baseIntensity) {
            m_baseIntensity = intensity[i];
            m_baseMass = m_mz[i];
        }
        if (std::abs(m_mz[i] - std::round(m_mz[i])) > 0.05)
            m_nominal = false;
    }
    if (m_baseIntensity > 0) {
        for (std::size_t i = 0; i < count; ++i)
            m_relative[i] = std::max(0.0, intensity[i]) * 100.0 / m_baseIntensity;
    }
    m_title = title;
    m_labelled.clear();
    DataChanged();
}

void SpectrumView::ClearSpectrum(const QString& emptyText) {
    m_mz.clear();
    m_relative.clear();
    m_baseMass = m_baseIntensity = 0.0;
    m_title.clear();
    m_emptyText = emptyText;
    m_labelled.clear();
    DataChanged();
}

void SpectrumView::SetMassRange(PlotRange range) {
    m_massRange = range;
    DataChanged();
}

void SpectrumView::SetLabelCount(int count) {
    m_labelCount = std::max(0, count);
    update();
}

PlotRange SpectrumView::DataX() const {
    if (m_mz.empty() && !(m_massRange.hi > m_massRange.lo))
        return {};
    PlotRange range = m_massRange;
    if (!(range.hi > range.lo))
        range = {m_mz.front(), m_mz.back()};
    else if (!m_mz.empty())
        range = {std::min(range.lo, m_mz.front()), std::max(range.hi, m_mz.back())};
    return {range.lo - kMassMargin, range.hi + kMassMargin};
}

PlotRange SpectrumView::Prepare(PlotRange x, int columns) const {
    m_columns.clear();
    m_columns.push_back(DecimateColumns(m_mz.data(), m_relative.data(), m_mz.size(), x, columns));
    double highest = 0.0;
    for (const ColumnExtremes& c : m_columns.front().columns)
        highest = std::max(highest, c.max);
    return {0.0, highest > 0 ? highest : 100.0};
}

void SpectrumView::DrawData(QPainter& painter, const Frame& frame) const {
    // The title goes in the margin above the frame, clear of the labels over the tallest bars.
    if (!m_title.isEmpty()) {
        const QFontMetrics metrics(painter.font());
        painter.setPen(kLabelColour);
        painter.drawText(QPointF(frame.area.left(), frame.outer.top() + 1 + metrics.ascent()), m_title);
    }
    if (m_mz.empty()) {
        painter.setPen(kLabelColour);
        painter.drawText(frame.area.adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         m_emptyText);
        return;
    }
    if (m_columns.empty())
        return;
    // Bars get wider when whole masses are far enough apart on screen.
    const double unitPixels = frame.area.width() / frame.x.Width();
    painter.setPen(QPen(kBarColour, unitPixels >= 6 ? 2 : 0, Qt::SolidLine, Qt::FlatCap));
    const double base = frame.ToPixelY(0.0);
    const double columnWidth = frame.area.width() / std::max(1, static_cast<int>(frame.area.width()));
    for (const ColumnExtremes& c : m_columns.front().columns) {
        if (c.max <= 0)
            continue;
        const double px =
            c.count == 1 ? frame.ToPixelX(c.maxX) : frame.area.left() + (c.column + 0.5) * columnWidth;
        const double top = frame.ToPixelY(c.max);
        // At least one pixel, so a tiny peak is still seen to exist.
        painter.drawLine(QPointF(px, base), QPointF(px, std::min(top, base - 1)));
    }
    DrawLabels(painter, frame);
}

void SpectrumView::DrawLabels(QPainter& painter, const Frame& frame) const {
    m_labelled.clear();
    if (m_columns.empty() || m_labelCount == 0)
        return;
    double highest = 0.0;
    for (const ColumnExtremes& c : m_columns.front().columns)
        highest = std::max(highest, c.max);
    std::vector<const ColumnExtremes*> peaks;
    for (const ColumnExtremes& c : m_columns.front().columns) {
        if (c.max > 0 && c.max >= highest * kLabelFloor)
            peaks.push_back(&c);
    }
    std::sort(peaks.begin(), peaks.end(), [](const ColumnExtremes* a, const ColumnExtremes* b) {
        return a->max != b->max ? a->max > b->max : a->maxX < b->maxX;
    });
    const QFontMetrics metrics(painter.font());
    std::vector<QRectF> placed;
    painter.setPen(kLabelColour);
    for (const ColumnExtremes* peak : peaks) {
        if (static_cast<int>(m_labelled.size()) >= m_labelCount)
            break;
        const QString text = QString::number(peak->maxX, 'f', m_nominal ? 0 : 1);
        const double px = frame.ToPixelX(peak->maxX);
        const double top = frame.ToPixelY(peak->max);
        const double w = metrics.horizontalAdvance(text);
        QRectF box(px - w / 2 - 1, top - metrics.height() - 1, w + 2, metrics.height());
        // A label at the frame's edge moves inward rather than leaving the plot.
        box.moveLeft(std::clamp(box.left(), frame.area.left(), frame.area.right() - box.width()));
        const bool collides = std::any_of(placed.begin(), placed.end(),
                                          [&](const QRectF& other) { return other.intersects(box); });
        if (collides)
            continue;
        placed.push_back(box);
        painter.drawText(QPointF(box.left() + 1, box.top() + metrics.ascent()), text);
        m_labelled.push_back(peak->maxX);
    }
}

QString SpectrumView::XTitle() const {
    return tr("m/z");
}

QString SpectrumView::YTitle() const {
    return tr("Relative abundance (%)");
}
