// SPDX-License-Identifier: Apache-2.0
#include "tunereportsdlg.h"

#include "commsensor.h"
#include "filetext.h"
#include "generatetunereport.h"
#include "margin.h"
#include "printdlg.h"
#include "pxsettings.h"
#include "remotename.h"
#include "resource.h"
#include "sensorobject.h"
#include "stdiofile.h"
#include "systemaccess.h"
#include "timeformat.h"
#include "tunereportprinter.h"
#include "ui_dialog1030.h"
#include "vexadevice.h"
#include "vexatune.h"
#include "winsockerror.h"

#include <QFileDialog>
#include <QGuiApplication>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPrinter>

#include <ctime>

namespace {

constexpr int kDefaultRemoveDays = 30;
constexpr int kTuneKind = 2;
constexpr uint32_t kSaveTuneFlags = 0x21;  // save mode, instrument side when on line
constexpr uint32_t kPrintFlags = 0x14000C; // no page numbers or selection, device copies
constexpr int kManualTuneNumber = 3;
constexpr int64_t kMicrosecondsPerDay = 1000LL * 86400000LL;
const QSize kMinimumSize(560, 380);

// The controls that change something; without access level 1 they are off from the start.
constexpr int kLevelOneControls[] = {IDC_TUNE_REMOVE_REPORT, IDC_TUNE_REMOVE_OLD, IDC_TUNE_DAYS,
                                     IDC_TUNE_SAVE_TUNE, IDC_TUNE_SAVE_TEXT};
// The controls that act on the selected report.
constexpr int kSelectionControls[] = {IDC_TUNE_REMOVE_REPORT, IDC_TUNE_PRINT, IDC_TUNE_SAVE_TUNE,
                                      IDC_TUNE_SAVE_TEXT};

float ReadFloat(CPXSettings& settings, const wchar_t* key, float fallback) {
    const std::wstring text = settings.GetString(L"Tune", key);
    if (text.empty())
        return fallback;
    wchar_t* end = nullptr;
    const float value = std::wcstof(text.c_str(), &end);
    return end != text.c_str() ? value : fallback;
}

// A report file that does not exist yet is no error: the tune file has not been tuned with.
constexpr int kNoSuchFile = 2;

} // namespace

CTuneReportsDlg::CTuneReportsDlg(ISensorObject* sensor, const std::wstring& tuneFile, QWidget* parent)
    : CDialog_(IDD_TUNE_REPORTS, parent), m_sensor(sensor), m_tuneFile(tuneFile) {
    Ui::Dialog1030 form;
    SetupTemplate(form);
    m_list = qobject_cast<QListWidget*>(GetDlgItem(IDC_TUNE_REPORT_LIST));
    if (m_list)
        // After the selection has changed: a click makes the entry current before it selects it.
        connect(m_list, &QListWidget::itemSelectionChanged, this, [this] { ShowSelected(); });
    setMinimumSize(kMinimumSize);
    resize(820, 560);
    setSizeGripEnabled(true);
}

CTuneReportsDlg::~CTuneReportsDlg() = default;

Margin CTuneReportsDlg::ReadMargin() {
    CPXSettings settings;
    Margin margin;
    margin.top = ReadFloat(settings, L"TopMargin", 1.0f);
    margin.bottom = ReadFloat(settings, L"BottomMargin", 1.0f);
    margin.left = ReadFloat(settings, L"LeftMargin", 1.25f);
    margin.right = ReadFloat(settings, L"RightMargin", 1.25f);
    margin.unit = settings.GetInt(L"Tune", L"MarginUnit", 0);
    return margin;
}

int64_t CTuneReportsDlg::RemoveCutoff(int32_t now, int days) {
    double microseconds = double(now) * 1000000.0;
    microseconds += microseconds < 0 ? -0.01 : 0.01;
    return int64_t(microseconds) - int64_t(days) * kMicrosecondsPerDay;
}

void CTuneReportsDlg::DoDataExchange(CDataExchange& dx) {
    CDialog_::DoDataExchange(dx);
    DDX_Text(dx, IDC_TUNE_FILE_LABEL, m_label);
    DDX_Text(dx, IDC_TUNE_DAYS, m_days);
    DDX_Text(dx, IDC_TUNE_REPORT_TEXT, m_text);
}

bool CTuneReportsDlg::OnInitDialog() {
    CDialog_::OnInitDialog();
    SetFixedPitchFont();
    m_days = CPXSettings().GetInt(L"Tune", L"RemoveReportDays", kDefaultRemoveDays);
    std::wstring name;
    ParseFilename(m_tuneFile, nullptr, &name, nullptr);
    m_label = PXFormat(LoadString(IDS_TUNE_FILE_LABEL).c_str(), name.c_str());
    m_reportFile = VexaTuneReport::ReportFileName(m_tuneFile);
    if (m_list)
        m_list->clear();
    m_text.clear();
    m_lines.clear();
    OpenReport();
    if (m_reportOpen)
        FillList();
    if (!CSystemAccess::Accessible(1)) {
        for (int id : kLevelOneControls)
            EnableControl(id, false);
    }
    UpdateData(false);
    return true;
}

void CTuneReportsDlg::SetFixedPitchFont() {
    QWidget* text = GetDlgItem(IDC_TUNE_REPORT_TEXT);
    if (!text)
        return;
    QFont font = text->font();
    font.setFamily(QStringLiteral("Courier"));
    font.setStyleHint(QFont::TypeWriter);
    font.setFixedPitch(true);
    text->setFont(font);
}

void CTuneReportsDlg::FillList() {
    if (!m_list)
        return;
    const QSignalBlocker quiet(m_list);
    const VexaTuneReportSections_& sections = m_report.Sections();
    for (int i = 0; i < sections.GetNumReports(); ++i) {
        const int64_t ms = sections.GetReport(i)->time / 1000;
        const int offset = PXLocalTimeDiff(ms) / 60;
        const std::wstring entry =
            PXFormat(L"%s %s", FormatDate(ms, offset).c_str(), FormatTime(ms, offset).c_str());
        auto* item = new QListWidgetItem(QString::fromStdWString(entry), m_list);
        item->setData(Qt::UserRole, i);
    }
    if (m_list->count() > 0)
        m_list->setCurrentRow(0);
    ShowSelected();
}

int CTuneReportsDlg::SelectedReport() const {
    const QListWidgetItem* item = m_list ? m_list->currentItem() : nullptr;
    if (!item || !item->isSelected())
        return -1;
    return item->data(Qt::UserRole).toInt();
}

void CTuneReportsDlg::ShowSelected() {
    const int report = SelectedReport();
    const bool enable = CSystemAccess::Accessible(1) && report >= 0;
    for (int id : kSelectionControls)
        EnableControl(id, enable);
    if (report < 0 || !m_reportOpen)
        return;
    const VexaTuneReportSections_& sections = m_report.Sections();
    const VexaTuneReportSection* section = sections.GetReport(report);
    if (!section)
        return;
    m_lines = GenerateTuneReport(m_tuneFile, *section, *sections.GetTune(report), true);
    m_text.clear();
    for (const std::wstring& line : m_lines)
        m_text += line + L"\r\n";
    UpdateData(false);
}

void CTuneReportsDlg::RemoveSelectedReport() {
    if (!m_reportOpen || !m_list || !m_list->currentItem() || !m_list->currentItem()->isSelected())
        return;
    const int row = m_list->currentRow();
    m_report.Sections().RemoveReport(SelectedReport());
    if (!SaveReport())
        return;
    const QSignalBlocker quiet(m_list);
    delete m_list->takeItem(row);
    // Entry i now stands for report count - 1 - i: the numbering the suite has always used here.
    const int count = m_list->count();
    for (int i = 0; i < count; ++i)
        m_list->item(i)->setData(Qt::UserRole, count - 1 - i);
    if (count > 0)
        m_list->setCurrentRow(0);
}

void CTuneReportsDlg::RemoveOldReports() {
    if (!UpdateData(true) || !m_reportOpen)
        return;
    const int64_t cutoff = RemoveCutoff(int32_t(std::time(nullptr)), m_days);
    if (AskYesNo(PXFormat(LoadString(IDS_REMOVE_OLD_REPORTS).c_str(), m_days),
                 windowTitle().toStdWString()) != IDYES)
        return;
    VexaTuneReportSections_& sections = m_report.Sections();
    for (int i = 0; i < sections.GetNumReports();) {
        if (sections.GetReport(i)->time < cutoff)
            sections.RemoveReport(i);
        else
            ++i;
    }
    if (!SaveReport())
        return;
    if (m_list)
        m_list->clear();
    m_text.clear();
    m_lines.clear();
    UpdateData(false);
    FillList();
}

void CTuneReportsDlg::SaveAsText() {
    std::wstring name;
    ParseFilename(m_reportFile, nullptr, &name, nullptr);
    if (name.size() >= 4)
        name.resize(name.size() - 4);
    const std::wstring chosen = ChooseTextFile(PXFormat(L"%s.txt", name.c_str()));
    if (chosen.empty())
        return;
    StdioFile file;
    const bool written = file.Open(chosen, L"w") && file.WriteString(m_text) >= 0 && file.Close();
    if (!written)
        ShowMessage(
            FormatString(IDS_TUNE_TEXT_SAVE_FAILED, chosen.c_str(), DescribeError(file.GetError()).c_str()),
            {}, PromptIcon::Error);
}

void CTuneReportsDlg::SaveTuneFile() {
    const int report = SelectedReport();
    if (report < 0 || !m_reportOpen || !m_sensor) {
        UpdateData(true);
        return;
    }
    const std::wstring name =
        m_sensor->SelectFile(kTuneKind, m_tuneFile, kSaveTuneFlags, LoadString(IDS_SAVE_TUNE_FILE),
                             LoadString(IDS_FILTER_TUNE), L"tun");
    if (name.empty() || name == L"Cancel")
        return;
    VexaTune tune;
    tune.GetTuneSection() = *m_report.Sections().GetTune(report);
    if (!tune.Save(name)) {
        ShowMessage(FormatString(IDS_TUNE_FILE_SAVE_FAILED, tune.GetLastErrorText().c_str()), {},
                    PromptIcon::Error);
        return;
    }
    std::wstring folder;
    ParseFilename(name, &folder, nullptr, nullptr);
    // An instrument off line is not asked, and a link that closes while asking is no refusal: only an
    // instrument that answered no is reported.
    const IChannel* channel = m_sensor->GetChannel();
    if (folder.empty() || !m_sensor->HasDevice(L"VEXA") || !channel || !channel->IsOpen())
        return;
    VexaDevice device(m_sensor->GetDevice(L"VEXA"));
    if (!device.setManualTuneFile(kManualTuneNumber, name) && device.getLastError() != kWsaNotConn)
        ShowMessage(
            FormatString(IDS_TUNE_MANUAL_FAILED, name.c_str(), DescribeError(device.getLastError()).c_str()),
            {}, PromptIcon::Warning);
}

void CTuneReportsDlg::Print() {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(QStringLiteral("Tune Report"));
    if (!ChoosePrinter(printer))
        return;
    const std::wstring program = QGuiApplication::applicationDisplayName().toStdWString();
    const std::wstring heading = PXFormat(LoadString(IDS_TUNE_REPORT_HEADING).c_str(), program.c_str());
    if (!TuneReportPrinter::Print(printer, ReadMargin(), heading, m_lines))
        ShowMessage(LoadString(IDS_TUNE_PRINT_FAILED), {}, PromptIcon::Error);
}

std::wstring CTuneReportsDlg::ChooseTextFile(const std::wstring& defaultName) {
    QFileDialog dialog(this);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("txt"));
    dialog.setNameFilter(QtFileFilter(LoadString(IDS_FILTER_TUNE_REPORT)));
    dialog.selectFile(QString::fromStdWString(defaultName));
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().front().toStdWString();
}

bool CTuneReportsDlg::ChoosePrinter(QPrinter& printer) {
    CPrintDialog dialog(printer, kPrintFlags, this);
    return dialog.DoModal() == IDOK;
}

void CTuneReportsDlg::OnCommand(int id) {
    switch (id) {
    case IDC_TUNE_PRINT:
        Print();
        break;
    case IDC_TUNE_SAVE_TEXT:
        SaveAsText();
        break;
    case IDC_TUNE_REMOVE_REPORT:
        RemoveSelectedReport();
        break;
    case IDC_TUNE_SAVE_TUNE:
        SaveTuneFile();
        break;
    case IDC_TUNE_REMOVE_OLD:
        RemoveOldReports();
        break;
    default:
        CDialog_::OnCommand(id);
    }
}

void CTuneReportsDlg::OnOK() {
    if (!UpdateData(true))
        return;
    CPXSettings().SetInt(L"Tune", L"RemoveReportDays", m_days);
    CDialog_::OnOK();
}

void CTuneReportsDlg::done(int code) {
    CDialog_::done(code);
    CloseReport();
}

void CTuneReportsDlg::OpenReport() {
    m_reportOpen = m_report.Open(m_reportFile);
    if (!m_reportOpen && m_report.GetLastError() != kNoSuchFile)
        ShowMessage(
            FormatString(IDS_TUNE_REPORT_UNREADABLE, m_tuneFile.c_str(), m_report.GetLastErrorText().c_str()),
            {}, PromptIcon::Warning);
    if (m_reportOpen && !m_report.GetUnreadable().empty()) {
        // The reports that read are listed; the others are named (and kept in the file).
        std::wstring names;
        for (const std::wstring& name : m_report.GetUnreadable())
            names += (names.empty() ? L"" : L", ") + name;
        ShowMessage(FormatString(IDS_TUNE_REPORT_PARTLY_UNREADABLE, m_reportFile.c_str(), names.c_str()), {},
                    PromptIcon::Warning);
    }
}

// A failed save leaves the file as it was (the library writes a temporary name first); the reports
// are read again so that the list shows what the file holds.
bool CTuneReportsDlg::SaveReport() {
    if (m_report.Save())
        return true;
    ShowMessage(FormatString(IDS_TUNE_REPORT_SAVE_FAILED, m_report.GetLastErrorText().c_str()), {},
                PromptIcon::Error);
    if (m_list)
        m_list->clear();
    m_text.clear();
    m_lines.clear();
    UpdateData(false);
    OpenReport();
    if (m_reportOpen)
        FillList();
    return false;
}

void CTuneReportsDlg::CloseReport() {
    m_report.Close();
    m_reportOpen = false;
}
