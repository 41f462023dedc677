// SPDX-License-Identifier: Apache-2.0
// Printing tune reports: the margins, the page arithmetic, and real pages printed to PDF and read back.
#include "hostresource.h"
#include "margin.h"
#include "pdfpages.h"
#include "pdfprinter.h"
#include "printdlg.h"
#include "scriptedprompt.h"
#include "tempdir.h"
#include "tunereportprinter.h"

#include <QComboBox>
#include <QPrinter>
#include <gtest/gtest.h>

namespace {

std::vector<std::wstring> NumberedLines(int count) {
    std::vector<std::wstring> lines;
    for (int i = 1; i <= count; ++i)
        lines.push_back(L"line" + std::to_wstring(i) + L" of the report");
    return lines;
}

int LinesPerPdfPage(const Margin& margin, const std::string& file) {
    QPrinter printer(QPrinter::HighResolution);
    SetUpPdfPrinter(printer, QString::fromStdString(file));
    return GetLinesPerPage(printer, margin);
}

} // namespace

TEST(PrintMargins, EdgesFollowTheUnitAndTheEdgeAlreadyFound) {
    // US Letter at 300 dpi: 2550 x 3300 pixels, 215.9 x 279.4 mm.
    const QRect page(0, 0, 2550, 3300);
    struct Case {
        Margin margin;
        int left, top, right, bottom;
    };
    const Case cases[] = {
        {{1.0f, 1.0f, 1.25f, 1.25f, 0}, 375, 300, 2230, 3027},
        {{1.0f, 1.0f, 1.25f, 1.25f, 1}, 147, 118, 2410, 3186},
        {{1.0f, 1.0f, 1.25f, 1.25f, 7}, 147, 118, 2410, 3186}, // any unit but 0 is centimetres
        {{0.0f, 0.0f, 0.0f, 0.0f, 0}, 0, 0, 2550, 3300},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.margin.unit);
        const QRect edges = MarginEdges(page, 215.9, 279.4, c.margin);
        EXPECT_EQ(edges.left(), c.left);
        EXPECT_EQ(edges.top(), c.top);
        EXPECT_EQ(edges.left() + edges.width(), c.right);
        EXPECT_EQ(edges.top() + edges.height(), c.bottom);
    }
}

TEST(TuneReportPages, PageArithmeticKeepsTheSlotAfterTheLastLine) {
    struct Case {
        int lines, perPage, page, first, end;
    };
    const Case cases[] = {
        {0, 10, 1, 0, 0},    {5, 10, 1, 0, 5},    {10, 10, 1, 0, 10},  {11, 10, 1, 0, 10},
        {11, 10, 2, 10, 12}, {25, 10, 3, 20, 26}, {20, 10, 2, 10, 20}, {1, 1, 1, 0, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.lines) + " lines, page " + std::to_string(c.page));
        const auto [first, end] = TuneReportPrinter::PageLines(c.page, c.perPage, c.lines);
        EXPECT_EQ(first, c.first);
        EXPECT_EQ(end, c.end);
    }
    EXPECT_EQ(TuneReportPrinter::PageCount(0, 10), 1);
    EXPECT_EQ(TuneReportPrinter::PageCount(10, 10), 1);
    EXPECT_EQ(TuneReportPrinter::PageCount(11, 10), 2);
    EXPECT_EQ(TuneReportPrinter::PageCount(30, 10), 3);
}

TEST(TuneReportPages, ExactlyAPageOfLinesPrintsOnePageAndOneMoreTwo) {
    TempDir temp;
    const Margin margin;
    const int perPage = LinesPerPdfPage(margin, temp.file("probe.pdf"));
    ASSERT_GT(perPage, 20); // 8-point lines on a Letter page inside 1-inch margins
    ASSERT_LT(perPage, 200);
    for (int extra : {0, 1}) {
        SCOPED_TRACE(extra);
        const std::string file = temp.file("report" + std::to_string(extra) + ".pdf");
        QPrinter printer(QPrinter::HighResolution);
        SetUpPdfPrinter(printer, QString::fromStdString(file));
        ASSERT_TRUE(
            TuneReportPrinter::Print(printer, margin, L"Studio Tune", NumberedLines(perPage + extra)));
        EXPECT_EQ(PdfPageCount(file), 1 + extra);
        const std::string first = PdfText(file, 1);
        EXPECT_NE(first.find("Studio Tune"), std::string::npos);
        EXPECT_NE(first.find("line1 of the report"), std::string::npos);
        EXPECT_NE(first.find("line" + std::to_string(perPage) + " of"), std::string::npos);
        if (extra == 1) {
            const std::string second = PdfText(file, 2);
            EXPECT_NE(second.find("Studio Tune"), std::string::npos); // every page has the heading
            EXPECT_NE(second.find("line" + std::to_string(perPage + 1) + " of"), std::string::npos);
            EXPECT_EQ(first.find("line" + std::to_string(perPage + 1) + " of"), std::string::npos);
        }
    }
}

TEST(TuneReportPages, MarginsInInchesAndCentimetresMoveTheText) {
    TempDir temp;
    struct Case {
        Margin margin;
        double left, top; // points from the sheet's corner
    };
    const Case cases[] = {
        {{1.0f, 1.0f, 1.25f, 1.25f, 0}, 90.0, 72.0},
        {{1.0f, 1.0f, 1.25f, 1.25f, 1}, 35.4, 28.3},
        {{2.0f, 1.0f, 2.0f, 1.0f, 0}, 144.0, 144.0},
    };
    int index = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(index);
        const std::string file = temp.file("margin" + std::to_string(index++) + ".pdf");
        QPrinter printer(QPrinter::HighResolution);
        SetUpPdfPrinter(printer, QString::fromStdString(file));
        ASSERT_TRUE(TuneReportPrinter::Print(printer, c.margin, L"Heading", {L"Body"}));
        const std::optional<PdfWordBox> heading = PdfFindWord(file, "Heading");
        const std::optional<PdfWordBox> body = PdfFindWord(file, "Body");
        ASSERT_TRUE(heading && body);
        EXPECT_NEAR(body->xMin, c.left, 1.5);
        // The heading's box starts at the top edge (give or take the font's leading); the body two lines
        // further down.
        EXPECT_NEAR(heading->yMin, c.top, 4.0);
        EXPECT_GT(body->yMin, heading->yMin + 12.0);
        EXPECT_GT(heading->xMin, c.left + 100.0); // centred, not at the left edge
    }
}

TEST(PrintDialog, PdfDestinationSetsThePrinterUpAndCancelLeavesIt) {
    ScriptedPrompt prompt;
    const auto choosePdf = [](const std::wstring& file) {
        return [file](CDialog_& dialog) {
            auto* destination = qobject_cast<QComboBox*>(dialog.GetDlgItem(IDC_PX_PRINT_DESTINATION));
            destination->setCurrentIndex(destination->findText(CPrintDialog::PdfDestination()));
            EXPECT_TRUE(dialog.GetDlgItem(IDC_PX_PRINT_FILE)->isEnabled());
            EXPECT_FALSE(dialog.GetDlgItem(IDC_PX_PRINT_COPIES)->isEnabled()); // no device copies asked for
            dialog.SetDlgItemText(IDC_PX_PRINT_FILE, file);
            return IDOK;
        };
    };
    QPrinter printer;
    prompt.QueueDialog([](CDialog_&) { return IDCANCEL; });
    EXPECT_EQ(CPrintDialog(printer, CPrintDialog::kNoPageNums).DoModal(), IDCANCEL);
    EXPECT_TRUE(printer.outputFileName().isEmpty());

    prompt.QueueDialog(choosePdf(L"  "));
    EXPECT_NE(CPrintDialog(printer, 0).DoModal(), IDOK); // no file name: the dialog says so and stays
    EXPECT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message).size(), 1u);
    EXPECT_TRUE(printer.outputFileName().isEmpty());

    prompt.QueueDialog(choosePdf(L"/tmp/out.pdf"));
    EXPECT_EQ(CPrintDialog(printer, 0).DoModal(), IDOK);
    EXPECT_EQ(printer.outputFormat(), QPrinter::PdfFormat);
    EXPECT_EQ(printer.outputFileName(), QStringLiteral("/tmp/out.pdf"));
    EXPECT_EQ(printer.pageLayout().pageSize().id(), QPageSize::Letter);
}
