// SPDX-License-Identifier: Apache-2.0
#pragma once
// Reading printed PDF files back with poppler's tools: the page count, the text of a page, and where a
// word was drawn (in points from the page's top left corner).
#include <optional>
#include <string>

int PdfPageCount(const std::string& pdf);
// The text of one page (from 1), or of every page when page is 0.
std::string PdfText(const std::string& pdf, int page = 0);

struct PdfWordBox {
    double xMin = 0;
    double yMin = 0;
};
// The box of the first occurrence of `word` on page 1.
std::optional<PdfWordBox> PdfFindWord(const std::string& pdf, const std::string& word);
