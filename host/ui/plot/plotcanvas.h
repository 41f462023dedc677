// SPDX-License-Identifier: Apache-2.0
#pragma once
// What every plot of a run shares: axes with readable ticks, an x range the operator zooms and pans, a
// y range fitted to what is visible, and the mouse and keys that go with them. Subclasses give the data
// (reduced to pixel columns before drawing) and what is drawn over it.
//
// Mouse: a left click picks a position (Picked); a left drag selects a range (RangeDragged, or with
// Shift BackgroundDragged) in a plot that selects, and zooms in one that does not; a right drag zooms
// to its range; a middle drag, or a left drag with Ctrl, pans; the wheel zooms around the pointer (with
// Shift it pans). Keys: Home or a double click shows everything, + and - zoom, Shift+Left/Right pan,
// Left/Right step (StepKey).
#include "plotrange.h"

#include <QWidget>

#include <vector>

class PlotCanvas : public QWidget {
    Q_OBJECT
public:
    explicit PlotCanvas(QWidget* parent = nullptr);

    // The visible x range: the whole data unless zoomed.
    PlotRange VisibleX() const;
    bool IsZoomed() const { return m_zoomed; }
    // Shows [lo, hi], kept inside the data and not narrower than MinimumWidth().
    void ZoomTo(double lo, double hi);
    // factor < 1 zooms in, keeping `x` at the same place.
    void ZoomAround(double x, double factor);
    void PanBy(double dx);
    void ResetView();

    // The whole plot drawn into `target` of any device (the widget, an image, a PDF page).
    void Render(QPainter& painter, const QRect& target) const;
    // The y range the last drawing fitted to the visible data.
    PlotRange FittedY() const { return m_fittedY; }
    // The data area inside the widget, and the x at a widget pixel column and back.
    QRect PlotArea() const;
    double XAtPixel(double px) const;
    double PixelAtX(double x) const;

    QSize sizeHint() const override { return {640, 260}; }
    QSize minimumSizeHint() const override { return {200, 120}; }

signals:
    // A position picked by a click or a step key.
    void Picked(double x);
    void RangeDragged(double lo, double hi);
    void BackgroundDragged(double lo, double hi);
    void ViewChanged(double lo, double hi);

protected:
    struct Frame {
        QRectF outer; // the whole plot
        QRectF area;  // where the data go
        PlotRange x;
        PlotRange y;
        double ToPixelX(double v) const;
        double ToPixelY(double v) const;
    };

    // The x range of all data; empty (lo == hi) when there is nothing to show.
    virtual PlotRange DataX() const = 0;
    // Reduces the data to `columns` pixel columns of `x`, keeps the result for DrawData, and returns
    // the y range the visible data span.
    virtual PlotRange Prepare(PlotRange x, int columns) const = 0;
    virtual void DrawData(QPainter& painter, const Frame& frame) const = 0;
    virtual void DrawOverlay(QPainter&, const Frame&) const {}
    virtual QString XTitle() const = 0;
    virtual QString YTitle() const = 0;
    // Tick labels show data * XLabelScale() (seconds shown as minutes).
    virtual double XLabelScale() const { return 1.0; }
    virtual bool LeftDragSelects() const { return false; }
    virtual QString EmptyText() const { return {}; }
    virtual double MinimumWidth() const;
    // Left/Right without Shift; the default pans a tenth of the view.
    virtual void StepKey(int direction);
    // A click at x or a dragged range; the defaults only emit the signals.
    virtual void Pick(double x);
    virtual void DragRange(PlotRange range, bool background);

    // Call after the data changed: keeps the zoom when it still fits, and redraws.
    void DataChanged();

    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    enum class Drag { None, Select, Background, Zoom, Pan };

    Frame Layout(const QRect& target, const QFontMetrics& metrics, PlotRange y) const;
    void DrawAxes(QPainter& painter, const Frame& frame) const;
    void DrawDragBand(QPainter& painter) const;
    Drag DragFor(Qt::MouseButton button, Qt::KeyboardModifiers modifiers) const;
    static PlotRange PaddedY(PlotRange data);

    PlotRange m_view;
    bool m_zoomed = false;
    Drag m_drag = Drag::None;
    bool m_dragMoved = false;
    QPoint m_pressPos;
    QPoint m_dragPos;
    PlotRange m_panStart;
    mutable PlotRange m_fittedY{0.0, 1.0};
    mutable QRectF m_area;
};
