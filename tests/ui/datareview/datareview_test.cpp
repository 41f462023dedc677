// SPDX-License-Identifier: Apache-2.0
// Data Review on files written with the data library: what a click, a dragged range, a background
// range, an added trace and an export show, a version-1 file, damaged files, and tabs.
#include "chromatogramview.h"
#include "datareviewwindow.h"
#include "pdfpages.h"
#include "registry.h"
#include "runreviewpage.h"
#include "scriptedprompt.h"
#include "spectrumsearchlauncher.h"
#include "spectrumview.h"
#include "stdiofile.h"
#include "tempdir.h"
#include "text.h"
#include "vexadatafile.h"
#include "vexarun.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QtTest>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

namespace {

// 20 scans every 0.5 s from 1 s, each of m/z 50, 91 and 105: 50 is a flat 100; 91 peaks at scan 10
// (500, 1000, 500 over scans 9-11); 105 is 400 in scan 4 only. Scans are 0-based here.
VexaRun SmallRun() {
    VexaRun run;
    run.SetSampleName("Toluene check");
    run.SetStartTime(1'700'000'000);
    run.SetParameters({{L"SENSOR", L"@10.0.0.5:/Method/Default.mth"},
                       {L"INSTRUMENT", L"VEXARON 10.0.0.5"},
                       {L"SCANMODE", L"0"},
                       {L"MASSLOW", L"45"},
                       {L"MASSHIGH", L"110"}});
    const std::vector<float> mz{50, 91, 105};
    for (int scan = 0; scan < 20; ++scan) {
        const float peak = scan == 10 ? 1000.0f : (scan == 9 || scan == 11) ? 500.0f : 0.0f;
        const std::vector<float> intensity{100, peak, scan == 4 ? 400.0f : 0.0f};
        run.AddScan(1000 + 500 * scan, mz, intensity);
    }
    return run;
}

std::wstring Write(TempDir& dir, const std::string& name, const std::string& bytes) {
    std::ofstream(dir.file(name), std::ios::binary) << bytes;
    return FromUtf8(dir.file(name));
}

void SendMouse(QWidget& target, QEvent::Type type, QPoint pos, Qt::KeyboardModifiers modifiers = {}) {
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, pos, target.mapToGlobal(pos), Qt::LeftButton, held, modifiers);
    QApplication::sendEvent(&target, &event);
}

class DataReviewTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_window.show();
        m_window.activateWindow(); // F8 is the window's shortcut
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
    }
    RunReviewPage& OpenSmallRun() {
        const std::wstring file = Write(m_dir, "small.vxs", VexaDataFile::MakeFile(SmallRun()));
        EXPECT_TRUE(m_window.OpenFile(file)) << m_window.LastError().toStdString();
        RunReviewPage* page = m_window.CurrentPage();
        page->Chromatogram()->grab(); // laid out, so pixels map to times
        return *page;
    }
    QPoint At(RunReviewPage& page, double seconds) {
        ChromatogramView& view = *page.Chromatogram();
        return {static_cast<int>(std::lround(view.PixelAtX(seconds))), view.PlotArea().center().y()};
    }
    void Click(RunReviewPage& page, double seconds) {
        SendMouse(*page.Chromatogram(), QEvent::MouseButtonPress, At(page, seconds));
        SendMouse(*page.Chromatogram(), QEvent::MouseButtonRelease, At(page, seconds));
    }
    void Drag(RunReviewPage& page, double from, double to, Qt::KeyboardModifiers modifiers = {}) {
        ChromatogramView& view = *page.Chromatogram();
        SendMouse(view, QEvent::MouseButtonPress, At(page, from), modifiers);
        SendMouse(view, QEvent::MouseMove, At(page, to), modifiers);
        SendMouse(view, QEvent::MouseButtonRelease, At(page, to), modifiers);
    }

    TempDir m_dir;
    ScriptedPrompt m_prompt;
    DataReviewWindow m_window{nullptr};
};

} // namespace

TEST_F(DataReviewTest, ClickDragAndBackgroundShowTheRightSpectrum) {
    RunReviewPage& page = OpenSmallRun();
    Click(page, 6.1);
    ASSERT_TRUE(page.ShownScans());
    EXPECT_EQ(*page.ShownScans(), std::make_pair(size_t{10}, size_t{10}));
    EXPECT_EQ(page.ShownSpectrum().IntensityAt(91), 1000.0f);
    EXPECT_EQ(page.Spectrum()->Title(), "Scan 11 at 0.10 min");
    EXPECT_EQ(page.Spectrum()->BasePeakMass(), 91);
    EXPECT_EQ(page.Chromatogram()->Marker(), 6.0);

    // The arrow key steps to the next scan.
    QTest::keyClick(page.Chromatogram(), Qt::Key_Right);
    EXPECT_EQ(page.ShownSpectrum().IntensityAt(91), 500.0f);
    EXPECT_EQ(page.Spectrum()->Title(), "Scan 12 at 0.11 min");

    // Scans 9-11 averaged: 91 is (500 + 1000 + 500) / 3; 50 stays 100.
    Drag(page, 5.4, 6.6);
    EXPECT_EQ(*page.ShownScans(), std::make_pair(size_t{9}, size_t{11}));
    EXPECT_NEAR(page.ShownSpectrum().IntensityAt(91), 2000.0 / 3, 0.01);
    EXPECT_NEAR(page.ShownSpectrum().IntensityAt(50), 100.0, 0.01);
    EXPECT_NEAR(page.Spectrum()->RelativeAbundances()[0], 15.0, 0.01) << "50 relative to 91";

    // A background over scans 0-2 (50 alone) takes 50 out and leaves 91.
    Drag(page, 0.9, 2.1, Qt::ShiftModifier);
    EXPECT_EQ(*page.BackgroundScans(), std::make_pair(size_t{0}, size_t{2}));
    EXPECT_TRUE(page.SubtractsBackground());
    EXPECT_EQ(page.ShownSpectrum().IntensityAt(50), 0.0f);
    EXPECT_NEAR(page.ShownSpectrum().IntensityAt(91), 2000.0 / 3, 0.01);
    EXPECT_EQ(page.Spectrum()->Title(),
              "Average of scans 10 to 12 (0.09 to 0.11 min), minus background scans 1 to 3");
    page.SetSubtractBackground(false);
    EXPECT_NEAR(page.ShownSpectrum().IntensityAt(50), 100.0, 0.01);
}

TEST_F(DataReviewTest, ExtractedIonTracesFollowTheirMasses) {
    RunReviewPage& page = OpenSmallRun();
    auto* edit = page.findChild<QLineEdit*>("ionMasses");
    ASSERT_NE(edit, nullptr);
    QTest::keyClicks(edit, "91");
    QTest::keyClick(edit, Qt::Key_Return);
    ASSERT_EQ(page.Chromatogram()->TraceCount(), 2);
    const PlotTrace& single = page.Chromatogram()->TraceAt(1);
    EXPECT_EQ(single.y[10], 1000.0);
    EXPECT_EQ(single.y[9], 500.0);
    EXPECT_EQ(single.y[4], 0.0);
    EXPECT_EQ(single.x[10], 6.0);

    QString error;
    ASSERT_TRUE(page.AddExtractedIons("91, 105", 0.5, &error));
    const PlotTrace& both = page.Chromatogram()->TraceAt(2);
    EXPECT_EQ(both.y[4], 400.0);
    EXPECT_EQ(both.y[10], 1000.0);
    EXPECT_TRUE(both.name.contains("91 + 105"));
    for (const char* bad : {"abc", "3000", "", "0"}) {
        EXPECT_FALSE(page.AddExtractedIons(bad, 0.5, &error)) << bad;
        EXPECT_FALSE(error.isEmpty());
    }
    EXPECT_EQ(page.Chromatogram()->TraceCount(), 3);
    page.RemoveTrace(1);
    EXPECT_EQ(page.Chromatogram()->TraceCount(), 2);
    EXPECT_TRUE(page.Chromatogram()->TraceAt(1).name.contains("105"));
    page.RemoveTrace(0);
    EXPECT_EQ(page.Chromatogram()->TraceAt(0).name, "TIC") << "the TIC stays";
}

TEST_F(DataReviewTest, PictureExportShowsThePlotsAsShown) {
    RunReviewPage& page = OpenSmallRun();
    Click(page, 6.0);
    const QString pdf = QString::fromStdString(m_dir.file("review.pdf"));
    QString error;
    ASSERT_TRUE(m_window.ExportImage(pdf, &error)) << error.toStdString();
    const std::string text = PdfText(pdf.toStdString());
    for (const char* shown : {"Scan 11 at 0.10 min", "91", "m/z", "Retention time (min)"})
        EXPECT_NE(text.find(shown), std::string::npos) << shown << " in:\n" << text;
    const QString png = QString::fromStdString(m_dir.file("review.png"));
    ASSERT_TRUE(m_window.ExportImage(png, &error));
    EXPECT_EQ(QImage(png).width(), page.Chromatogram()->width());
}

TEST_F(DataReviewTest, FactsAndTabs) {
    RunReviewPage& page = OpenSmallRun();
    std::map<QString, QString> facts(page.Facts().begin(), page.Facts().end());
    EXPECT_EQ(facts["Sample"], "Toluene check");
    EXPECT_EQ(facts["Started"], "2023-11-14 22:13:20 UTC");
    EXPECT_EQ(facts["Method"], "@10.0.0.5:/Method/Default.mth");
    EXPECT_EQ(facts["Instrument"], "VEXARON 10.0.0.5");
    EXPECT_EQ(facts["Scan mode"], "Full Scan");
    EXPECT_EQ(facts["Mass range"], "m/z 45 to 110");
    EXPECT_EQ(facts["Scans"], "20");
    EXPECT_EQ(facts["Run time"], "0.17 min"); // the last scan at 10.5 s

    // The same file again comes to the front; a version-1 file opens beside it with its facts only.
    EXPECT_TRUE(m_window.OpenFile(page.SourceName()));
    EXPECT_EQ(m_window.PageCount(), 1);
    VexaRun old;
    old.SetVersion(1);
    old.SetOpaqueScanCount(60);
    old.SetSampleName("sample 1");
    ASSERT_TRUE(m_window.OpenFile(Write(m_dir, "old.vxs", VexaDataFile::MakeFile(old))));
    EXPECT_EQ(m_window.PageCount(), 2);
    RunReviewPage& oldPage = *m_window.CurrentPage();
    EXPECT_EQ(oldPage.Chromatogram()->TraceCount(), 0);
    std::map<QString, QString> oldFacts(oldPage.Facts().begin(), oldPage.Facts().end());
    EXPECT_EQ(oldFacts["Scans"], "60");
    EXPECT_EQ(oldFacts["Sample"], "sample 1");
    QString error;
    EXPECT_FALSE(oldPage.AddExtractedIons("91", 0.5, &error));
    EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::Message).empty());
}

TEST_F(DataReviewTest, DamagedFilesAreRefusedWithTheirReason) {
    const std::string good = VexaDataFile::MakeFile(SmallRun());
    std::string newer = good;
    newer[4] = 3;
    std::string backwards = good;
    backwards[48 + 16] = 0; // scan 2's time drops below scan 1's
    backwards[48 + 17] = 0;
    const std::pair<const char*, std::string> files[] = {
        {"truncated.vxs", good.substr(0, good.size() / 2)},
        {"version3.vxs", newer},
        {"backwards.vxs", backwards},
        {"empty.vxs", ""},
        {"text.vxs", "not a data file at all"},
    };
    for (const auto& [name, bytes] : files) {
        m_prompt.ClearAsked();
        EXPECT_FALSE(m_window.OpenFile(Write(m_dir, name, bytes))) << name;
        EXPECT_TRUE(m_window.LastError().contains(name)) << m_window.LastError().toStdString();
        const auto told = m_prompt.Asked(ScriptedPrompt::Kind::Message);
        ASSERT_EQ(told.size(), 1u) << name;
        EXPECT_EQ(told[0].icon, PromptIcon::Warning);
        // The reason follows the name: more than the bare refusal.
        EXPECT_GT(m_window.LastError().size(), QString(name).size() + 30)
            << m_window.LastError().toStdString();
    }
    EXPECT_EQ(m_window.PageCount(), 0);
}

namespace {
std::string ReadText(const std::string& path) {
    std::stringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

// A search program that writes down its arguments, one a line, and the settings that name it.
std::string InstallRecordingSearchProgram(TempDir& dir, const wchar_t* pattern) {
    const std::string script = dir.file("search.sh");
    const std::string record = dir.file("arguments.txt");
    std::ofstream(script) << "#!/bin/sh\nprintf '%s\\n' \"$@\" > " << record << ".part && mv " << record
                          << ".part " << record << "\n";
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    CPXRegistry::Instance().SetString(L"Programs", L"Nist", FromUtf8(script));
    CPXRegistry::Instance().SetString(L"Programs", L"NistArguments", pattern);
    return record;
}

std::string WaitForText(const std::string& path) {
    for (int i = 0; i < 100 && !std::filesystem::exists(path); ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    return ReadText(path);
}
} // namespace

TEST_F(DataReviewTest, ExportsWriteWhatIsShown) {
    RunReviewPage& page = OpenSmallRun();
    QString error;
    const QString msp = QString::fromStdString(m_dir.file("s.msp"));
    EXPECT_FALSE(m_window.ExportSpectrumMsp(msp, &error)) << "nothing picked yet";
    EXPECT_TRUE(error.contains("Click")) << error.toStdString();

    Click(page, 6.0);
    ASSERT_TRUE(m_window.ExportSpectrumMsp(msp, &error)) << error.toStdString();
    const std::string record = ReadText(msp.toStdString());
    EXPECT_NE(record.find("Name: Toluene check, Scan 11 at 0.10 min\n"), std::string::npos) << record;
    EXPECT_NE(record.find("Num Peaks: 2\n50 100\n91 999\n"), std::string::npos) << record;

    const QString spectrumCsv = QString::fromStdString(m_dir.file("s.csv"));
    ASSERT_TRUE(m_window.ExportSpectrumCsv(spectrumCsv, &error));
    EXPECT_NE(ReadText(spectrumCsv.toStdString()).find("91,1000,100.00\n"), std::string::npos);

    ASSERT_TRUE(page.AddExtractedIons("91, 105", 0.5, &error));
    const QString traceCsv = QString::fromStdString(m_dir.file("t.csv"));
    ASSERT_TRUE(m_window.ExportChromatogramCsv(traceCsv, &error));
    const std::string trace = ReadText(traceCsv.toStdString());
    EXPECT_EQ(trace.substr(0, trace.find('\n')), "time_s,tic,mz_91,mz_105");
    EXPECT_NE(trace.find("\n3.000,500,0,400\n"), std::string::npos) << trace;
    EXPECT_NE(trace.find("\n6.000,1100,1000,0\n"), std::string::npos) << trace;

    const QString andi = QString::fromStdString(m_dir.file("run.cdf"));
    ASSERT_TRUE(m_window.ExportAndi(andi, &error)) << error.toStdString();
    EXPECT_EQ(ReadText(andi.toStdString()).substr(0, 4), std::string("CDF\x01", 4));

    EXPECT_FALSE(m_window.ExportSpectrumCsv("/nonexistent-dir/s.csv", &error));
    EXPECT_TRUE(error.contains("/nonexistent-dir/s.csv")) << error.toStdString();
}

TEST_F(DataReviewTest, F8HandsTheShownSpectrumToTheSearchProgram) {
    RunReviewPage& page = OpenSmallRun();
    const std::string record = InstallRecordingSearchProgram(m_dir, L"/PAR=2 %1");
    Drag(page, 5.4, 6.6);
    Drag(page, 0.9, 2.1, Qt::ShiftModifier);
    QTest::keyClick(page.Chromatogram(), Qt::Key_F8);
    const std::string arguments = WaitForText(record);
    ASSERT_EQ(arguments.rfind("/PAR=2\n", 0), 0u) << arguments;
    const std::string file = arguments.substr(7, arguments.size() - 8);
    EXPECT_TRUE(QString::fromStdString(file).endsWith("small-scan10-12-bg.msp")) << file;
    const std::string msp = ReadText(file);
    EXPECT_NE(msp.find("background=1.000-2.000 s"), std::string::npos) << msp;
    EXPECT_NE(msp.find("Num Peaks: 1\n91 999\n"), std::string::npos) << "50 went with the background:\n"
                                                                     << msp;
    CPXRegistry::Instance().SetString(L"Programs", L"Nist", L"");
}

TEST(SpectrumSearchLauncher, ThePatternPlacesTheFileAndTheProgramGetsIt) {
    const QString file = "/tmp/a b/%1 spectrum.msp";
    struct Case {
        const char* pattern;
        QStringList arguments;
    };
    const Case cases[] = {
        {"%1", {file}},
        {"/INSTRUMENT /PAR=2 %1", {"/INSTRUMENT", "/PAR=2", file}},
        {"--spectrum=%1 \"two words\"", {"--spectrum=" + file, "two words"}},
        {"/PAR=2", {}}, // the file would not reach the program
        {"", {}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(SpectrumSearchLauncher::Arguments(c.pattern, file), c.arguments) << c.pattern;

    CPXRegistry& settings = CPXRegistry::Instance();
    QString error;
    settings.SetString(L"Programs", L"Nist", L"");
    EXPECT_FALSE(SpectrumSearchLauncher::Start("x.msp", &error));
    EXPECT_TRUE(error.contains("Programs/Nist")) << error.toStdString();

    TempDir dir;
    const std::string record = InstallRecordingSearchProgram(dir, L"/PAR=2 %1");
    ASSERT_TRUE(SpectrumSearchLauncher::Start("/data/run 1.msp", &error)) << error.toStdString();
    EXPECT_EQ(WaitForText(record), "/PAR=2\n/data/run 1.msp\n");
    settings.SetString(L"Programs", L"NistArguments", L"/PAR=2");
    EXPECT_FALSE(SpectrumSearchLauncher::Start("x.msp", &error));
    EXPECT_TRUE(error.contains("%1")) << error.toStdString();
    settings.SetString(L"Programs", L"Nist", L"");
    settings.SetString(L"Programs", L"NistArguments", L"");
}
