// SPDX-License-Identifier: Apache-2.0
// The plot canvas: tick steps, the per-column reduction, and the two views driven by real mouse and key
// events, asserting the times, ranges, fitted axes and labels they report.
#include "axisticks.h"
#include "chromatogramview.h"
#include "columnextremes.h"
#include "pdfpages.h"
#include "plotexport.h"
#include "spectrumview.h"
#include "tempdir.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QtTest>
#include <gtest/gtest.h>

#include <cmath>

namespace {

void SendMouse(QWidget& target, QEvent::Type type, QPoint pos, Qt::MouseButton button,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    const Qt::MouseButtons held =
        type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
    QMouseEvent event(type, pos, target.mapToGlobal(pos), button, held, modifiers);
    QApplication::sendEvent(&target, &event);
}

void Drag(QWidget& target, QPoint from, QPoint to, Qt::MouseButton button,
          Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    SendMouse(target, QEvent::MouseButtonPress, from, button, modifiers);
    SendMouse(target, QEvent::MouseMove, (from + to) / 2, button, modifiers);
    SendMouse(target, QEvent::MouseMove, to, button, modifiers);
    SendMouse(target, QEvent::MouseButtonRelease, to, button, modifiers);
}

// A run of 61 scans, one every 0.5 s from 10 s: a flat baseline of 100 with one peak of 5000 at 20 s.
PlotTrace PeakTrace() {
    PlotTrace trace{"TIC", Qt::black, {}, {}};
    for (int i = 0; i <= 60; ++i) {
        trace.x.push_back(10.0 + 0.5 * i);
        trace.y.push_back(i == 20 ? 5000.0 : 100.0);
    }
    return trace;
}

struct ShownChromatogram {
    ChromatogramView view;
    ShownChromatogram() {
        view.resize(800, 300);
        view.AddTrace(PeakTrace());
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&view));
    }
    QPoint At(double time) const {
        return {static_cast<int>(std::lround(view.PixelAtX(time))), view.PlotArea().center().y()};
    }
};

} // namespace

TEST(AxisTicks, StepsAreOneTwoOrFiveAndStayInside) {
    struct Case {
        double lo, hi;
        int target;
        double step;
        int decimals;
    };
    const Case cases[] = {
        {0, 1, 5, 0.2, 1},        {0, 10, 5, 2, 0}, {0, 1e6, 5, 2e5, 0},
        {-3, 7, 5, 2, 0},         {0, 30, 6, 5, 0}, {0.001, 0.0042, 4, 0.001, 3},
        {12.3, 12.4, 2, 0.05, 2},
    };
    for (const Case& c : cases) {
        const AxisTicks ticks = NiceTicks(c.lo, c.hi, c.target);
        ASSERT_GE(ticks.values.size(), 2u) << c.lo << ".." << c.hi;
        EXPECT_NEAR(ticks.values[1] - ticks.values[0], c.step, c.step * 1e-9) << c.lo << ".." << c.hi;
        EXPECT_EQ(ticks.decimals, c.decimals) << c.lo << ".." << c.hi;
        EXPECT_GE(ticks.values.front(), c.lo - 1e-12);
        EXPECT_LE(ticks.values.back(), c.hi + 1e-12);
    }
    EXPECT_TRUE(NiceTicks(5, 5, 4).values.empty());
    EXPECT_TRUE(NiceTicks(0, NAN, 4).values.empty());
    EXPECT_EQ(FormatTick(0.30000000000000004, 1), "0.3");
    EXPECT_EQ(FormatTick(-1e-17, 2), "0.00");
}

TEST(ColumnExtremes, EachVisibleSampleLandsInOneColumnWithItsNeighboursOutside) {
    // x 0..9, y = x*x except a dip at 5; the range [2, 7.5] over 3 columns of width 11/6.
    std::vector<double> x, y;
    for (int i = 0; i < 10; ++i) {
        x.push_back(i);
        y.push_back(i == 5 ? -1.0 : i * i);
    }
    const DecimatedTrace reduced = DecimateColumns(x.data(), y.data(), x.size(), {2.0, 7.5}, 3);
    ASSERT_EQ(reduced.columns.size(), 3u);
    // Columns: [2, 3.83) -> 2,3; [3.83, 5.67) -> 4,5; [5.67, 7.5] -> 6,7.
    EXPECT_EQ(reduced.columns[0].count, 2);
    EXPECT_EQ(reduced.columns[0].min, 4);
    EXPECT_EQ(reduced.columns[0].max, 9);
    EXPECT_EQ(reduced.columns[1].first, 16);
    EXPECT_EQ(reduced.columns[1].min, -1);
    EXPECT_EQ(reduced.columns[1].max, 16);
    EXPECT_EQ(reduced.columns[1].maxX, 4);
    EXPECT_EQ(reduced.columns[1].last, -1);
    EXPECT_EQ(reduced.columns[2].column, 2);
    EXPECT_EQ(reduced.columns[2].max, 49);
    EXPECT_TRUE(reduced.hasBefore);
    EXPECT_EQ(reduced.beforeX, 1);
    EXPECT_TRUE(reduced.hasAfter);
    EXPECT_EQ(reduced.afterX, 8);

    // A million samples over 500 columns: never more than one entry per column.
    std::vector<double> many(1'000'000), values(1'000'000);
    for (std::size_t i = 0; i < many.size(); ++i) {
        many[i] = i * 0.001;
        values[i] = std::sin(i * 0.01);
    }
    const DecimatedTrace wide = DecimateColumns(many.data(), values.data(), many.size(), {0, 1000}, 500);
    EXPECT_EQ(wide.columns.size(), 500u);
    int total = 0;
    for (const ColumnExtremes& c : wide.columns)
        total += c.count;
    EXPECT_EQ(total, 1'000'000);
    EXPECT_TRUE(DecimateColumns(many.data(), values.data(), many.size(), {2000, 3000}, 500).columns.empty());

    // Block summaries change the cost, never the columns: whole view, zoomed, ranges off the blocks' grid.
    const std::vector<SampleBlock> blocks = SummariseBlocks(many.data(), values.data(), many.size());
    for (const PlotRange range : {PlotRange{0, 1000}, PlotRange{12.3456, 80.1}, PlotRange{999.9, 1000}}) {
        for (int columns : {1, 7, 1400}) {
            const DecimatedTrace plain =
                DecimateColumns(many.data(), values.data(), many.size(), range, columns);
            const DecimatedTrace fast =
                DecimateColumns(many.data(), values.data(), many.size(), range, columns, &blocks);
            ASSERT_EQ(plain.columns.size(), fast.columns.size()) << range.lo << " " << columns;
            for (std::size_t i = 0; i < plain.columns.size(); ++i) {
                const ColumnExtremes& a = plain.columns[i];
                const ColumnExtremes& b = fast.columns[i];
                ASSERT_TRUE(a.column == b.column && a.count == b.count && a.min == b.min && a.max == b.max &&
                            a.maxX == b.maxX && a.first == b.first && a.last == b.last &&
                            a.firstX == b.firstX)
                    << "column " << a.column << " of " << columns << " over " << range.lo << ".." << range.hi;
            }
        }
    }
}

TEST(ChromatogramView, ClickPicksTheNearestScanAndArrowsStep) {
    ShownChromatogram shown;
    QSignalSpy picked(&shown.view, &PlotCanvas::Picked);
    SendMouse(shown.view, QEvent::MouseButtonPress, shown.At(20.1), Qt::LeftButton);
    SendMouse(shown.view, QEvent::MouseButtonRelease, shown.At(20.1), Qt::LeftButton);
    ASSERT_EQ(picked.size(), 1);
    EXPECT_DOUBLE_EQ(picked.at(0).at(0).toDouble(), 20.0);
    EXPECT_EQ(shown.view.Marker(), 20.0);

    QTest::keyClick(&shown.view, Qt::Key_Right);
    QTest::keyClick(&shown.view, Qt::Key_Right);
    QTest::keyClick(&shown.view, Qt::Key_Left);
    ASSERT_EQ(picked.size(), 4);
    EXPECT_DOUBLE_EQ(picked.at(1).at(0).toDouble(), 20.5);
    EXPECT_DOUBLE_EQ(picked.at(2).at(0).toDouble(), 21.0);
    EXPECT_DOUBLE_EQ(picked.at(3).at(0).toDouble(), 20.5);
    // The ends hold.
    shown.view.SetMarker(40.0);
    QTest::keyClick(&shown.view, Qt::Key_Right);
    EXPECT_DOUBLE_EQ(picked.last().at(0).toDouble(), 40.0);
    shown.view.SetMarker(10.0);
    QTest::keyClick(&shown.view, Qt::Key_Left);
    EXPECT_DOUBLE_EQ(picked.last().at(0).toDouble(), 10.0);
}

TEST(ChromatogramView, DragsSelectOrMarkBackgroundAndRightDragZooms) {
    ShownChromatogram shown;
    QSignalSpy ranges(&shown.view, &PlotCanvas::RangeDragged);
    QSignalSpy backgrounds(&shown.view, &PlotCanvas::BackgroundDragged);
    const double pixel = 30.0 / shown.view.PlotArea().width(); // seconds per pixel

    Drag(shown.view, shown.At(25.0), shown.At(15.0), Qt::LeftButton);
    ASSERT_EQ(ranges.size(), 1);
    EXPECT_NEAR(ranges.at(0).at(0).toDouble(), 15.0, 2 * pixel);
    EXPECT_NEAR(ranges.at(0).at(1).toDouble(), 25.0, 2 * pixel);
    ASSERT_TRUE(shown.view.Selection());
    EXPECT_FALSE(shown.view.Marker());

    Drag(shown.view, shown.At(30.0), shown.At(35.0), Qt::LeftButton, Qt::ShiftModifier);
    ASSERT_EQ(backgrounds.size(), 1);
    EXPECT_NEAR(backgrounds.at(0).at(0).toDouble(), 30.0, 2 * pixel);
    ASSERT_TRUE(shown.view.Background());
    EXPECT_TRUE(shown.view.Selection()) << "marking a background keeps the selected range";

    // A drag past the plot's edge stops at the edge.
    Drag(shown.view, shown.At(35.0), QPoint(shown.view.width() + 50, 100), Qt::LeftButton);
    EXPECT_NEAR(ranges.last().at(1).toDouble(), 40.0, 2 * pixel);

    Drag(shown.view, shown.At(12.0), shown.At(18.0), Qt::RightButton);
    EXPECT_TRUE(shown.view.IsZoomed());
    EXPECT_NEAR(shown.view.VisibleX().lo, 12.0, 2 * pixel);
    EXPECT_NEAR(shown.view.VisibleX().hi, 18.0, 2 * pixel);
    EXPECT_EQ(ranges.size(), 2) << "a zoom is not a selection";
    QTest::keyClick(&shown.view, Qt::Key_Home);
    EXPECT_FALSE(shown.view.IsZoomed());
}

TEST(ChromatogramView, TheYAxisFitsWhatIsVisible) {
    ShownChromatogram shown;
    shown.view.grab();
    EXPECT_GE(shown.view.FittedY().hi, 5000.0);
    EXPECT_LE(shown.view.FittedY().hi, 5000.0 * 1.1);
    // Away from the peak only the baseline of 100 is visible.
    shown.view.ZoomTo(25.0, 35.0);
    shown.view.grab();
    EXPECT_GE(shown.view.FittedY().hi, 100.0);
    EXPECT_LE(shown.view.FittedY().hi, 110.0);
    // Normalised, a second trace ten times smaller reaches the same height.
    PlotTrace small = PeakTrace();
    for (double& v : small.y)
        v /= 10;
    shown.view.AddTrace(small);
    shown.view.SetNormalised(true);
    shown.view.ResetView();
    shown.view.grab();
    EXPECT_NEAR(shown.view.FittedY().hi, 100.0 * 1.08, 1e-9);
}

TEST(ChromatogramView, WheelZoomsAroundThePointerAndPanStaysInside) {
    ShownChromatogram shown;
    const QPoint pointer = shown.At(20.0);
    QWheelEvent wheel(pointer, shown.view.mapToGlobal(pointer), {}, QPoint(0, 240), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&shown.view, &wheel);
    const PlotRange zoomed = shown.view.VisibleX();
    EXPECT_NEAR(zoomed.Width(), 30.0 * 0.64, 1e-6);
    EXPECT_NEAR(shown.view.XAtPixel(pointer.x()), 20.0, 30.0 / shown.view.PlotArea().width() * 2);
    shown.view.PanBy(-1000);
    EXPECT_DOUBLE_EQ(shown.view.VisibleX().lo, 10.0);
    EXPECT_NEAR(shown.view.VisibleX().Width(), zoomed.Width(), 1e-9);
    // Dragging with the middle button pans: the data follow the pointer.
    const PlotRange before = shown.view.VisibleX();
    Drag(shown.view, shown.At(14.0), shown.At(12.0), Qt::MiddleButton);
    EXPECT_NEAR(shown.view.VisibleX().lo - before.lo, 2.0, 0.2);
}

TEST(SpectrumView, RelativeBarsLabelTheLargestPeaksWithoutCollisions) {
    SpectrumView view;
    view.resize(800, 300);
    // 91 is the base peak; 92 is nearly as large and right beside it, so its label would collide.
    view.SetSpectrum({39, 51, 65, 91, 92, 120}, {120, 80, 150, 1000, 950, 300}, "Scan 12");
    view.SetLabelCount(4);
    view.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&view));
    view.grab();
    EXPECT_EQ(view.BasePeakMass(), 91);
    EXPECT_EQ(view.RelativeAbundances()[4], 95.0);
    const std::vector<double> expected{91, 120, 65, 39};
    EXPECT_EQ(view.LabelledMasses(), expected);
    // Zoomed into 60..100 only the visible peaks are candidates.
    view.ZoomTo(60, 100);
    view.grab();
    const std::vector<double> zoomed{91, 92, 65};
    EXPECT_EQ(view.LabelledMasses(), zoomed) << "beside each other there is room for both labels";
    EXPECT_NEAR(view.FittedY().hi, 108.0, 1e-9);
    view.ZoomTo(95, 121);
    view.grab();
    EXPECT_NEAR(view.FittedY().hi, 30.0 * 1.08, 1e-9) << "the y axis fits the visible bars";
}

TEST(PlotExport, PngAndPdfShowWhatIsOnScreen) {
    TempDir dir;
    SpectrumView spectrum;
    spectrum.resize(700, 280);
    spectrum.SetSpectrum({43, 57, 71, 85}, {400, 1000, 350, 120}, "Average of 3 scans");
    ChromatogramView chromatogram;
    chromatogram.resize(700, 300);
    chromatogram.AddTrace(PeakTrace());
    chromatogram.ZoomTo(15.0, 25.0);

    QString error;
    const QString png = QString::fromStdString(dir.file("plot.png"));
    ASSERT_TRUE(ExportPlots(png, {&chromatogram, &spectrum}, &error)) << error.toStdString();
    const QImage image(png);
    EXPECT_EQ(image.size(), QSize(700, 580));

    const QString pdf = QString::fromStdString(dir.file("plot.pdf"));
    ASSERT_TRUE(ExportPlots(pdf, {&chromatogram, &spectrum}, &error)) << error.toStdString();
    const std::string text = PdfText(pdf.toStdString());
    for (const char* shown : {"Average of 3 scans", "m/z", "57", "Retention time (min)", "0.30"})
        EXPECT_NE(text.find(shown), std::string::npos) << shown << " in:\n" << text;
    EXPECT_EQ(text.find("0.10"), std::string::npos) << "ticks follow the zoom (15-25 s)";

    EXPECT_FALSE(ExportPlots(QString::fromStdString(dir.file("plot.bmp")), {&spectrum}, &error));
    EXPECT_TRUE(error.contains(".png"));
    EXPECT_FALSE(ExportPlots("/nonexistent-dir/plot.png", {&spectrum}, &error));
    EXPECT_FALSE(error.isEmpty());
}
