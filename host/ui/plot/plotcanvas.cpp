// SPDX-License-Identifier: Apache-2.0
#include "plotcanvas.h"

#include "axisticks.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {
// A press that moves less than this is a click, not a drag.
constexpr int kDragThreshold = 4;
constexpr double kWheelZoomStep = 0.8;
constexpr double kKeyPanFraction = 0.1;
// Room above the highest value, so labels over peaks stay inside.
constexpr double kHeadroom = 1.08;
// A y axis whose values reach this far is labelled in powers of ten.
constexpr double kExponentFrom = 1e5;

const QColor kGridColour(0xe4, 0xe7, 0xeb);
const QColor kAxisColour(0x44, 0x4a, 0x52);

int YExponent(PlotRange y) {
    const double largest = std::max(std::abs(y.lo), std::abs(y.hi));
    if (largest < kExponentFrom)
        return 0;
    return static_cast<int>(std::floor(std::log10(largest)));
}

QString Superscript(int n) {
    static const QString digits = QStringLiteral("⁰¹²³⁴⁵⁶⁷⁸⁹");
    QString out;
    for (QChar c : QString::number(n))
        out += c == '-' ? QStringLiteral("⁻") : QString(digits[c.digitValue()]);
    return out;
}
} // namespace

double PlotCanvas::Frame::ToPixelX(double v) const {
    return area.left() + (v - x.lo) / x.Width() * area.width();
}

double PlotCanvas::Frame::ToPixelY(double v) const {
    return area.bottom() - (v - y.lo) / y.Width() * area.height();
}

PlotCanvas::PlotCanvas(QWidget* parent) : QWidget(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(false);
    setAttribute(Qt::WA_OpaquePaintEvent);
}

PlotRange PlotCanvas::VisibleX() const {
    return m_zoomed ? m_view : DataX();
}

double PlotCanvas::MinimumWidth() const {
    return std::max(DataX().Width() * 1e-6, 1e-9);
}

void PlotCanvas::ZoomTo(double lo, double hi) {
    const PlotRange data = DataX();
    if (!(data.hi > data.lo) || !std::isfinite(lo) || !std::isfinite(hi))
        return;
    if (hi < lo)
        std::swap(lo, hi);
    const double minimum = MinimumWidth();
    if (hi - lo < minimum) {
        const double middle = (lo + hi) / 2;
        lo = middle - minimum / 2;
        hi = middle + minimum / 2;
    }
    if (hi - lo >= data.Width()) {
        ResetView();
        return;
    }
    if (lo < data.lo) {
        hi += data.lo - lo;
        lo = data.lo;
    }
    if (hi > data.hi) {
        lo -= hi - data.hi;
        hi = data.hi;
    }
    m_view = {lo, hi};
    m_zoomed = true;
    update();
    emit ViewChanged(lo, hi);
}

void PlotCanvas::ZoomAround(double x, double factor) {
    const PlotRange v = VisibleX();
    ZoomTo(x - (x - v.lo) * factor, x + (v.hi - x) * factor);
}

void PlotCanvas::PanBy(double dx) {
    const PlotRange v = VisibleX();
    if (!m_zoomed)
        return;
    const PlotRange data = DataX();
    dx = std::clamp(dx, data.lo - v.lo, data.hi - v.hi);
    ZoomTo(v.lo + dx, v.hi + dx);
}

void PlotCanvas::ResetView() {
    m_zoomed = false;
    const PlotRange data = DataX();
    update();
    emit ViewChanged(data.lo, data.hi);
}

void PlotCanvas::DataChanged() {
    const PlotRange data = DataX();
    if (m_zoomed && !(m_view.lo >= data.lo && m_view.hi <= data.hi && m_view.Width() < data.Width()))
        m_zoomed = false;
    update();
}

PlotRange PlotCanvas::PaddedY(PlotRange data) {
    if (!std::isfinite(data.lo) || !std::isfinite(data.hi) || data.hi <= data.lo)
        return {0.0, std::isfinite(data.hi) && data.hi > 0 ? data.hi * kHeadroom : 1.0};
    return {std::min(0.0, data.lo), data.hi * kHeadroom - std::min(0.0, data.lo) * (kHeadroom - 1)};
}

PlotCanvas::Frame PlotCanvas::Layout(const QRect& target, const QFontMetrics& metrics, PlotRange y) const {
    const int line = metrics.height();
    const int exponent = YExponent(y);
    const double unit = std::pow(10.0, exponent);
    int labelWidth = metrics.horizontalAdvance(QStringLiteral("0000"));
    const AxisTicks ticks = NiceTicks(y.lo / unit, y.hi / unit, std::max(2, target.height() / 45));
    for (double v : ticks.values)
        labelWidth = std::max(labelWidth, metrics.horizontalAdvance(FormatTick(v, ticks.decimals)));
    const int left = labelWidth + line + 14;
    const int bottom = 2 * line + 10;
    const int top = line + 4;
    const int right = metrics.horizontalAdvance(QStringLiteral("00000")) / 2 + 6;
    Frame frame;
    frame.area = QRectF(target.left() + left, target.top() + top, std::max(10, target.width() - left - right),
                        std::max(10, target.height() - top - bottom));
    frame.outer = target;
    frame.x = VisibleX();
    frame.y = y;
    return frame;
}

void PlotCanvas::Render(QPainter& painter, const QRect& target) const {
    painter.save();
    painter.fillRect(target, Qt::white);
    const PlotRange x = VisibleX();
    const QFontMetrics metrics(painter.font());
    if (!(x.hi > x.lo)) {
        painter.setPen(kAxisColour);
        painter.drawText(target, Qt::AlignCenter | Qt::TextWordWrap, EmptyText());
        painter.restore();
        m_area = QRectF();
        return;
    }
    // The data area's width decides the columns; a first layout with a provisional y range gives it.
    Frame frame = Layout(target, metrics, m_fittedY);
    const PlotRange dataY = Prepare(x, std::max(1, static_cast<int>(frame.area.width())));
    const PlotRange y = PaddedY(dataY);
    frame = Layout(target, metrics, y);
    m_fittedY = y;
    m_area = frame.area;

    DrawAxes(painter, frame);
    painter.save();
    painter.setClipRect(frame.area.adjusted(0, -frame.area.top() + target.top(), 1, 1));
    painter.setRenderHint(QPainter::Antialiasing, false);
    DrawData(painter, frame);
    DrawOverlay(painter, frame);
    painter.restore();
    painter.restore();
}

void PlotCanvas::DrawAxes(QPainter& painter, const Frame& frame) const {
    const QFontMetrics metrics(painter.font());
    const QRectF& area = frame.area;
    const int line = metrics.height();

    const double xScale = XLabelScale();
    const AxisTicks xTicks =
        NiceTicks(frame.x.lo * xScale, frame.x.hi * xScale, std::max(2, static_cast<int>(area.width() / 90)));
    const int exponent = YExponent(frame.y);
    const double unit = std::pow(10.0, exponent);
    const AxisTicks yTicks =
        NiceTicks(frame.y.lo / unit, frame.y.hi / unit, std::max(2, static_cast<int>(area.height() / 45)));

    painter.setPen(QPen(kGridColour, 0));
    for (double v : xTicks.values) {
        const double px = frame.ToPixelX(v / xScale);
        painter.drawLine(QPointF(px, area.top()), QPointF(px, area.bottom()));
    }
    for (double v : yTicks.values) {
        const double py = frame.ToPixelY(v * unit);
        painter.drawLine(QPointF(area.left(), py), QPointF(area.right(), py));
    }

    painter.setPen(QPen(kAxisColour, 0));
    painter.drawRect(area);
    for (double v : xTicks.values) {
        const double px = frame.ToPixelX(v / xScale);
        painter.drawLine(QPointF(px, area.bottom()), QPointF(px, area.bottom() + 4));
        const QString text = FormatTick(v, xTicks.decimals);
        const int w = metrics.horizontalAdvance(text);
        painter.drawText(QPointF(px - w / 2.0, area.bottom() + 5 + metrics.ascent()), text);
    }
    for (double v : yTicks.values) {
        const double py = frame.ToPixelY(v * unit);
        painter.drawLine(QPointF(area.left() - 4, py), QPointF(area.left(), py));
        const QString text = FormatTick(v, yTicks.decimals);
        const int w = metrics.horizontalAdvance(text);
        painter.drawText(QPointF(area.left() - 6 - w, py + metrics.ascent() / 2.0 - 1), text);
    }

    const QString xTitle = XTitle();
    painter.drawText(QRectF(area.left(), area.bottom() + line + 6, area.width(), line), Qt::AlignHCenter,
                     xTitle);
    QString yTitle = YTitle();
    if (exponent != 0)
        yTitle += QStringLiteral(" (×10%1)").arg(Superscript(exponent));
    // The y title runs up the left edge, clear of the tick labels.
    painter.save();
    painter.translate(QPointF(frame.outer.left() + 2 + metrics.ascent(), area.center().y()));
    painter.rotate(-90);
    const int w = metrics.horizontalAdvance(yTitle);
    painter.drawText(QPointF(-w / 2.0, 0), yTitle);
    painter.restore();
}

QRect PlotCanvas::PlotArea() const {
    if (m_area.isEmpty())
        return Layout(rect(), fontMetrics(), m_fittedY).area.toAlignedRect();
    return m_area.toAlignedRect();
}

double PlotCanvas::XAtPixel(double px) const {
    const QRectF area = m_area.isEmpty() ? QRectF(PlotArea()) : m_area;
    const PlotRange v = VisibleX();
    return v.lo + (px - area.left()) / area.width() * v.Width();
}

double PlotCanvas::PixelAtX(double x) const {
    const QRectF area = m_area.isEmpty() ? QRectF(PlotArea()) : m_area;
    const PlotRange v = VisibleX();
    return area.left() + (x - v.lo) / v.Width() * area.width();
}

void PlotCanvas::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    Render(painter, rect());
    if (m_drag != Drag::None && m_drag != Drag::Pan && m_dragMoved)
        DrawDragBand(painter);
}

void PlotCanvas::resizeEvent(QResizeEvent* event) {
    m_area = QRectF();
    QWidget::resizeEvent(event);
}

void PlotCanvas::DrawDragBand(QPainter& painter) const {
    QColor fill;
    switch (m_drag) {
    case Drag::Select:
        fill = QColor(0x2f, 0x6f, 0xd0, 60);
        break;
    case Drag::Background:
        fill = QColor(0xe0, 0x8a, 0x1e, 70);
        break;
    default:
        fill = QColor(0x60, 0x60, 0x60, 45);
        break;
    }
    const QRectF area = m_area;
    const double a = std::clamp<double>(m_pressPos.x(), area.left(), area.right());
    const double b = std::clamp<double>(m_dragPos.x(), area.left(), area.right());
    const QRectF band(std::min(a, b), area.top(), std::abs(b - a), area.height());
    painter.fillRect(band, fill);
    painter.setPen(QPen(fill.darker(160), 0, Qt::DashLine));
    painter.drawRect(band);
}

PlotCanvas::Drag PlotCanvas::DragFor(Qt::MouseButton button, Qt::KeyboardModifiers modifiers) const {
    switch (button) {
    case Qt::LeftButton:
        if (modifiers & Qt::ControlModifier)
            return Drag::Pan;
        if (!LeftDragSelects())
            return Drag::Zoom;
        return (modifiers & Qt::ShiftModifier) ? Drag::Background : Drag::Select;
    case Qt::RightButton:
        return Drag::Zoom;
    case Qt::MiddleButton:
        return Drag::Pan;
    default:
        return Drag::None;
    }
}

void PlotCanvas::mousePressEvent(QMouseEvent* event) {
    const PlotRange data = DataX();
    if (!(data.hi > data.lo) || m_drag != Drag::None) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_drag = DragFor(event->button(), event->modifiers());
    m_dragMoved = false;
    m_pressPos = event->position().toPoint();
    m_dragPos = m_pressPos;
    m_panStart = VisibleX();
    if (m_drag == Drag::Pan)
        setCursor(Qt::ClosedHandCursor);
}

void PlotCanvas::mouseMoveEvent(QMouseEvent* event) {
    if (m_drag == Drag::None)
        return;
    const QPoint pos = event->position().toPoint();
    if ((pos - m_pressPos).manhattanLength() >= kDragThreshold)
        m_dragMoved = true;
    if (!m_dragMoved)
        return;
    m_dragPos = pos;
    if (m_drag == Drag::Pan) {
        const double dx = -(pos.x() - m_pressPos.x()) / std::max(1.0, m_area.width()) * m_panStart.Width();
        if (m_zoomed) {
            const PlotRange data = DataX();
            const double shift = std::clamp(dx, data.lo - m_panStart.lo, data.hi - m_panStart.hi);
            ZoomTo(m_panStart.lo + shift, m_panStart.hi + shift);
        }
        return;
    }
    update();
}

void PlotCanvas::mouseReleaseEvent(QMouseEvent* event) {
    const Drag drag = m_drag;
    if (drag == Drag::None)
        return;
    m_drag = Drag::None;
    unsetCursor();
    const QRectF area = m_area.isEmpty() ? QRectF(PlotArea()) : m_area;
    const double releaseX = event->position().x();
    if (!m_dragMoved) {
        if (event->button() == Qt::LeftButton && drag != Drag::Pan && m_pressPos.x() >= area.left() &&
            m_pressPos.x() <= area.right())
            Pick(XAtPixel(m_pressPos.x()));
        update();
        return;
    }
    const double a = XAtPixel(std::clamp<double>(m_pressPos.x(), area.left(), area.right()));
    const double b = XAtPixel(std::clamp<double>(releaseX, area.left(), area.right()));
    const PlotRange range{std::min(a, b), std::max(a, b)};
    switch (drag) {
    case Drag::Select:
        DragRange(range, false);
        break;
    case Drag::Background:
        DragRange(range, true);
        break;
    case Drag::Zoom:
        ZoomTo(range.lo, range.hi);
        break;
    default:
        break;
    }
    update();
}

void PlotCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        ResetView();
}

void PlotCanvas::wheelEvent(QWheelEvent* event) {
    const QPoint angle = event->angleDelta();
    const bool horizontal = angle.y() == 0;
    const double notches = (horizontal ? angle.x() : angle.y()) / 120.0;
    if (notches == 0)
        return;
    event->accept();
    if (horizontal || (event->modifiers() & Qt::ShiftModifier)) {
        PanBy(-notches * kKeyPanFraction * VisibleX().Width());
        return;
    }
    ZoomAround(XAtPixel(event->position().x()), std::pow(kWheelZoomStep, notches));
}

void PlotCanvas::keyPressEvent(QKeyEvent* event) {
    const PlotRange v = VisibleX();
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    switch (event->key()) {
    case Qt::Key_Home:
        ResetView();
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        ZoomAround((v.lo + v.hi) / 2, 0.5);
        return;
    case Qt::Key_Minus:
        ZoomAround((v.lo + v.hi) / 2, 2.0);
        return;
    case Qt::Key_Left:
    case Qt::Key_Right: {
        const int direction = event->key() == Qt::Key_Left ? -1 : 1;
        if (shift)
            PanBy(direction * kKeyPanFraction * v.Width());
        else
            StepKey(direction);
        return;
    }
    default:
        QWidget::keyPressEvent(event);
    }
}

void PlotCanvas::StepKey(int direction) {
    PanBy(direction * kKeyPanFraction * VisibleX().Width());
}

void PlotCanvas::Pick(double x) {
    emit Picked(x);
}

void PlotCanvas::DragRange(PlotRange range, bool background) {
    if (background)
        emit BackgroundDragged(range.lo, range.hi);
    else
        emit RangeDragged(range.lo, range.hi);
}
