// SPDX-License-Identifier: Apache-2.0
#include "pdfprinter.h"

#include <QPageLayout>
#include <QPageSize>
#include <QPrinter>

void SetUpPdfPrinter(QPrinter& printer, const QString& fileName) {
    printer.setOutputFormat(QPrinter::PdfFormat);
    printer.setOutputFileName(fileName);
    printer.setResolution(300);
    printer.setFullPage(true);
    printer.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                      QMarginsF(0, 0, 0, 0), QPageLayout::Inch));
}
