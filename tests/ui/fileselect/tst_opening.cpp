// SPDX-License-Identifier: Apache-2.0
// Opening the file selection dialog: which side, which folder, which radios, what the list shows, and
// the start folders that cannot be read.
#include "fileselectfixture.h"

#include "drivebox.h"
#include "explorerctrl.h"
#include "resource.h"
#include "vexafilelist.h"
#include "vexafileselectdlg.h"
#include "vexasensorobject.h"

#include <QComboBox>
#include <QLineEdit>
#include <QRadioButton>

namespace {

bool Checked(CDialog_& dialog, int id) {
    return qobject_cast<QRadioButton*>(dialog.GetDlgItem(id))->isChecked();
}

} // namespace

TEST_F(FileSelectTest, TheStartNameChoosesTheSideFolderAndName) {
    StartInstrument();
    m_temp.createFile("pc/Sub/local.vxs", "x");
    struct Row {
        std::wstring start;
        int side;
        std::wstring folder;
        std::wstring name;
    };
    const Row rows[] = {
        {Remote(L"/Data/run1.vxs"), CVexaFileSelectDlg::kInstrumentSide, L"/Data", L"run1.vxs"},
        {Remote(L"/Method/"), CVexaFileSelectDlg::kInstrumentSide, L"/Method", L""},
        {Remote(L"/Gone/away.vxs"), CVexaFileSelectDlg::kInstrumentSide, L"/", L"away.vxs"}, // vanished
        {Wide(PcPath("Sub/local.vxs")), CVexaFileSelectDlg::kPcSide, Wide(PcPath("Sub")), L"local.vxs"},
        {Wide(PcPath("Sub")), CVexaFileSelectDlg::kPcSide, Wide(PcPath("Sub")), L""}, // a folder itself
        {L"", CVexaFileSelectDlg::kPcSide, PcFolder(), L""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(QString::fromStdWString(row.start).toStdString());
        CVexaFileSelectDlg& dialog = OpenDialog(0, row.start);
        ASSERT_FALSE(dialog.HasEnded());
        EXPECT_EQ(dialog.CheckedSide(), row.side);
        EXPECT_EQ(Checked(dialog, IDC_SELECT_INSTRUMENT), row.side == CVexaFileSelectDlg::kInstrumentSide);
        EXPECT_EQ(dialog.CurrentFolder(), row.folder);
        EXPECT_EQ(dialog.GetDlgItemText(IDC_SELECT_FOLDER), row.folder);
        EXPECT_EQ(dialog.GetDlgItemText(IDC_SELECT_FILE_NAME), row.name);
        EXPECT_EQ(dialog.GetDlgItem(IDOK)->isEnabled(), !row.name.empty());
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(FileSelectTest, FlagsChooseTheRadiosOnAndOffLine) {
    struct Row {
        bool online;
        uint32_t flags;
        bool instrumentChecked, pcEnabled, instrumentEnabled;
    };
    const Row rows[] = {
        {true, 0x10, false, true, false},  {true, 0x20, true, false, true},
        {true, 0x100, false, true, true},  {true, 0x0, true, true, true},
        {false, 0x20, false, true, false}, {false, 0x100, false, true, false},
        {false, 0x0, false, true, false},
    };
    for (bool online : {true, false}) {
        StartInstrument(online);
        const std::wstring start = Remote(L"/Method/Default.mth");
        for (const Row& row : rows) {
            if (row.online != online)
                continue;
            SCOPED_TRACE(testing::Message() << "online " << online << " flags " << row.flags);
            CVexaFileSelectDlg& dialog = OpenDialog(row.flags, start);
            ASSERT_FALSE(dialog.HasEnded());
            EXPECT_EQ(Checked(dialog, IDC_SELECT_INSTRUMENT), row.instrumentChecked);
            EXPECT_EQ(Checked(dialog, IDC_SELECT_PC), !row.instrumentChecked);
            EXPECT_EQ(dialog.GetDlgItem(IDC_SELECT_PC)->isEnabled(), row.pcEnabled);
            EXPECT_EQ(dialog.GetDlgItem(IDC_SELECT_INSTRUMENT)->isEnabled(), row.instrumentEnabled);
            // The drive box offers the instrument only where the radio does.
            auto* drives = qobject_cast<CPXDriveBox*>(dialog.GetDlgItem(IDC_SELECT_DRIVES));
            EXPECT_EQ(drives->HasInstrument(), row.instrumentEnabled);
            EXPECT_EQ(drives->IsInstrumentSelected(), row.instrumentChecked);
        }
        m_dialog.reset();
        m_instrument.dropSensor();
        m_instrument.stop();
    }
}

TEST_F(FileSelectTest, TheFilterAndTheTildeFlagDecideWhatIsListed) {
    StartInstrument();
    m_temp.createFile("pc/a.mth", "");
    m_temp.createFile("pc/b.xmth", std::string(1, 'x'));
    m_temp.createFile("pc/c.mth", std::string(1024, 'x'));
    m_temp.createFile("pc/d.MTH", std::string(1025, 'x'));
    m_temp.createFile("pc/~lock.mth", "x");
    m_temp.createFile("pc/notes.txt", "x");
    m_temp.createDir("pc/Sub");
    m_temp.createDir("pc/~Old");
    const std::wstring methods = L"Method Files (*.mth; *.xmth)|*.mth;*.xmth|All Files (*.*)|*.*|";
    struct Row {
        uint32_t flags;
        int filterIndex;
        std::vector<std::wstring> names;
    };
    const Row rows[] = {
        {0x0, 0, {L"Sub", L"a.mth", L"b.xmth", L"c.mth", L"d.MTH"}},
        {0x8, 0, {L"Sub", L"~Old", L"a.mth", L"b.xmth", L"c.mth", L"d.MTH", L"~lock.mth"}},
        {0x0, 1, {L"Sub", L"a.mth", L"b.xmth", L"c.mth", L"d.MTH", L"notes.txt"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "flags " << row.flags << " filter " << row.filterIndex);
        CVexaFileSelectDlg& dialog = OpenDialog(row.flags, PcFolder(), methods);
        auto* filter = qobject_cast<QComboBox*>(dialog.GetDlgItem(IDC_SELECT_FILTER));
        ASSERT_EQ(filter->count(), 2);
        EXPECT_EQ(filter->itemText(0), "Method Files (*.mth; *.xmth)");
        dialog.SelectFilter(row.filterIndex);
        EXPECT_EQ(Names(dialog.List()), row.names);
    }
    // Sizes in whole kilobytes, rounded up; folders show none.
    CPXExplorerCtrl* list = m_dialog->List();
    EXPECT_EQ(list->GetItemText(RowOf(list, L"a.mth"), CPXExplorerCtrl::kColumnSize), L"0 KB");
    EXPECT_EQ(list->GetItemText(RowOf(list, L"b.xmth"), CPXExplorerCtrl::kColumnSize), L"1 KB");
    EXPECT_EQ(list->GetItemText(RowOf(list, L"c.mth"), CPXExplorerCtrl::kColumnSize), L"1 KB");
    EXPECT_EQ(list->GetItemText(RowOf(list, L"d.MTH"), CPXExplorerCtrl::kColumnSize), L"2 KB");
    EXPECT_EQ(list->GetItemText(RowOf(list, L"Sub"), CPXExplorerCtrl::kColumnSize), L"");

    // Without a filter from the caller: all files, and the instrument side filters the same way.
    CVexaFileSelectDlg& dialog = OpenDialog(0, Remote(L"/Method/"), methods);
    EXPECT_EQ(Names(dialog.List()), (std::vector<std::wstring>{L"Default.mth", L"Site.xmth", L"Survey.mth"}));
    CVexaFileSelectDlg& all = OpenDialog(0, Remote(L"/Log/"));
    EXPECT_EQ(qobject_cast<QComboBox*>(all.GetDlgItem(IDC_SELECT_FILTER))->itemText(0), "All Files (*.*)");
    EXPECT_EQ(Names(all.List()), std::vector<std::wstring>{L"instrument.log"});
}

TEST_F(FileSelectTest, UnreadableStartFoldersCancelAfterAMessage) {
    StartInstrument();
    const std::wstring missing = Wide(PcPath("missing/x.mth"));
    EXPECT_EQ(m_instrument.sensor()->SelectFile(1, missing, 0x40, L"", L"", L""), L"Cancel");
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Messages()[0].rfind(L"Unable to open local folder " + Wide(PcPath("missing")), 0), 0u)
        << QString::fromStdWString(Messages()[0]).toStdString();
    EXPECT_NE(Messages()[0].find(L"Error 2"), std::wstring::npos);
    EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::Dialog).empty())
        << "the dialog never waited for the user";

    // An instrument whose listing fails even at "/" (it stopped answering).
    m_prompt.ClearAsked();
    m_instrument.sim().stop();
    EXPECT_EQ(m_instrument.sensor()->SelectFile(1, Remote(L"/Method/x.mth"), 0x40, L"", L"", L""), L"Cancel");
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_EQ(Messages()[0].rfind(L"Unable to open remote folder " + Remote(L"/Method"), 0), 0u)
        << QString::fromStdWString(Messages()[0]).toStdString();
    EXPECT_NE(Messages()[0].find(L"Error 100"), std::wstring::npos) << "a Winsock number and its meaning";
}

TEST_F(FileSelectTest, ReadOnlyNameAndMultipleSelection) {
    StartInstrument();
    CVexaFileSelectDlg& dialog = OpenDialog(0x4, Remote(L"/Data/"));
    EXPECT_TRUE(qobject_cast<QLineEdit*>(dialog.GetDlgItem(IDC_SELECT_FILE_NAME))->isReadOnly());
    EXPECT_TRUE(dialog.GetDlgItem(IDOK)->isEnabled());
    EXPECT_EQ(dialog.List()->selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_EQ(dialog.List()->property("ctrlId").toInt(), IDC_SELECT_LIST);
    EXPECT_EQ(dialog.GetDlgItem(IDC_SELECT_LIST), dialog.List());
    CVexaFileSelectDlg& multiple = OpenDialog(0x2, Remote(L"/Data/"));
    EXPECT_NE(multiple.List()->selectionMode(), QAbstractItemView::SingleSelection);
    EXPECT_FALSE(qobject_cast<QLineEdit*>(multiple.GetDlgItem(IDC_SELECT_FILE_NAME))->isReadOnly());
}
