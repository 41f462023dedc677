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
#include "spectrumview.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>

namespace {
// The sensor's folder kind for data files, and the selection dialog's "Cancel" result flag.
constexpr int kFolderKindData = 4;
constexpr uint32_t kSelectReturnCancel = 0x40;
const std::wstring kCancelled = L"Cancel";
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
    m_exportImage = bar->addAction(tr("Save &picture..."), this, &DataReviewWindow::AskAndExportImage);
    m_exportImage->setToolTip(tr("Save the chromatogram and spectrum as shown, as PNG or PDF"));
    bar->addSeparator();
    m_editMethod =
        bar->addAction(tr("Edit the &method of this run"), this, &DataReviewWindow::EditMethodOfCurrentFile);
}

void DataReviewWindow::UpdateActions() {
    RunReviewPage* page = CurrentPage();
    m_exportImage->setEnabled(page != nullptr);
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

void DataReviewWindow::AskAndExportImage() {
    if (!CurrentPage())
        return;
    const QString file =
        AskSaveName(tr("Save picture"), "png", tr("PNG image (*.png);;PDF document (*.pdf)"));
    if (file.isEmpty())
        return;
    QString error;
    if (!ExportImage(file, &error))
        Refuse(error);
    else
        statusBar()->showMessage(tr("Saved %1.").arg(file));
}

void DataReviewWindow::EditMethodOfCurrentFile() {
    RunReviewPage* page = CurrentPage();
    if (!page || !m_sensorType)
        return;
    m_sensorType->EditMethodOfFile(page->FileName());
}
