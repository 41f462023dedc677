// SPDX-License-Identifier: Apache-2.0
#include "datareviewwindow.h"

#include "chromatogramview.h"
#include "datafilecopy.h"
#include "plotexport.h"
#include "prompt.h"
#include "remotename.h"
#include "runreviewpage.h"
#include "sensorinfo.h"
#include "sensorobject.h"
#include "spectrumsearchlauncher.h"
#include "spectrumview.h"
#include "vexadatafile.h"
#include "vexaexport.h"
#include "vexarun.h"

#include <QAction>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenu>
#include <QSaveFile>
#include <QToolButton>

#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>
#include <algorithm>

namespace {
// The sensor's folder kind for data files, and the selection dialog's "Cancel" result flag.
constexpr int kFolderKindData = 4;
constexpr uint32_t kSelectReturnCancel = 0x40;
const std::wstring kCancelled = L"Cancel";
constexpr double kDefaultTolerance = 0.5;

bool SaveText(const QString& fileName, const std::string& text, QString* error) {
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(text.data(), static_cast<qint64>(text.size())) != static_cast<qint64>(text.size()) ||
        !file.commit()) {
        if (error)
            *error = QCoreApplication::translate("DataReview", "Could not write %1: %2.")
                         .arg(fileName, file.errorString());
        return false;
    }
    return true;
}
} // namespace

DataReviewWindow::DataReviewWindow(ISensorInfo* sensorType, QWidget* parent)
    : QMainWindow(parent), m_sensorType(sensorType), m_tabs(new QTabWidget(this)) {
    setWindowTitle(tr("Data Review"));
    setObjectName("dataReview");
    m_tabs->setTabsClosable(true);
    m_tabs->setDocumentMode(true);
    setCentralWidget(m_tabs);
    connect(m_tabs, &QTabWidget::tabCloseRequested, this, [this](int index) {
        QWidget* page = m_tabs->widget(index);
        m_tabs->removeTab(index);
        delete page;
        UpdateActions();
    });
    connect(m_tabs, &QTabWidget::currentChanged, this, [this] { UpdateActions(); });
    BuildActions();
    UpdateActions();
    resize(1200, 820);
}

DataReviewWindow::~DataReviewWindow() = default;

void DataReviewWindow::BuildActions() {
    QToolBar* bar = addToolBar(tr("Data Review"));
    bar->setObjectName("dataReviewTools");
    bar->setMovable(false);
    QAction* open = bar->addAction(tr("&Open..."), this, &DataReviewWindow::ChooseAndOpenFile);
    open->setShortcut(QKeySequence::Open);
    bar->addSeparator();
    QAction* reset = bar->addAction(tr("Show &all"), this, [this] {
        if (RunReviewPage* page = CurrentPage()) {
            page->Chromatogram()->ResetView();
            page->Spectrum()->ResetView();
        }
    });
    reset->setToolTip(tr("Zoom out to the whole run and the whole mass range (Home)"));
    bar->addSeparator();
    auto* exports = new QMenu(this);
    exports->addAction(tr("Chromatogram as &CSV..."), this, [this] {
        AskAndExport(tr("Export the chromatogram"), "csv", tr("CSV (*.csv)"),
                     &DataReviewWindow::ExportChromatogramCsv);
    });
    exports->addAction(tr("&Spectrum as CSV..."), this, [this] {
        AskAndExport(tr("Export the spectrum"), "csv", tr("CSV (*.csv)"),
                     &DataReviewWindow::ExportSpectrumCsv);
    });
    exports->addAction(tr("Spectrum as &MSP..."), this, [this] {
        AskAndExport(tr("Export the spectrum"), "msp", tr("MSP spectrum (*.msp)"),
                     &DataReviewWindow::ExportSpectrumMsp);
    });
    exports->addAction(tr("Run as &ANDI-MS..."), this, [this] {
        AskAndExport(tr("Export the run"), "cdf", tr("ANDI-MS (*.cdf)"), &DataReviewWindow::ExportAndi);
    });
    exports->addAction(tr("&Picture (PNG or PDF)..."), this, [this] {
        AskAndExport(tr("Save picture"), "png", tr("PNG image (*.png);;PDF document (*.pdf)"),
                     &DataReviewWindow::ExportImage);
    });
    m_export = bar->addAction(tr("&Export"));
    m_export->setMenu(exports);
    if (auto* button = qobject_cast<QToolButton*>(bar->widgetForAction(m_export)))
        button->setPopupMode(QToolButton::InstantPopup);
    m_search = bar->addAction(tr("NIST (F8)"), this, [this] {
        QString error;
        if (SearchShownSpectrum(&error).isEmpty())
            Refuse(error);
    });
    m_search->setShortcut(Qt::Key_F8);
    m_search->setToolTip(tr("Hand the spectrum shown to the library search program"));
    bar->addSeparator();
    m_editMethod =
        bar->addAction(tr("Edit the &method of this run"), this, &DataReviewWindow::EditMethodOfCurrentFile);
}

void DataReviewWindow::UpdateActions() {
    RunReviewPage* page = CurrentPage();
    m_export->setEnabled(page != nullptr);
    m_search->setEnabled(page && page->Run().HasSpectra());
    m_editMethod->setEnabled(page && m_sensorType && !page->Run().Parameter(L"SENSOR").empty());
}

void DataReviewWindow::SetSensor(ISensorObject* sensor) {
    m_sensor = SensorRef<>::Share(sensor);
}

int DataReviewWindow::PageCount() const {
    return m_tabs->count();
}

RunReviewPage* DataReviewWindow::Page(int index) const {
    return qobject_cast<RunReviewPage*>(m_tabs->widget(index));
}

RunReviewPage* DataReviewWindow::CurrentPage() const {
    return qobject_cast<RunReviewPage*>(m_tabs->currentWidget());
}

void DataReviewWindow::Refuse(const QString& reason) {
    m_lastError = reason;
    statusBar()->showMessage(reason);
    Prompt().Message(reason.toStdWString(), tr("Data Review").toStdWString(), PromptIcon::Warning, this);
}

bool DataReviewWindow::OpenFile(const std::wstring& name) {
    for (int i = 0; i < PageCount(); ++i) {
        if (Page(i)->SourceName() == name) {
            m_tabs->setCurrentIndex(i);
            return true;
        }
    }
    std::wstring local = name;
    if (IsRemoteFilename(name)) {
        if (!m_sensor) {
            Refuse(tr("%1 is on an instrument: choose the instrument first.")
                       .arg(QString::fromStdWString(name)));
            return false;
        }
        QString error;
        local = CopyToSensorDataFolder(name, *m_sensor, this, &error);
        if (local.empty()) {
            if (!error.isEmpty())
                Refuse(error);
            return false;
        }
    }
    VexaRun run;
    std::string reason;
    if (!VexaDataFile::LoadRun(local, &run, &reason)) {
        Refuse(tr("%1 cannot be reviewed: %2")
                   .arg(QString::fromStdWString(name), QString::fromStdString(reason)));
        return false;
    }
    auto* page = new RunReviewPage(local, name, std::move(run));
    const int index = m_tabs->addTab(page, QString::fromStdWString(LastPathPart(name)));
    m_tabs->setTabToolTip(index, QString::fromStdWString(name));
    m_tabs->setCurrentIndex(index);
    page->Chromatogram()->setFocus();
    m_lastError.clear();
    statusBar()->showMessage(tr("Opened %1.").arg(QString::fromStdWString(name)));
    return true;
}

void DataReviewWindow::ChooseAndOpenFile() {
    if (!m_sensor) {
        Refuse(tr("Choose an instrument in the studio first: its file selection opens the data files."));
        return;
    }
    const std::wstring chosen = m_sensor->SelectFileForKind(kFolderKindData, L"", kSelectReturnCancel,
                                                            tr("Data Review").toStdWString());
    if (chosen.empty() || chosen == kCancelled)
        return;
    OpenFile(chosen);
}

bool DataReviewWindow::ExportImage(const QString& fileName, QString* error) const {
    RunReviewPage* page = CurrentPage();
    if (!page) {
        if (error)
            *error = tr("No data file is open.");
        return false;
    }
    return ExportPlots(fileName, {page->Chromatogram(), page->Spectrum()}, error);
}

QString DataReviewWindow::AskSaveName(const QString& title, const QString& suffix, const QString& filter) {
    RunReviewPage* page = CurrentPage();
    const QFileInfo source(QString::fromStdWString(page->FileName()));
    const QString start = source.absoluteDir().filePath(source.completeBaseName() + '.' + suffix);
    return QFileDialog::getSaveFileName(this, title, start, filter);
}

void DataReviewWindow::AskAndExport(const QString& title, const QString& suffix, const QString& filter,
                                    Export write) {
    if (!CurrentPage())
        return;
    const QString file = AskSaveName(title, suffix, filter);
    if (file.isEmpty())
        return;
    QString error;
    if (!(this->*write)(file, &error))
        Refuse(error);
    else
        statusBar()->showMessage(tr("Saved %1.").arg(file));
}

RunReviewPage* DataReviewWindow::PageWithSpectrum(QString* error) const {
    RunReviewPage* page = CurrentPage();
    if (page && page->ShownScans())
        return page;
    if (error)
        *error = !page ? tr("No data file is open.")
                 : page->Run().HasSpectra()
                     ? tr("Click a scan or drag across a range of the chromatogram first.")
                     : tr("This file holds no spectra.");
    return nullptr;
}

bool DataReviewWindow::ExportChromatogramCsv(const QString& fileName, QString* error) const {
    RunReviewPage* page = CurrentPage();
    if (!page || !page->Run().HasSpectra()) {
        if (error)
            *error = page ? tr("This file holds no chromatogram.") : tr("No data file is open.");
        return false;
    }
    std::vector<double> masses;
    double tolerance = kDefaultTolerance;
    for (const RunReviewPage::IonTrace& trace : page->IonTraces()) {
        for (double mass : trace.masses) {
            if (std::find(masses.begin(), masses.end(), mass) == masses.end())
                masses.push_back(mass);
        }
        tolerance = trace.tolerance;
    }
    return SaveText(fileName, VexaExport::ChromatogramCsv(page->Run(), masses, tolerance), error);
}

bool DataReviewWindow::ExportSpectrumCsv(const QString& fileName, QString* error) const {
    RunReviewPage* page = PageWithSpectrum(error);
    return page && SaveText(fileName, VexaExport::SpectrumCsv(page->ShownSpectrum()), error);
}

bool DataReviewWindow::ExportSpectrumMsp(const QString& fileName, QString* error) const {
    RunReviewPage* page = PageWithSpectrum(error);
    return page && SaveText(fileName, VexaExport::MakeMsp(page->ShownSpectrum(), page->ShownOrigin()), error);
}

bool DataReviewWindow::ExportAndi(const QString& fileName, QString* error) const {
    RunReviewPage* page = CurrentPage();
    if (!page || !page->Run().HasSpectra()) {
        if (error)
            *error = page ? tr("This file holds no spectra to export.") : tr("No data file is open.");
        return false;
    }
    std::string reason;
    if (!VexaExport::WriteAndi(page->Run(), fileName.toStdString(), &reason)) {
        if (error)
            *error = tr("Could not write %1: %2.").arg(fileName, QString::fromStdString(reason));
        return false;
    }
    return true;
}

QString DataReviewWindow::SearchShownSpectrum(QString* error) {
    RunReviewPage* page = PageWithSpectrum(error);
    if (!page)
        return {};
    const QDir folder(QDir::temp().filePath(QStringLiteral("vexa-studio-spectra")));
    if (!folder.mkpath(".")) {
        if (error)
            *error = tr("Could not make the folder %1.").arg(folder.path());
        return {};
    }
    const auto [first, last] = *page->ShownScans();
    const QString base = QFileInfo(QString::fromStdWString(page->FileName())).completeBaseName();
    QString name = QStringLiteral("%1-scan%2").arg(base).arg(first + 1);
    if (last != first)
        name += QStringLiteral("-%1").arg(last + 1);
    if (page->SubtractsBackground())
        name += QStringLiteral("-bg");
    const QString file = folder.filePath(name + ".msp");
    if (!ExportSpectrumMsp(file, error) || !SpectrumSearchLauncher::Start(file, error))
        return {};
    statusBar()->showMessage(tr("Handed %1 to the library search program.").arg(file));
    return file;
}

void DataReviewWindow::EditMethodOfCurrentFile() {
    RunReviewPage* page = CurrentPage();
    if (!page || !m_sensorType)
        return;
    m_sensorType->EditMethodOfFile(page->FileName());
}
