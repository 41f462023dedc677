// SPDX-License-Identifier: Apache-2.0
#include "trendplot.h"

#include "alarmtext.h"
#include "statushistory.h"

#include <QDateTime>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {
constexpr int kStripHeight = 90;
constexpr int kLabelWidth = 170;
constexpr int kMargin = 6;
constexpr qint64 kShortestSpanMs = 60 * 1000;
} // namespace

TrendPlot::TrendPlot(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("trendPlot"));
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void TrendPlot::SetSeries(const StatusHistory* history, const QStringList& keys) {
    m_history = history;
    if (keys != m_keys) {
        m_keys = keys;
        updateGeometry();
    }
    update();
}

QSize TrendPlot::sizeHint() const {
    return {640, qMax(1, static_cast<int>(m_keys.size())) * kStripHeight + 2 * kMargin};
}

QSize TrendPlot::minimumSizeHint() const {
    return {320, qMax(1, static_cast<int>(m_keys.size())) * kStripHeight + 2 * kMargin};
}

// The history's window, narrowed to the time it covers so a young history is not a sliver at the edge.
qint64 TrendPlot::StartMs(qint64 endMs) const {
    qint64 start = endMs - m_history->WindowMs();
    if (!m_history->Times().empty())
        start =
            std::max<qint64>(start, std::min<qint64>(m_history->Times().front(), endMs - kShortestSpanMs));
    return start;
}

void TrendPlot::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().base());
    if (!m_history || m_keys.isEmpty()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(rect(), Qt::AlignCenter, tr("Choose readings to see their trends."));
        return;
    }
    const qint64 endMs = m_endMs > 0 ? m_endMs : QDateTime::currentMSecsSinceEpoch();
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < m_keys.size(); ++i) {
        const QRect area(kMargin, kMargin + i * kStripHeight, width() - 2 * kMargin, kStripHeight - 4);
        PaintStrip(painter, area, m_keys[i], endMs);
    }
}

void TrendPlot::PaintStrip(QPainter& painter, const QRect& area, const QString& key, qint64 endMs) {
    const StatusHistory::Channel* channel = m_history->Find(key.toStdString());
    const QRect plot = area.adjusted(kLabelWidth, 0, 0, -14);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(plot);

    const auto& times = m_history->Times();
    const qint64 startMs = StartMs(endMs);
    painter.setPen(palette().color(QPalette::Text));
    const QRect labelArea(area.left(), area.top(), kLabelWidth - 8, plot.height());
    if (!channel) {
        painter.drawText(labelArea, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap, key);
        return;
    }
    float low = INFINITY, high = -INFINITY, last = NAN;
    for (size_t i = 0; i < channel->values.size(); ++i) {
        const float value = channel->values[i];
        if (std::isnan(value) || times[i] < startMs)
            continue;
        low = std::min(low, value);
        high = std::max(high, value);
        last = value;
    }
    const QString name = QString::fromStdWString(channel->name);
    const QString unit = QString::fromStdWString(channel->unit);
    const QString now =
        std::isnan(last) ? tr("no reading") : AlarmText::Value(last, channel->unit) + ' ' + unit;
    painter.drawText(labelArea, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextWordWrap,
                     QStringLiteral("%1\n%2").arg(name, now));
    if (std::isnan(last))
        return;
    if (high - low < 1e-12f * std::max(1.0f, std::fabs(high))) {
        // A flat line sits in the middle of a range around it.
        const float pad = std::max(std::fabs(high) * 0.01f, 1e-6f);
        low -= pad;
        high += pad;
    }
    QFont small = painter.font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    painter.setFont(small);
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(plot.adjusted(3, 1, -3, -1), Qt::AlignTop | Qt::AlignLeft,
                     AlarmText::Value(high, channel->unit));
    painter.drawText(plot.adjusted(3, 1, -3, -1), Qt::AlignBottom | Qt::AlignLeft,
                     AlarmText::Value(low, channel->unit));
    const QRect axis(plot.left(), plot.bottom() + 1, plot.width(), 13);
    painter.drawText(axis, Qt::AlignLeft | Qt::AlignTop,
                     tr("-%1 min").arg(QString::number(double(endMs - startMs) / 60000.0, 'f',
                                                       endMs - startMs < 600000 ? 1 : 0)));
    painter.drawText(axis, Qt::AlignRight | Qt::AlignTop, tr("now"));
    painter.setFont(QFont());

    QPainterPath path;
    bool drawing = false;
    const double xScale = double(plot.width()) / double(std::max<qint64>(1, endMs - startMs));
    const double yScale = double(plot.height() - 4) / double(high - low);
    for (size_t i = 0; i < channel->values.size(); ++i) {
        const float value = channel->values[i];
        if (std::isnan(value) || times[i] < startMs) {
            drawing = false;
            continue;
        }
        const QPointF point(plot.left() + double(times[i] - startMs) * xScale,
                            plot.bottom() - 2 - double(value - low) * yScale);
        if (drawing)
            path.lineTo(point);
        else
            path.moveTo(point);
        drawing = true;
    }
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
    painter.drawPath(path);
}
