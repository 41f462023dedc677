// SPDX-License-Identifier: Apache-2.0
#pragma once
// Prints the lines of a tune report: a centred 14-point heading at the top edge of every page and the
// lines in the 8-point body font below it, L lines a page (GetLinesPerPage), inside the margins.
// The page arithmetic is kept exactly as the suite has always printed these reports, including the
// empty slot after the last line on a later last page.
#include "margin.h"

#include <string>
#include <utility>
#include <vector>

class QPrinter;

class TuneReportPrinter {
public:
    // ceil(lineCount / linesPerPage), at least 1.
    static int PageCount(int lineCount, int linesPerPage);
    // The [first, end) line indexes of page n (from 1). End may lie past the last line.
    static std::pair<int, int> PageLines(int page, int linesPerPage, int lineCount);

    // Prints every page on a printer already set up (by the print dialog or as a PDF printer). False
    // when the job could not start or a page could not be ended (the job is then aborted).
    static bool Print(QPrinter& printer, const Margin& margin, const std::wstring& heading,
                      const std::vector<std::wstring>& lines);
};
