// SPDX-License-Identifier: Apache-2.0
#pragma once
// A printer that writes a PDF file: US Letter, 300 dpi, the whole sheet addressable (margins are the
// caller's, see margin.h). Printing to it needs no print system, so reports can be checked page by page.
#include <QString>

class QPrinter;

void SetUpPdfPrinter(QPrinter& printer, const QString& fileName);
