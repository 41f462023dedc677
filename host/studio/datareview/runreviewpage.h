// SPDX-License-Identifier: Apache-2.0
#pragma once
// One data file in Data Review: its chromatogram (the TIC and the extracted-ion traces the operator
// adds), the spectrum of the picked scan or averaged over the selected range, optionally minus the
// background range, and the file's facts beside them. A version-1 file shows its facts only.
#include "plotrange.h"
#include "vexaexport.h"
#include "vexarun.h"
#include "vexaspectrum.h"

#include <QString>
#include <QWidget>

#include <optional>
#include <string>
#include <utility>
#include <vector>

class ChromatogramView;
class QCheckBox;
class QDoubleSpinBox;
class QFormLayout;
class QLineEdit;
class QListWidget;
class QPushButton;
class SpectrumView;

class RunReviewPage : public QWidget {
    Q_OBJECT
public:
    // `fileName` is the file read (a local copy of a remote one); `sourceName` what the operator chose.
    RunReviewPage(std::wstring fileName, std::wstring sourceName, VexaRun run, QWidget* parent = nullptr);

    const VexaRun& Run() const { return m_run; }
    const std::wstring& FileName() const { return m_fileName; }
    const std::wstring& SourceName() const { return m_sourceName; }
    ChromatogramView* Chromatogram() const { return m_chromatogram; }
    SpectrumView* Spectrum() const { return m_spectrum; }

    // The facts shown beside the plots, label and value, in order.
    const std::vector<std::pair<QString, QString>>& Facts() const { return m_facts; }

    // Adds one trace for the m/z listed in `text` ("91" or "91, 105": one trace summing both) within
    // ±tolerance. False with the reason for text that names no m/z in the run's range.
    bool AddExtractedIons(const QString& text, double tolerance, QString* error);
    // Trace `index` of the chromatogram (0 is the TIC, which stays).
    void RemoveTrace(int index);
    struct IonTrace {
        std::vector<double> masses;
        double tolerance = 0;
    };
    // The extracted-ion traces, in the chromatogram's order after the TIC.
    const std::vector<IonTrace>& IonTraces() const { return m_ionTraces; }

    // The spectrum of the scan nearest `seconds`, or averaged over the scans of a range.
    void ShowScanAt(double seconds);
    void ShowRange(double fromSeconds, double toSeconds);
    // The background range (seconds), and whether the spectrum shown has it subtracted.
    void SetBackground(std::optional<PlotRange> range);
    void SetSubtractBackground(bool subtract);

    // The spectrum shown (after any subtraction) and what it is, in words.
    const VexaSpectrum& ShownSpectrum() const { return m_shown; }
    QString SpectrumTitle() const;
    // The scans the shown spectrum covers, and the background's (first and last, 0-based).
    std::optional<std::pair<size_t, size_t>> ShownScans() const { return m_scans; }
    std::optional<std::pair<size_t, size_t>> BackgroundScans() const;
    bool SubtractsBackground() const;
    // Where the shown spectrum comes from, as an MSP record says it.
    VexaExport::SpectrumOrigin ShownOrigin() const;

signals:
    // The spectrum shown changed (a pick, a range, the background).
    void SpectrumChanged();

private:
    QWidget* BuildSidePanel();
    void FillFacts(QFormLayout* form);
    void AddTicTrace();
    void UpdateSpectrum();

    std::wstring m_fileName;
    std::wstring m_sourceName;
    VexaRun m_run;
    std::vector<std::pair<QString, QString>> m_facts;
    std::vector<double> m_times; // seconds per scan, shared by every trace
    std::vector<IonTrace> m_ionTraces;

    ChromatogramView* m_chromatogram = nullptr;
    SpectrumView* m_spectrum = nullptr;
    QLineEdit* m_ionEdit = nullptr;
    QDoubleSpinBox* m_tolerance = nullptr;
    QPushButton* m_addIons = nullptr;
    QListWidget* m_traceList = nullptr;
    QCheckBox* m_normalise = nullptr;
    QCheckBox* m_subtract = nullptr;

    std::optional<std::pair<size_t, size_t>> m_scans;
    std::optional<std::pair<size_t, size_t>> m_backgroundScans;
    VexaSpectrum m_shown;
};
