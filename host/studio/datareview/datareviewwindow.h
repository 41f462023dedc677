// SPDX-License-Identifier: Apache-2.0
#pragma once
// Data Review: data files from the PC or an instrument, one tab each, with their chromatograms,
// spectra and facts (RunReviewPage). A remote file is copied into the sensor's data folder first and
// reviewed from there. The window outlives its tool run: the studio keeps one and brings it forward.
#include "sensorref.h"

#include <QMainWindow>
#include <QString>

#include <string>

class ISensorInfo;
class QAction;
class QTabWidget;
class RunReviewPage;

class DataReviewWindow : public QMainWindow {
    Q_OBJECT
public:
    // `sensorType` handles "Edit the method of this run"; it must outlive the window.
    explicit DataReviewWindow(ISensorInfo* sensorType, QWidget* parent = nullptr);
    ~DataReviewWindow() override;

    // The instrument whose file selection dialog Open uses and whose data folder receives remote files.
    void SetSensor(ISensorObject* sensor);

    // Opens a local or remote file in a new tab (a file already open comes to the front). A file that
    // cannot be read is refused with its reason, shown to the operator and kept in LastError().
    bool OpenFile(const std::wstring& name);
    // Asks for a file through the sensor's file selection dialog and opens it.
    void ChooseAndOpenFile();

    int PageCount() const;
    RunReviewPage* Page(int index) const;
    RunReviewPage* CurrentPage() const;
    const QString& LastError() const { return m_lastError; }

    // The current tab's exports, false with the reason. The chromatogram's CSV has the TIC and a column
    // per m/z of the extracted-ion traces (at the tolerance of the last one added); the spectrum's are
    // the spectrum shown; ANDI-MS holds the whole run; the picture is the plots as shown (.png, .pdf).
    bool ExportChromatogramCsv(const QString& fileName, QString* error) const;
    bool ExportSpectrumCsv(const QString& fileName, QString* error) const;
    bool ExportSpectrumMsp(const QString& fileName, QString* error) const;
    bool ExportAndi(const QString& fileName, QString* error) const;
    bool ExportImage(const QString& fileName, QString* error) const;
    // F8: the spectrum shown, as an MSP file in the temporary folder, handed to the library search
    // program. Returns the file given to it; empty with the reason when nothing was started.
    QString SearchShownSpectrum(QString* error);
    // Hands the current file to the sensor type's method editor.
    void EditMethodOfCurrentFile();

private:
    void BuildActions();
    void UpdateActions();
    void Refuse(const QString& reason);
    using Export = bool (DataReviewWindow::*)(const QString&, QString*) const;
    void AskAndExport(const QString& title, const QString& suffix, const QString& filter, Export write);
    QString AskSaveName(const QString& title, const QString& suffix, const QString& filter);
    // The current page when it shows a spectrum; null with the reason otherwise.
    RunReviewPage* PageWithSpectrum(QString* error) const;

    ISensorInfo* m_sensorType;
    SensorRef<> m_sensor;
    QTabWidget* m_tabs;
    QString m_lastError;
    QAction* m_export = nullptr;
    QAction* m_search = nullptr;
    QAction* m_editMethod = nullptr;
};
