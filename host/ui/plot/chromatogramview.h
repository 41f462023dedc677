// SPDX-License-Identifier: Apache-2.0
#pragma once
// A chromatogram: one or more traces over retention time (seconds inside, minutes on the axis), a
// marker at the picked time, the selected range and a background range. A click picks the nearest
// sample of the first trace and Left/Right step to its neighbours, so the picked time is always a
// scan's; a left drag selects a range, with Shift the background range.
#include "columnextremes.h"
#include "plotcanvas.h"
#include "plottrace.h"

#include <optional>

class ChromatogramView : public PlotCanvas {
    Q_OBJECT
public:
    explicit ChromatogramView(QWidget* parent = nullptr);
    ~ChromatogramView() override;

    // Returns the trace's index. Traces are drawn in order; the first one is what picks snap to.
    int AddTrace(PlotTrace trace);
    void RemoveTrace(int index);
    void ClearTraces();
    int TraceCount() const { return static_cast<int>(m_traces.size()); }
    const PlotTrace& TraceAt(int index) const { return m_traces.at(index); }

    // Each trace scaled to 100 at its own largest visible value, so small traces show their shape
    // beside a large one.
    void SetNormalised(bool normalised);
    bool IsNormalised() const { return m_normalised; }

    void SetMarker(std::optional<double> time);
    std::optional<double> Marker() const { return m_marker; }
    void SetSelection(std::optional<PlotRange> range);
    std::optional<PlotRange> Selection() const { return m_selection; }
    void SetBackground(std::optional<PlotRange> range);
    std::optional<PlotRange> Background() const { return m_background; }

    // What the empty plot says (no file, or a file without spectra).
    void SetEmptyText(const QString& text);

    // The time of the first trace's sample nearest to `time`; `time` itself when there is none.
    double NearestSampleTime(double time) const;

protected:
    PlotRange DataX() const override;
    PlotRange Prepare(PlotRange x, int columns) const override;
    void DrawData(QPainter& painter, const Frame& frame) const override;
    void DrawOverlay(QPainter& painter, const Frame& frame) const override;
    QString XTitle() const override;
    QString YTitle() const override;
    double XLabelScale() const override { return 1.0 / 60.0; }
    bool LeftDragSelects() const override { return true; }
    QString EmptyText() const override { return m_emptyText; }
    void StepKey(int direction) override;
    void Pick(double x) override;
    void DragRange(PlotRange range, bool background) override;

private:
    void DrawLegend(QPainter& painter, const Frame& frame) const;

    std::vector<PlotTrace> m_traces;
    std::vector<std::vector<SampleBlock>> m_blocks; // one per trace
    bool m_normalised = false;
    std::optional<double> m_marker;
    std::optional<PlotRange> m_selection;
    std::optional<PlotRange> m_background;
    QString m_emptyText;
    // What Prepare reduced the traces to, and each trace's factor onto the y axis.
    mutable std::vector<DecimatedTrace> m_columns;
    mutable std::vector<double> m_factors;
};
