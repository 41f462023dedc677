// SPDX-License-Identifier: Apache-2.0
#include "plotexport.h"

#include "plotcanvas.h"

#include <QFileInfo>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace {
// A plot that was never laid out (a hidden tab) is drawn at this size.
const QSize kDefaultPlotSize(900, 320);
// Screen pixels map one to one onto the PDF page at this resolution.
constexpr int kPdfResolution = 96;

QSize PlotSize(const PlotCanvas& plot) {
    const QSize size = plot.size();
    return (size.width() < 200 || size.height() < 100) ? kDefaultPlotSize : size;
}

void DrawStacked(QPainter& painter, const std::vector<const PlotCanvas*>& plots, int width) {
    int top = 0;
    for (const PlotCanvas* plot : plots) {
        const int height = PlotSize(*plot).height();
        painter.setFont(plot->font());
        plot->Render(painter, QRect(0, top, width, height));
        top += height;
    }
}
} // namespace

bool ExportPlots(const QString& fileName, const std::vector<const PlotCanvas*>& plots, QString* error) {
    int width = 0;
    int height = 0;
    for (const PlotCanvas* plot : plots) {
        width = std::max(width, PlotSize(*plot).width());
        height += PlotSize(*plot).height();
    }
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    if (plots.empty() || (suffix != "png" && suffix != "pdf")) {
        if (error)
            *error = plots.empty() ? QObject::tr("There is no plot to export.")
                                   : QObject::tr("%1: plots are exported as .png or .pdf.").arg(fileName);
        return false;
    }
    if (suffix == "png") {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        DrawStacked(painter, plots, width);
        painter.end();
        if (!image.save(fileName, "PNG")) {
            if (error)
                *error = QObject::tr("Could not write %1.").arg(fileName);
            return false;
        }
        return true;
    }
    QPdfWriter writer(fileName);
    writer.setResolution(kPdfResolution);
    writer.setPageSize(
        QPageSize(QSizeF(width * 72.0 / kPdfResolution, height * 72.0 / kPdfResolution), QPageSize::Point));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setCreator(QStringLiteral("VEXA Studio"));
    QPainter painter;
    if (!painter.begin(&writer)) {
        if (error)
            *error = QObject::tr("Could not write %1.").arg(fileName);
        return false;
    }
    DrawStacked(painter, plots, width);
    painter.end();
    return true;
}
