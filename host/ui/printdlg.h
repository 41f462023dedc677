// SPDX-License-Identifier: Apache-2.0
#pragma once
// Chooses where a document is printed: one of the desktop's printers, or a PDF file (the PDF printer
// of pdfprinter.h). OK sets the printer up; Cancel leaves it as it was. A test answers it through the
// prompt like any other dialog (ScriptedPrompt::QueueDialog), choosing "PDF file" and a file name.
#include "dialog.h"

#include <cstdint>

class QPrinter;

class CPrintDialog : public CDialog_ {
    Q_OBJECT
public:
    // Flag bits the callers pass (the suite's print dialog flags). This dialog offers no page range or
    // selection, and never a "print to file" box, so only the copies setting depends on them.
    static constexpr uint32_t kNoPageNums = 0x8;
    static constexpr uint32_t kNoSelection = 0x4;
    static constexpr uint32_t kHidePrintToFile = 0x100000;
    static constexpr uint32_t kUseDevModeCopies = 0x40000;

    CPrintDialog(QPrinter& printer, uint32_t flags, QWidget* parent = nullptr);

    // The text of the destination box's PDF entry.
    static QString PdfDestination();

protected:
    bool OnInitDialog() override;
    void OnOK() override;

private:
    void DestinationChanged();

    QPrinter& m_printer;
    uint32_t m_flags;
};
