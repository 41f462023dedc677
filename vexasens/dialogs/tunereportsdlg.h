// SPDX-License-Identifier: Apache-2.0
#pragma once
// The report history of one tune file: every tune of the instrument appends a report to the report file
// in the "Reports" folder beside the tune file. The dialog lists the reports by local date and time,
// shows the selected one, prints it, saves it as text, saves its tune settings as a tune file, and
// removes one report or every report older than a number of days (access level 1). Removals are saved
// at once. UI thread only.
#include "dialog.h"
#include "vexatunereport.h"

#include <cstdint>
#include <string>
#include <vector>

class ISensorObject;
class QListWidget;
class QPrinter;
struct Margin;

class CTuneReportsDlg : public CDialog_ {
    Q_OBJECT
public:
    CTuneReportsDlg(ISensorObject* sensor, const std::wstring& tuneFile, QWidget* parent = nullptr);
    ~CTuneReportsDlg() override;

    const std::wstring& TuneFileName() const { return m_tuneFile; }
    const std::wstring& ReportFileName() const { return m_reportFile; }
    bool IsReportOpen() const { return m_reportOpen; }
    const VexaTuneReport& Report() const { return m_report; }
    // The lines of the report shown.
    const std::vector<std::wstring>& ReportLines() const { return m_lines; }

    // The print margins from the settings (section "Tune"), with their defaults.
    static Margin ReadMargin();
    // The cut-off of Remove old reports for a time (seconds since 1970) and an age in days, in
    // microseconds: reports older than it go.
    static int64_t RemoveCutoff(int32_t now, int days);

protected:
    void DoDataExchange(CDataExchange& dx) override;
    bool OnInitDialog() override;
    void OnOK() override;
    void OnCommand(int id) override;
    void done(int code) override;

    // Asks where to save the report as text; empty when cancelled. Tests answer it without a window.
    virtual std::wstring ChooseTextFile(const std::wstring& defaultName);
    // Sets a printer up for the report; false when the operator cancels.
    virtual bool ChoosePrinter(QPrinter& printer);

private:
    void SetFixedPitchFont();
    void OpenReport();
    bool SaveReport();
    void FillList();
    void ShowSelected();
    int SelectedReport() const;
    void RemoveSelectedReport();
    void RemoveOldReports();
    void SaveAsText();
    void SaveTuneFile();
    void Print();
    void CloseReport();

    ISensorObject* m_sensor;
    std::wstring m_tuneFile;
    std::wstring m_reportFile;
    VexaTuneReport m_report;
    bool m_reportOpen = false;
    std::vector<std::wstring> m_lines;
    std::wstring m_text;
    std::wstring m_label;
    int m_days = 30;
    QListWidget* m_list = nullptr;
};
