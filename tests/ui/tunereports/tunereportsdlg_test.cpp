// SPDX-License-Identifier: Apache-2.0
// The tune reports dialog over a report file on the workstation: listing, showing, removing, pruning,
// saving and printing, with every question answered by a ScriptedPrompt.
#include "fakechannel.h"
#include "margin.h"
#include "pdfpages.h"
#include "pdfprinter.h"
#include "pxsettings.h"
#include "resource.h"
#include "scriptedprompt.h"
#include "sensorobject.h"
#include "stringtable.h"
#include "tempdir.h"
#include "tunereportsdlg.h"
#include "vexatune.h"
#include "vexatunereport.h"

#include <QGuiApplication>
#include <QListWidget>
#include <QPrinter>
#include <QTest>
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <fstream>

namespace {

constexpr int64_t kDay = 86400LL * 1000000;

// A sensor whose file selection is answered by the test and whose channel 0 records commands.
class TuneSensor : public ISensorObject {
public:
    TuneSensor() : ISensorObject(nullptr, ISensorAddress(L"127.0.0.9")) {
        auto channel = std::make_unique<FakeChannel>();
        this->channel = channel.get();
        SetCommSensor(std::move(channel));
    }
    std::wstring SelectFile(int kind, const std::wstring& start, uint32_t flags, const std::wstring& title,
                            const std::wstring& filter, const std::wstring&) override {
        asked.push_back({kind, start, flags, title, filter});
        return answer;
    }
    struct Call {
        int kind;
        std::wstring start;
        uint32_t flags;
        std::wstring title, filter;
    };
    std::vector<Call> asked;
    std::wstring answer;
    FakeChannel* channel = nullptr;
};

// The dialog with its two desktop questions answered by the test.
class TestTuneReportsDlg : public CTuneReportsDlg {
public:
    using CTuneReportsDlg::CTuneReportsDlg;
    std::wstring textFile;    // the answer to "save as text"; empty cancels
    std::wstring offeredName; // the name the dialog proposed
    std::string pdfFile;      // the PDF to print to; empty cancels
    int printerQuestions = 0;

protected:
    std::wstring ChooseTextFile(const std::wstring& defaultName) override {
        offeredName = defaultName;
        return textFile;
    }
    bool ChoosePrinter(QPrinter& printer) override {
        ++printerQuestions;
        if (pdfFile.empty())
            return false;
        SetUpPdfPrinter(printer, QString::fromStdString(pdfFile));
        return true;
    }
};

class TuneReportsDialogTest : public ::testing::Test {
protected:
    TuneReportsDialogTest() {
        RegisterVexaStrings();
        setenv("TZ", "UTC0", 1);
        tzset();
        setenv("VEXA_ACCESS", "0,1", 1);
        m_tuneFile = m_temp.createFile("Tune/Default.tun", "{}");
    }
    ~TuneReportsDialogTest() override {
        unsetenv("VEXA_ACCESS");
        unsetenv("TZ");
        tzset();
    }

    // Writes the report file with reports at these times (microseconds), each with its own repeller.
    void WriteReports(const std::vector<int64_t>& times) {
        VexaTuneReport report;
        for (size_t i = 0; i < times.size(); ++i) {
            VexaTuneReportSection section;
            section.time = times[i];
            section.instrument = L"vexaron-0427";
            section.tune.calibrant = L"PFTBA";
            section.tune.repeller = 2.0 + 0.1 * double(i);
            section.tune.masses = {{69, 100.0, 0.55}};
            section.results = {{69, 100.0, 0.56, true}};
            report.Sections().AddReport(section);
        }
        m_temp.createFile("Tune/Reports/Default.rpt", report.Serialize());
    }
    std::vector<int64_t> TimesInFile() const {
        VexaTuneReport report;
        EXPECT_TRUE(report.Parse(ReadWholeFile(m_temp.file("Tune/Reports/Default.rpt"))));
        std::vector<int64_t> times;
        for (int i = 0; i < report.Sections().GetNumReports(); ++i)
            times.push_back(report.Sections().GetReport(i)->time);
        return times;
    }
    std::unique_ptr<TestTuneReportsDlg> Open() {
        auto dialog = std::make_unique<TestTuneReportsDlg>(&m_sensor, FromNarrow(m_tuneFile));
        dialog->show();
        return dialog;
    }
    static QListWidget* List(CDialog_& dialog) {
        return qobject_cast<QListWidget*>(dialog.GetDlgItem(IDC_TUNE_REPORT_LIST));
    }
    static QStringList Entries(CDialog_& dialog) {
        QStringList entries;
        for (int i = 0; i < List(dialog)->count(); ++i)
            entries << List(dialog)->item(i)->text() + "=" +
                           List(dialog)->item(i)->data(Qt::UserRole).toString();
        return entries;
    }
    static std::wstring FromNarrow(const std::string& text) { return std::wstring(text.begin(), text.end()); }

    PXResourceScope m_strings{VexaResourceModule()};
    TempDir m_temp;
    std::string m_tuneFile;
    TuneSensor m_sensor;
    ScriptedPrompt m_prompt;
};

const int64_t kNov20 = 1795171200000000; // 2026-11-20 10:40:00 UTC
const int64_t kNov21 = kNov20 + kDay + 61000000;
const int64_t kNov22 = kNov20 + 2 * kDay + 3723000000;

} // namespace

TEST_F(TuneReportsDialogTest, OpeningListsTheReportsAndShowsTheFirst) {
    WriteReports({kNov20, kNov21, kNov22});
    auto dialog = Open();
    EXPECT_EQ(dialog->ReportFileName(), FromNarrow(m_temp.file("Tune/Reports/Default.rpt")));
    EXPECT_EQ(Entries(*dialog),
              QStringList({"2026-11-20 10:40:00=0", "2026-11-21 10:41:01=1", "2026-11-22 11:42:03=2"}));
    EXPECT_EQ(List(*dialog)->currentRow(), 0);
    EXPECT_EQ(dialog->GetDlgItemText(IDC_TUNE_FILE_LABEL), L"Tune File: Default.tun");
    EXPECT_EQ(dialog->GetDlgItemText(IDC_TUNE_DAYS), L"30");
    const std::wstring text = dialog->GetDlgItemText(IDC_TUNE_REPORT_TEXT);
    EXPECT_NE(text.find(L"Date:        2026-11-20"), std::wstring::npos);
    EXPECT_NE(text.find(L"Repeller:         2.00 V"), std::wstring::npos);
    EXPECT_EQ(dialog->GetDlgItem(IDC_TUNE_REPORT_TEXT)->font().family(), QStringLiteral("Courier"));
    EXPECT_TRUE(m_prompt.Asked().empty());

    // A click, as the operator selects: the report is shown and the buttons stay on.
    QListWidget* list = List(*dialog);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualItemRect(list->item(2)).center());
    EXPECT_EQ(list->currentRow(), 2);
    EXPECT_NE(dialog->GetDlgItemText(IDC_TUNE_REPORT_TEXT).find(L"Repeller:         2.20 V"),
              std::wstring::npos);
    for (int id : {IDC_TUNE_PRINT, IDC_TUNE_SAVE_TEXT, IDC_TUNE_REMOVE_REPORT, IDC_TUNE_SAVE_TUNE})
        EXPECT_TRUE(dialog->GetDlgItem(id)->isEnabled()) << id;
    EXPECT_EQ(dialog->minimumSize(), QSize(560, 380));
}

TEST_F(TuneReportsDialogTest, WithoutLevelOneTheChangingControlsAndPrintAreOff) {
    WriteReports({kNov20});
    const int gated[] = {IDC_TUNE_REMOVE_REPORT, IDC_TUNE_REMOVE_OLD, IDC_TUNE_DAYS,
                         IDC_TUNE_SAVE_TUNE,     IDC_TUNE_SAVE_TEXT,  IDC_TUNE_PRINT};
    for (const char* levels : {"0", "0,1"}) {
        SCOPED_TRACE(levels);
        setenv("VEXA_ACCESS", levels, 1);
        auto dialog = Open();
        for (int id : gated)
            EXPECT_EQ(dialog->GetDlgItem(id)->isEnabled(), std::string(levels) == "0,1") << id;
        EXPECT_TRUE(dialog->GetDlgItem(IDC_TUNE_REPORT_LIST)->isEnabled());
        EXPECT_EQ(List(*dialog)->count(), 1);
    }
}

TEST_F(TuneReportsDialogTest, RemovingAReportSavesAndRenumbersTheRestInReverse) {
    WriteReports({kNov20, kNov21, kNov22});
    auto dialog = Open();
    List(*dialog)->setCurrentRow(1);
    const std::wstring shown = dialog->GetDlgItemText(IDC_TUNE_REPORT_TEXT);
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_REMOVE_REPORT));

    EXPECT_EQ(TimesInFile(), std::vector<int64_t>({kNov20, kNov22}));
    // Entry i refers to report count - 1 - i, and entry 0 is selected; the text stays until the next
    // selection change.
    EXPECT_EQ(Entries(*dialog), QStringList({"2026-11-20 10:40:00=1", "2026-11-22 11:42:03=0"}));
    EXPECT_EQ(List(*dialog)->currentRow(), 0);
    EXPECT_EQ(dialog->GetDlgItemText(IDC_TUNE_REPORT_TEXT), shown);
    List(*dialog)->setCurrentRow(1);
    EXPECT_NE(dialog->GetDlgItemText(IDC_TUNE_REPORT_TEXT).find(L"Date:        2026-11-20"),
              std::wstring::npos);
}

TEST_F(TuneReportsDialogTest, RemovingTheLastReportLeavesAnEmptyList) {
    WriteReports({kNov20});
    auto dialog = Open();
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_REMOVE_REPORT));
    EXPECT_TRUE(TimesInFile().empty());
    EXPECT_EQ(List(*dialog)->count(), 0);
    EXPECT_EQ(List(*dialog)->currentItem(), nullptr);
    EXPECT_TRUE(List(*dialog)->selectedItems().isEmpty());
    dialog->PressButton(IDC_TUNE_REMOVE_REPORT); // nothing selected: nothing happens
    EXPECT_TRUE(TimesInFile().empty());
}

TEST_F(TuneReportsDialogTest, RemoveOldReportsCutsAtTheAgeInDays) {
    const int64_t now = int64_t(std::time(nullptr)) * 1000000;
    const std::vector<int64_t> times = {now - 40 * kDay, now - 10 * kDay, now - 60000000, now + 3600000000LL};
    struct Case {
        const char* days;
        int answer;
        size_t left; // reports left: the newest ones
    };
    const Case cases[] = {
        {"30", IDYES, 3}, {"30", IDNO, 4}, {"5", IDYES, 2}, {"0", IDYES, 1}, {"-1", IDYES, 0}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.days);
        WriteReports(times);
        auto dialog = Open();
        dialog->SetDlgItemText(IDC_TUNE_DAYS, FromNarrow(c.days));
        m_prompt.ClearAsked();
        m_prompt.QueueYesNo(c.answer);
        ASSERT_TRUE(dialog->PressButton(IDC_TUNE_REMOVE_OLD));
        const auto asked = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
        ASSERT_EQ(asked.size(), 1u);
        EXPECT_EQ(asked[0].text, L"Are you sure you want to remove all reports older than " +
                                     FromNarrow(c.days) + L" days?");
        EXPECT_EQ(TimesInFile(), std::vector<int64_t>(times.end() - long(c.left), times.end()));
        EXPECT_EQ(size_t(List(*dialog)->count()), c.left);
        EXPECT_EQ(List(*dialog)->currentRow(), c.left > 0 ? 0 : -1);
    }
}

TEST_F(TuneReportsDialogTest, CutOffIsNowInMicrosecondsLessTheDays) {
    EXPECT_EQ(CTuneReportsDlg::RemoveCutoff(1795426209, 0), 1795426209000000);
    EXPECT_EQ(CTuneReportsDlg::RemoveCutoff(1795426209, 30), 1795426209000000 - 30 * kDay);
    EXPECT_EQ(CTuneReportsDlg::RemoveCutoff(-5, 1), -5000000 - kDay);
    EXPECT_EQ(CTuneReportsDlg::RemoveCutoff(2147483647, 0), 2147483647000000);
}

TEST_F(TuneReportsDialogTest, MissingOrDamagedReportFileLeavesTheListEmpty) {
    for (const char* content : {static_cast<const char*>(nullptr), "{\"format\": \"VexaTuneReport\", \"rep",
                                "{\"format\": \"VexaMethod\", \"version\": 1}"}) {
        SCOPED_TRACE(content ? content : "missing");
        if (content)
            m_temp.createFile("Tune/Reports/Default.rpt", content);
        m_prompt.ClearAsked();
        auto dialog = Open();
        EXPECT_FALSE(dialog->IsReportOpen());
        EXPECT_EQ(List(*dialog)->count(), 0);
        EXPECT_TRUE(dialog->GetDlgItemText(IDC_TUNE_REPORT_TEXT).empty());
        // A missing file is no error; a damaged one is reported.
        EXPECT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Message).size(), content ? 1u : 0u);
        dialog->SetDlgItemText(IDC_TUNE_DAYS, L"0");
        dialog->PressButton(IDC_TUNE_REMOVE_OLD);
        dialog->PressButton(IDC_TUNE_REMOVE_REPORT);
        EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::YesNo).empty());
        if (content) {
            EXPECT_EQ(ReadWholeFile(m_temp.file("Tune/Reports/Default.rpt")), content);
        }
    }
}

TEST_F(TuneReportsDialogTest, APartlyReadableFileListsWhatReadsAndNamesTheRest) {
    m_temp.createFile("Tune/Reports/Default.rpt", R"({"format": "VexaTuneReport", "version": 1,
        "reports": [{"time": 1795426209123456, "tune": {}, "results": {}}, {"tune": {}}]})");
    auto dialog = Open();
    EXPECT_TRUE(dialog->IsReportOpen());
    EXPECT_EQ(List(*dialog)->count(), 1);
    const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].text.find(L"reports[2]"), std::wstring::npos);
}

TEST_F(TuneReportsDialogTest, FailedSaveKeepsTheFileAndSaysWhy) {
    WriteReports({kNov20, kNov21});
    const std::string before = ReadWholeFile(m_temp.file("Tune/Reports/Default.rpt"));
    // A folder where the temporary file would go: the write fails even for a privileged user.
    m_temp.createDir("Tune/Reports/___temp@@Default.rpt");
    auto dialog = Open();
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_REMOVE_REPORT));
    const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].text.find(L"report file is unchanged"), std::wstring::npos);
    EXPECT_EQ(ReadWholeFile(m_temp.file("Tune/Reports/Default.rpt")), before);
    EXPECT_EQ(List(*dialog)->count(), 2);
}

TEST_F(TuneReportsDialogTest, SaveReportAsTextWritesTheTextShown) {
    WriteReports({kNov20});
    auto dialog = Open();
    dialog->textFile = FromNarrow(m_temp.file("out/report.txt"));
    m_temp.createDir("out");
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_SAVE_TEXT));
    EXPECT_EQ(dialog->offeredName, L"Default.txt");
    std::wstring expected;
    for (const std::wstring& line : dialog->ReportLines())
        expected += line + L"\r\n";
    EXPECT_EQ(FromNarrow(ReadWholeFile(m_temp.file("out/report.txt"))), expected);

    dialog->textFile = FromNarrow(m_temp.file("no/such/folder/report.txt"));
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_SAVE_TEXT));
    const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_NE(messages[0].text.find(L"error 2"), std::wstring::npos);
}

TEST_F(TuneReportsDialogTest, SaveTuneFileAsksTheSensorAndSetsTheManualTune) {
    WriteReports({kNov20, kNov21});
    auto dialog = Open();
    List(*dialog)->setCurrentRow(1);
    m_sensor.answer = L"";
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_SAVE_TUNE));
    ASSERT_EQ(m_sensor.asked.size(), 1u);
    EXPECT_EQ(m_sensor.asked[0].kind, 2);
    EXPECT_EQ(m_sensor.asked[0].flags, 0x21u);
    EXPECT_EQ(m_sensor.asked[0].title, L"Save Tune File");
    EXPECT_EQ(m_sensor.asked[0].start, FromNarrow(m_tuneFile));
    EXPECT_TRUE(m_sensor.channel->commands.empty());

    const std::string saved = m_temp.file("Tune/Second.tun");
    m_sensor.answer = FromNarrow(saved);
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_SAVE_TUNE));
    VexaTune tune;
    ASSERT_TRUE(tune.Parse(ReadWholeFile(saved)));
    EXPECT_EQ(tune.GetTuneSection().repeller, 2.1); // report 1's settings
    EXPECT_EQ(tune.GetTuneSection().masses.size(), 1u);
    EXPECT_EQ(m_sensor.channel->commands, std::vector<std::wstring>({L"tune manual 3 " + FromNarrow(saved)}));

    // Off line the file is saved on the PC and the instrument, not asked, refused nothing.
    m_sensor.channel->Close();
    const std::string third = m_temp.file("Tune/Third.tun");
    m_sensor.answer = FromNarrow(third);
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_SAVE_TUNE));
    EXPECT_TRUE(tune.Parse(ReadWholeFile(third)));
    EXPECT_EQ(m_sensor.channel->commands.size(), 1u);
    EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::Message).empty());
}

TEST_F(TuneReportsDialogTest, PrintsTheReportOrNothingWhenCancelled) {
    WriteReports({kNov20});
    auto dialog = Open();
    dialog->pdfFile = "";
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_PRINT));
    EXPECT_EQ(dialog->printerQuestions, 1);

    dialog->pdfFile = m_temp.file("report.pdf");
    ASSERT_TRUE(dialog->PressButton(IDC_TUNE_PRINT));
    EXPECT_EQ(PdfPageCount(dialog->pdfFile), 1);
    const std::string text = PdfText(dialog->pdfFile);
    EXPECT_NE(text.find(QGuiApplication::applicationDisplayName().toStdString() + " Tune"), std::string::npos)
        << text;
    EXPECT_NE(text.find("Default.tun"), std::string::npos)
        << text; // pdftotext spaces the columns its own way
    EXPECT_NE(text.find("Result: PASS"), std::string::npos) << text;
}

TEST_F(TuneReportsDialogTest, OkWritesTheDaysAndCancelDoesNot) {
    WriteReports({kNov20});
    CPXSettings settings;
    settings.Remove(L"Tune", L"RemoveReportDays");
    for (const auto& [days, button, stored] :
         {std::tuple{L"12", IDCANCEL, 30}, std::tuple{L"12", IDOK, 12}}) {
        auto dialog = Open();
        dialog->SetDlgItemText(IDC_TUNE_DAYS, days);
        dialog->PressButton(button);
        EXPECT_EQ(settings.GetInt(L"Tune", L"RemoveReportDays", 30), stored);
    }
    auto dialog = Open();
    EXPECT_EQ(dialog->GetDlgItemText(IDC_TUNE_DAYS), L"12");
}

TEST_F(TuneReportsDialogTest, MarginsComeFromTheSettingsWithTheirDefaults) {
    CPXSettings settings;
    for (const wchar_t* key : {L"TopMargin", L"BottomMargin", L"LeftMargin", L"RightMargin", L"MarginUnit"})
        settings.Remove(L"Tune", key);
    Margin margin = CTuneReportsDlg::ReadMargin();
    EXPECT_EQ(margin.top, 1.0f);
    EXPECT_EQ(margin.bottom, 1.0f);
    EXPECT_EQ(margin.left, 1.25f);
    EXPECT_EQ(margin.right, 1.25f);
    EXPECT_EQ(margin.unit, 0);

    settings.SetString(L"Tune", L"TopMargin", L"2.5");
    settings.SetString(L"Tune", L"BottomMargin", L"0.5");
    settings.SetString(L"Tune", L"LeftMargin", L"3");
    settings.SetString(L"Tune", L"RightMargin", L"wide"); // unreadable: the default
    settings.SetInt(L"Tune", L"MarginUnit", 1);
    margin = CTuneReportsDlg::ReadMargin();
    EXPECT_EQ(margin.top, 2.5f);
    EXPECT_EQ(margin.bottom, 0.5f);
    EXPECT_EQ(margin.left, 3.0f);
    EXPECT_EQ(margin.right, 1.25f);
    EXPECT_EQ(margin.unit, 1);
    for (const wchar_t* key : {L"TopMargin", L"BottomMargin", L"LeftMargin", L"RightMargin", L"MarginUnit"})
        settings.Remove(L"Tune", key);
}
