// SPDX-License-Identifier: Apache-2.0
#include "printdlg.h"

#include "pdfprinter.h"
#include "ui_printdlg.h"

#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSpinBox>

CPrintDialog::CPrintDialog(QPrinter& printer, uint32_t flags, QWidget* parent)
    : CDialog_(IDD_PX_PRINT, parent), m_printer(printer), m_flags(flags) {
    Ui::PrintDlg form;
    SetupTemplate(form);
    if (auto* destination = qobject_cast<QComboBox*>(GetDlgItem(IDC_PX_PRINT_DESTINATION)))
        connect(destination, &QComboBox::currentIndexChanged, this, &CPrintDialog::DestinationChanged);
}

QString CPrintDialog::PdfDestination() {
    return QStringLiteral("PDF file");
}

bool CPrintDialog::OnInitDialog() {
    CDialog_::OnInitDialog();
    auto* destination = qobject_cast<QComboBox*>(GetDlgItem(IDC_PX_PRINT_DESTINATION));
    if (destination) {
        const QString defaultPrinter = QPrinterInfo::defaultPrinterName();
        for (const QString& name : QPrinterInfo::availablePrinterNames())
            destination->addItem(name);
        destination->addItem(PdfDestination());
        const int preferred = defaultPrinter.isEmpty() ? -1 : destination->findText(defaultPrinter);
        destination->setCurrentIndex(preferred >= 0 ? preferred : destination->count() - 1);
    }
    if (auto* file = qobject_cast<QLineEdit*>(GetDlgItem(IDC_PX_PRINT_FILE));
        file && file->text().isEmpty()) {
        const QString suggested = m_printer.outputFileName();
        file->setText(suggested.isEmpty() ? QDir::home().filePath(m_printer.docName().isEmpty()
                                                                      ? QStringLiteral("print.pdf")
                                                                      : m_printer.docName() + ".pdf")
                                          : suggested);
    }
    // Without device copies the printer has no copies setting to offer.
    EnableControl(IDC_PX_PRINT_COPIES, (m_flags & kUseDevModeCopies) != 0);
    DestinationChanged();
    return true;
}

void CPrintDialog::DestinationChanged() {
    EnableControl(IDC_PX_PRINT_FILE,
                  GetDlgItemText(IDC_PX_PRINT_DESTINATION) == PdfDestination().toStdWString());
}

void CPrintDialog::OnOK() {
    const QString destination = QString::fromStdWString(GetDlgItemText(IDC_PX_PRINT_DESTINATION));
    if (destination == PdfDestination()) {
        const QString file = QString::fromStdWString(GetDlgItemText(IDC_PX_PRINT_FILE)).trimmed();
        if (file.isEmpty()) {
            ShowMessage(L"Enter the name of the PDF file to print to.", {}, PromptIcon::Warning);
            return;
        }
        SetUpPdfPrinter(m_printer, file);
    } else {
        m_printer.setOutputFormat(QPrinter::NativeFormat);
        m_printer.setPrinterName(destination);
    }
    if (auto* copies = qobject_cast<QSpinBox*>(GetDlgItem(IDC_PX_PRINT_COPIES));
        copies && copies->isEnabled())
        m_printer.setCopyCount(copies->value());
    CDialog_::OnOK();
}
