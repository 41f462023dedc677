// SPDX-License-Identifier: Apache-2.0
// The file selection dialog's commands: choosing and cancelling through SelectFile, the selection timer,
// save mode, folders, Manage Files, Alt+H, and an instrument that goes away while the dialog is open.
#include "fileselectfixture.h"

#include "winsockerror.h"

#include "explorerctrl.h"
#include "hostresource.h"
#include "resource.h"
#include "vexafilelist.h"
#include "vexafileselectdlg.h"
#include "vexasensorobject.h"

#include <QLineEdit>
#include <QTest>

#include <filesystem>

namespace {

// A script for the file selection dialog run by SelectFile: select `name` in the list and press OK.
ScriptedPrompt::DialogScript Choose(const std::wstring& name) {
    return [name](CDialog_& base) {
        auto& dialog = static_cast<CVexaFileSelectDlg&>(base);
        CPXExplorerCtrl* list = dialog.List();
        for (int row = 0; row < list->GetItemCount(); ++row)
            if (list->GetItemText(row) == name)
                list->SelectItem(row, true);
        return QTest::qWaitFor([&dialog] { return dialog.SelectionUpdateCount() > 0; }, 3000) ? IDOK
                                                                                              : IDCANCEL;
    };
}

} // namespace

TEST_F(FileSelectTest, SelectFileReturnsTheChosenNameOrTheCancelValue) {
    StartInstrument();
    // Names with blanks, quotes and letters beyond ASCII come back as the instrument lists them.
    const std::wstring odd = L"Prüfung \"A\" 1.mth";
    std::filesystem::copy_file(InstrumentPath("Method/Default.mth"),
                               std::filesystem::path(InstrumentPath("Method/")) /
                                   std::filesystem::path(QString::fromStdWString(odd).toStdString()));
    m_prompt.QueueDialog(Choose(L"Default.mth"));
    EXPECT_EQ(m_instrument.sensor()->SelectFileForKind(1, Remote(L"/Method/"), 0, L"Open Method"),
              Remote(L"/Method/Default.mth"));
    m_prompt.QueueDialog(Choose(odd));
    EXPECT_EQ(m_instrument.sensor()->SelectFileForKind(1, Remote(L"/Method/"), 0), Remote(L"/Method/" + odd));
    ASSERT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Dialog).size(), 2u);
    EXPECT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Dialog)[0].templateId, IDD_VEXA_FILE_SELECT);
    EXPECT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Dialog)[0].text, L"Open Method");

    // The PC side: the kind's own workstation folder, made on first use.
    std::wstring pcFolder;
    m_instrument.sensor()->GetFolderInfo(2, &pcFolder, nullptr, nullptr, nullptr);
    std::filesystem::create_directories(QString::fromStdWString(pcFolder).toStdString());
    std::filesystem::copy_file(InstrumentPath("Tune/Default.tun"),
                               QString::fromStdWString(pcFolder).toStdString() + "/Local.tun");
    m_prompt.QueueDialog(Choose(L"Local.tun"));
    EXPECT_EQ(m_instrument.sensor()->SelectFileForKind(2, L"", 0), pcFolder + L"/Local.tun");

    // A full name typed on either side is taken as it stands.
    struct Typed {
        std::wstring start, typed, chosen;
    };
    for (const Typed& typed : {Typed{Remote(L"/Data/"), L"/Method/Site.xmth", Remote(L"/Method/Site.xmth")},
                               Typed{Remote(L"/Data/"), Remote(L"/Log/x.log"), Remote(L"/Log/x.log")},
                               Typed{PcFolder(), L"/tmp/elsewhere.mth", L"/tmp/elsewhere.mth"}}) {
        m_prompt.QueueDialog([&typed](CDialog_& dialog) {
            dialog.SetDlgItemText(IDC_SELECT_FILE_NAME, typed.typed);
            return IDOK;
        });
        EXPECT_EQ(m_instrument.sensor()->SelectFileForKind(1, typed.start, 0), typed.chosen);
    }

    for (uint32_t flags : {0x40u, 0x0u}) {
        m_prompt.QueueDialog([](CDialog_&) { return IDCANCEL; });
        EXPECT_EQ(m_instrument.sensor()->SelectFileForKind(1, L"", flags), flags ? L"Cancel" : L"");
    }
}

TEST_F(FileSelectTest, ABurstOfSelectionChangesUpdatesTheNameOnce) {
    StartInstrument();
    CVexaFileSelectDlg& dialog = OpenDialog(0x2, Remote(L"/Data/"));
    CPXExplorerCtrl* list = dialog.List();
    for (const wchar_t* name : {L"run1.vxs", L"run2.vxs", L"Run007.vxs"})
        list->SelectItem(RowOf(list, name), true);
    EXPECT_EQ(dialog.SelectionUpdateCount(), 0);
    ASSERT_TRUE(WaitFor([&] { return dialog.SelectionUpdateCount() > 0; }));
    QTest::qWait(3 * CVexaFileSelectDlg::kSelectionDelayMs);
    EXPECT_EQ(dialog.SelectionUpdateCount(), 1);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_SELECT_FILE_NAME), L"\"Run007.vxs\" \"run1.vxs\" \"run2.vxs\"");
    EXPECT_EQ(dialog.GetDlgItemText(IDC_SELECT_DESCRIPTION), L"") << "several files have no description";
    ASSERT_TRUE(dialog.PressButton(IDOK));
    const std::wstring folder = Remote(L"/Data/");
    EXPECT_EQ(dialog.GetPathName(),
              L"\"" + folder + L"Run007.vxs\" \"" + folder + L"run1.vxs\" \"" + folder + L"run2.vxs\"");

    // One file: its name and its description.
    CVexaFileSelectDlg& single = OpenDialog(0, Remote(L"/Data/"));
    single.List()->SelectItem(RowOf(single.List(), L"run1.vxs"), true);
    ASSERT_TRUE(WaitFor([&] { return single.SelectionUpdateCount() == 1; }));
    EXPECT_EQ(single.GetDlgItemText(IDC_SELECT_FILE_NAME), L"run1.vxs");
    EXPECT_NE(single.GetDlgItemText(IDC_SELECT_DESCRIPTION).find(L"VEXARON Data File"), std::wstring::npos);
    EXPECT_TRUE(single.GetDlgItem(IDOK)->isEnabled());
    single.SetDlgItemText(IDC_SELECT_FILE_NAME, L"");
    EXPECT_FALSE(single.GetDlgItem(IDOK)->isEnabled()) << "an empty name cannot be chosen";
}

TEST_F(FileSelectTest, SaveModeRefusesAnEmptyNameAndAsksBeforeReplacing) {
    StartInstrument();
    const std::wstring host = m_instrument.sim().host();
    CVexaFileSelectDlg& dialog = OpenDialog(0x1, Remote(L"/Method/"));
    for (const wchar_t* empty : {L"", L".mth"}) {
        dialog.SetDlgItemText(IDC_SELECT_FILE_NAME, empty);
        dialog.PressButton(IDOK);
        EXPECT_FALSE(dialog.HasEnded());
    }
    EXPECT_EQ(Messages(),
              (std::vector<std::wstring>{L"You must specify a filename.", L"You must specify a filename."}));

    dialog.SetDlgItemText(IDC_SELECT_FILE_NAME, L"Default.mth");
    m_prompt.QueueYesNo(IDNO);
    ASSERT_TRUE(dialog.PressButton(IDOK));
    EXPECT_FALSE(dialog.HasEnded()) << "No keeps the dialog open";
    const auto questions = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_EQ(questions[0].text,
              L"/Method/Default.mth on " + host + L" already exists. Do you want to replace it?");

    m_prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(dialog.PressButton(IDOK));
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_EQ(dialog.GetPathName(), Remote(L"/Method/Default.mth"));

    // A new name is taken without a question; a typed sub-folder is relative to the folder shown.
    CVexaFileSelectDlg& fresh = OpenDialog(0x1, PcFolder() + L"/");
    m_prompt.ClearAsked();
    fresh.SetDlgItemText(IDC_SELECT_FILE_NAME, L"Sub/new run.mth");
    ASSERT_TRUE(fresh.PressButton(IDOK));
    EXPECT_TRUE(fresh.HasEnded());
    EXPECT_EQ(fresh.GetPathName(), PcFolder() + L"/Sub/new run.mth");
    EXPECT_TRUE(m_prompt.Asked().empty());
}

TEST_F(FileSelectTest, FoldersAreEnteredLeftAndMade) {
    StartInstrument();
    CVexaFileSelectDlg& dialog = OpenDialog(0, Remote(L"/"));
    CPXExplorerCtrl* list = dialog.List();
    dialog.OpenEntry(RowOf(list, L"Tune"));
    EXPECT_EQ(dialog.CurrentFolder(), L"/Tune");
    EXPECT_EQ(Names(list), (std::vector<std::wstring>{L"Reports", L"Default.tun"}));
    ASSERT_TRUE(dialog.PressButton(IDC_SELECT_UP));
    EXPECT_EQ(dialog.CurrentFolder(), L"/");

    m_prompt.QueueDialog([](CDialog_& mkdir) {
        mkdir.SetDlgItemText(IDC_PX_MKDIR_NAME, L"Neue Läufe");
        return IDOK;
    });
    ASSERT_TRUE(dialog.PressButton(IDC_SELECT_NEW_FOLDER));
    EXPECT_TRUE(std::filesystem::is_directory(InstrumentPath("Neue Läufe")));
    EXPECT_GE(RowOf(list, L"Neue Läufe"), 0) << "the list is filled again";

    // The PC radio and back: each side keeps its folder.
    ASSERT_TRUE(dialog.PressButton(IDC_SELECT_PC));
    EXPECT_EQ(dialog.CheckedSide(), CVexaFileSelectDlg::kPcSide);
    EXPECT_EQ(dialog.CurrentFolder(), PcFolder());
    ASSERT_TRUE(dialog.PressButton(IDC_SELECT_INSTRUMENT));
    EXPECT_EQ(dialog.CurrentFolder(), L"/");

    // A double click on a file accepts it.
    dialog.OpenEntry(RowOf(list, L"hostname"));
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_EQ(dialog.GetPathName(), Remote(L"/hostname"));
}

TEST_F(FileSelectTest, LongInstrumentPathsRoundTrip) {
    StartInstrument();
    // Nested folders up to a 1,023-byte file path on the instrument.
    std::string path;
    while (path.size() + 1 + 50 < 1023 - 8)
        path += "/" + std::string(50, 'd');
    const std::string name = std::string(1023 - path.size() - 1, 'f');
    ASSERT_EQ(path.size() + 1 + name.size(), 1023u);
    std::filesystem::create_directories(InstrumentPath(path.substr(1)));
    m_instrument.tree().createFile(path.substr(1) + "/" + name, "x");
    const std::wstring folder = Wide(path);
    m_prompt.QueueDialog(Choose(Wide(name)));
    EXPECT_EQ(m_instrument.sensor()->SelectFileForKind(0, Remote(folder + L"/"), 0),
              Remote(folder + L"/" + Wide(name)));
}

TEST_F(FileSelectTest, AltHListsEveryInstrumentEntryOnlyWithLevelOne) {
    StartInstrument();
    for (const char* levels : {"0", "0,1"}) {
        SCOPED_TRACE(levels);
        SetAccess(levels);
        CVexaFileSelectDlg& dialog = OpenDialog(0, Remote(L"/"));
        CPXExplorerCtrl* list = dialog.List();
        ASSERT_LT(RowOf(list, L".config.level"), 0);
        list->setFocus();
        QTest::keyClick(list, Qt::Key_H, Qt::AltModifier);
        const bool granted = std::string(levels) == "0,1";
        EXPECT_EQ(dialog.Listing(CVexaFileSelectDlg::kInstrumentSide)->ShowHidden(), granted);
        EXPECT_EQ(RowOf(list, L".config.level") >= 0, granted);
        // It stays so for the rest of the dialog's life.
        dialog.OpenEntry(RowOf(list, L"Data"));
        dialog.UpOneFolder();
        EXPECT_EQ(RowOf(list, L".config.fp") >= 0, granted);
    }
}

TEST_F(FileSelectTest, AnInstrumentThatGoesAwayLeavesThePcSideUsable) {
    StartInstrument();
    m_temp.createFile("pc/local.vxs", "x");
    CVexaFileSelectDlg& dialog = OpenDialog(0, Remote(L"/Data/"));
    ASSERT_EQ(dialog.CheckedSide(), CVexaFileSelectDlg::kInstrumentSide);
    m_instrument.sim().stop();
    dialog.OpenEntry(-1); // nothing happens without a row
    ASSERT_TRUE(dialog.PressButton(IDC_SELECT_UP));
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Messages()[0].rfind(L"Unable to open remote folder " + Remote(L"/"), 0), 0u)
        << QString::fromStdWString(Messages()[0]).toStdString();
    EXPECT_NE(Messages()[0].find(L"Error 100"), std::wstring::npos);
    EXPECT_FALSE(dialog.HasEnded());
    EXPECT_EQ(dialog.CheckedSide(), CVexaFileSelectDlg::kPcSide);
    EXPECT_FALSE(dialog.GetDlgItem(IDC_SELECT_INSTRUMENT)->isEnabled());
    EXPECT_EQ(Names(dialog.List()), std::vector<std::wstring>{L"local.vxs"});
    dialog.OpenEntry(RowOf(dialog.List(), L"local.vxs"));
    EXPECT_EQ(dialog.GetPathName(), Wide(PcPath("local.vxs")));
}

// A drop while the instrument side is shown: the dialog says so, then reads the same folder again when
// the instrument is back.
TEST_F(FileSelectTest, AnInstrumentThatDropsComesBackInItsFolder) {
    m_instrument.start({"--fault", "outage=3000:2000"});
    ASSERT_TRUE(m_instrument.goOnline());
    CVexaFileSelectDlg& dialog = OpenDialog(0, Remote(L"/Method/"));
    ASSERT_EQ(dialog.CurrentFolder(), L"/Method");
    const std::vector<std::wstring> listed = Names(dialog.List());
    ASSERT_FALSE(listed.empty());
    ASSERT_TRUE(
        WaitFor([&] { return m_instrument.sim().log().find("outage:") != std::string::npos; }, 10000));
    m_instrument.sensor()->Disconnect(kWsaConnReset); // as the studio's poll does
    ASSERT_TRUE(WaitFor([&] { return dialog.IsInstrumentAway(); }));
    EXPECT_TRUE(Names(dialog.List()).empty());
    EXPECT_NE(dialog.GetDlgItemText(IDC_SELECT_DESCRIPTION).find(L"is not answering"), std::wstring::npos);
    EXPECT_FALSE(dialog.GetDlgItem(IDOK)->isEnabled());
    EXPECT_FALSE(dialog.GetDlgItem(IDC_SELECT_UP)->isEnabled());

    ASSERT_TRUE(
        WaitFor([&] { return m_instrument.sim().log().find("outage over") != std::string::npos; }, 10000));
    ASSERT_TRUE(m_instrument.sensor()->GoOnline()); // as the studio's reconnection does
    ASSERT_TRUE(WaitFor([&] { return !dialog.IsInstrumentAway(); }));
    EXPECT_EQ(dialog.CheckedSide(), CVexaFileSelectDlg::kInstrumentSide);
    EXPECT_EQ(dialog.CurrentFolder(), L"/Method");
    EXPECT_EQ(Names(dialog.List()), listed);
    EXPECT_TRUE(dialog.GetDlgItem(IDC_SELECT_UP)->isEnabled());
    EXPECT_TRUE(Messages().empty());
}

TEST_F(FileSelectTest, ManageFilesHandsBackItsChosenFile) {
    StartInstrument();
    CVexaFileSelectDlg& dialog = OpenDialog(0, Remote(L"/Data/"));
    // Manage Files opens with its instrument pane at "/"; a double click on a file there chooses it.
    m_prompt.QueueDialog([](CDialog_& manager) {
        auto* remote = qobject_cast<CPXExplorerCtrl*>(manager.GetDlgItem(IDC_FILEMGR_REMOTE_LIST));
        for (int row = 0; remote && row < remote->GetItemCount(); ++row)
            if (remote->GetItemText(row) == L"timezone")
                emit remote->itemDoubleClick(row, QPoint());
        return IDOK;
    });
    ASSERT_TRUE(dialog.PressButton(IDC_SELECT_MANAGE_FILES));
    ASSERT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Dialog).size(), 1u);
    EXPECT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Dialog)[0].text, L"Manage Files");
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_EQ(dialog.GetPathName(), Remote(L"/timezone"));

    // Closed without a file: both sides are read again and the dialog stays.
    CVexaFileSelectDlg& again = OpenDialog(0, Remote(L"/Data/"));
    m_instrument.tree().createFile("Data/run9.vxs", "x");
    m_prompt.QueueDialog([](CDialog_&) { return IDCANCEL; });
    ASSERT_TRUE(again.PressButton(IDC_SELECT_MANAGE_FILES));
    EXPECT_FALSE(again.HasEnded());
    EXPECT_GE(RowOf(again.List(), L"run9.vxs"), 0);
}
