// SPDX-License-Identifier: Apache-2.0
// The tune reports of a tune file on a simulated instrument: tuned through the instrument's command
// channel, read, pruned and saved over the link, and a save that fails when the instrument is gone.
#include "resource.h"
#include "scriptedprompt.h"
#include "simulatedinstrument.h"
#include "stringtable.h"
#include "tempdir.h"
#include "tunereportsdlg.h"
#include "vexadevice.h"
#include "vexasensorobject.h"
#include "vexatunereport.h"

#include <QListWidget>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

class TuneReportsOnInstrumentTest : public ::testing::Test {
protected:
    TuneReportsOnInstrumentTest() {
        RegisterVexaStrings();
        setenv("VEXA_ACCESS", "0,1", 1);
        m_instrument.start();
        m_online = m_instrument.goOnline();
    }
    ~TuneReportsOnInstrumentTest() override {
        m_instrument.dropSensor();
        m_instrument.stop();
        unsetenv("VEXA_ACCESS");
    }
    int ReportsOnInstrument() const {
        VexaTuneReport report;
        if (!report.Parse(ReadWholeFile(m_instrument.file("Tune/Reports/Default.rpt"))))
            return -1;
        return report.Sections().GetNumReports();
    }
    std::wstring RemoteTuneFile() const { return m_instrument.remote(L"/Tune/Default.tun"); }
    static QListWidget* List(CDialog_& dialog) {
        return qobject_cast<QListWidget*>(dialog.GetDlgItem(IDC_TUNE_REPORT_LIST));
    }

    PXResourceScope m_strings{VexaResourceModule()};
    SimulatedInstrument m_instrument{SimulatedInstrument::Tree::Demo};
    bool m_online = false;
    ScriptedPrompt m_prompt;
};

} // namespace

TEST_F(TuneReportsOnInstrumentTest, TuneThenReadAndPruneTheReportsOverTheLink) {
    ASSERT_TRUE(m_online);
    const int shipped = ReportsOnInstrument();
    ASSERT_GT(shipped, 10);
    VexaDevice device(m_instrument.sensor()->GetDevice(L"VEXA"));
    ASSERT_TRUE(device.runTune()) << device.getLastError();
    ASSERT_EQ(ReportsOnInstrument(), shipped + 1);

    CTuneReportsDlg dialog(m_instrument.sensor(), RemoteTuneFile());
    dialog.show();
    EXPECT_EQ(dialog.ReportFileName(), L"@" + m_instrument.host() + L":/Tune/Reports/Default.rpt");
    ASSERT_EQ(List(dialog)->count(), shipped + 1);
    EXPECT_TRUE(m_prompt.Asked().empty());

    ASSERT_TRUE(dialog.PressButton(IDC_TUNE_REMOVE_REPORT)); // the oldest
    EXPECT_EQ(ReportsOnInstrument(), shipped);

    // The demo's reports are months old; today's tune stays.
    dialog.SetDlgItemText(IDC_TUNE_DAYS, L"1");
    m_prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(dialog.PressButton(IDC_TUNE_REMOVE_OLD));
    EXPECT_EQ(ReportsOnInstrument(), 1);
    EXPECT_EQ(List(dialog)->count(), 1);
    EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::Message).empty());
}

TEST_F(TuneReportsOnInstrumentTest, SaveWithTheInstrumentGoneKeepsTheFileAndSaysWhy) {
    ASSERT_TRUE(m_online);
    const std::string before = ReadWholeFile(m_instrument.file("Tune/Reports/Default.rpt"));
    CTuneReportsDlg dialog(m_instrument.sensor(), RemoteTuneFile());
    dialog.show();
    const int listed = List(dialog)->count();
    ASSERT_GT(listed, 10);
    m_instrument.sim().stop();
    ASSERT_TRUE(dialog.PressButton(IDC_TUNE_REMOVE_REPORT));
    const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
    ASSERT_GE(messages.size(), 1u);
    EXPECT_NE(messages[0].text.find(L"report file is unchanged"), std::wstring::npos);
    EXPECT_NE(messages[0].text.find(L"error"), std::wstring::npos);
    EXPECT_EQ(ReadWholeFile(m_instrument.file("Tune/Reports/Default.rpt")), before);
}
