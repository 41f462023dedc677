// SPDX-License-Identifier: Apache-2.0
#include "tunereportprinter.h"

#include "printfonts.h"

#include <QFontMetrics>
#include <QPainter>
#include <QPrinter>

#include <algorithm>

namespace {

void DrawHeading(QPainter& painter, const QRect& edges, const QString& heading) {
    painter.setFont(PrintHeadingFont());
    const QFontMetrics metrics = painter.fontMetrics();
    const int width = metrics.horizontalAdvance(heading);
    const int x = std::max(edges.left(), edges.left() + edges.width() / 2 - width / 2);
    // Qt draws text on its baseline; the suite placed the top of the text at the edge.
    painter.drawText(x, edges.top() + metrics.ascent(), heading);
}

void DrawPage(QPainter& painter, const QRect& edges, const QString& heading, int page, int linesPerPage,
              const std::vector<std::wstring>& lines) {
    DrawHeading(painter, edges, heading);
    painter.setFont(PrintBodyFont());
    const int ascent = painter.fontMetrics().ascent();
    const int lineHeight = edges.height() / linesPerPage;
    const auto [first, end] = TuneReportPrinter::PageLines(page, linesPerPage, int(lines.size()));
    int y = edges.top() + 2 * lineHeight;
    for (int i = first; i < end; ++i, y += lineHeight) {
        if (i < int(lines.size()))
            painter.drawText(edges.left(), y + ascent, QString::fromStdWString(lines[size_t(i)]));
    }
}

} // namespace

int TuneReportPrinter::PageCount(int lineCount, int linesPerPage) {
    if (linesPerPage <= 0)
        return 1;
    return std::max(1, (lineCount + linesPerPage - 1) / linesPerPage);
}

std::pair<int, int> TuneReportPrinter::PageLines(int page, int linesPerPage, int lineCount) {
    const int first = (page - 1) * linesPerPage;
    int end = page * linesPerPage;
    if (end > lineCount)
        end = (page - 1) * linesPerPage + lineCount % linesPerPage + (page > 1 ? 1 : 0);
    return {first, end};
}

bool TuneReportPrinter::Print(QPrinter& printer, const Margin& margin, const std::wstring& heading,
                              const std::vector<std::wstring>& lines) {
    printer.setDocName(QStringLiteral("Tune Report"));
    QPainter painter;
    if (!painter.begin(&printer))
        return false;
    const int linesPerPage = GetLinesPerPage(printer, margin);
    const int pages = PageCount(int(lines.size()), linesPerPage);
    printer.setFromTo(1, pages);
    const QRect edges = MarginEdges(printer, margin);
    const QString title = QString::fromStdWString(heading);
    for (int page = 1; page <= pages; ++page) {
        DrawPage(painter, edges, title, page, linesPerPage, lines);
        if (page < pages && !printer.newPage()) {
            printer.abort();
            painter.end();
            return false;
        }
    }
    return painter.end();
}
