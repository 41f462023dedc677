// SPDX-License-Identifier: Apache-2.0
// The dialog's commands: delete questions, what the menu offers, the text editor, open, replay, copies
// through the real worker (with a cancel midway) and the sensor's ManageFiles entry point.
#include "filemanagerfixture.h"

#include "edittextdialog.h"
#include "explorerctrl.h"
#include "filecopydlg.h"
#include "mkdirdlg.h"
#include "overwritedlg.h"
#include "renamedlg.h"
#include "resource.h"
#include "text.h"
#include "vexadevice.h"
#include "vexadialoglauncher.h"
#include "vexafiledlg.h"
#include "vexasensorobject.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QMenu>
#include <QPlainTextEdit>
#include <QSlider>
#include <QTest>
#include <QTimer>

#include <atomic>
#include <filesystem>
#include <unistd.h>

namespace {

// Presses Cancel in the copy progress window once the worker has copied something.
class CancelWhenCopying : public QObject {
public:
    CancelWhenCopying() {
        m_timer.setInterval(2);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            auto* progress = qobject_cast<CFileCopyDlg*>(QApplication::activeModalWidget());
            if (!progress || progress->Progress().Take().totalBytes == 0 || pressed)
                return;
            pressed = progress->PressButton(IDCANCEL);
        });
        m_timer.start();
    }
    std::atomic<bool> pressed{false};

private:
    QTimer m_timer;
};

} // namespace

TEST_F(FileManagerTest, DeletingAFolderAndTwoFilesAsksFolderThenFiles) {
    m_temp.createFile("pc/old/inside.txt", "x");
    m_temp.createFile("pc/one.txt", "1");
    m_temp.createFile("pc/two.txt", "2");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    Select(dialog.View(CVexaFileDlg::kLocalPane), {L"old", L"one.txt", L"two.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    m_prompt.QueueYesNo(IDYES);
    m_prompt.QueueYesNo(IDYES);
    ASSERT_TRUE(dialog.PressButton(IDC_FILEMGR_DELETE));

    const auto questions = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(questions.size(), 2u);
    EXPECT_EQ(questions[0].text, L"Are you sure you want to delete \"old\" on the PC?\r\n\r\n");
    EXPECT_EQ(questions[1].text,
              L"Are you sure you want to delete the 2 files you selected on the PC?\r\n\r\n");
    EXPECT_FALSE(FileExists(PcPath("old")));
    EXPECT_FALSE(FileExists(PcPath("one.txt")));
    EXPECT_FALSE(FileExists(PcPath("two.txt")));
    EXPECT_EQ(Names(dialog.View(CVexaFileDlg::kLocalPane)), std::vector<std::wstring>{L".."});
}

TEST_F(FileManagerTest, DeleteOnTheInstrumentNamesItAndNoKeepsEverything) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Method"));
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"Default.mth", L"Survey.mth"});
    dialog.UpdateButtons(CVexaFileDlg::kRemotePane, true);
    m_prompt.QueueYesNo(IDNO);
    dialog.DeleteInPane(CVexaFileDlg::kRemotePane);
    const auto questions = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_EQ(questions[0].text,
              L"Are you sure you want to delete the 2 files you selected on the VEXARON?\r\n\r\n");
    EXPECT_TRUE(FileExists(InstrumentPath("Method/Default.mth")));
    EXPECT_TRUE(FileExists(InstrumentPath("Method/Survey.mth")));
}

// What the instrument pane's menu offers: text files edit, .vxs files replay, folders neither.
TEST_F(FileManagerTest, MenuOffersTextEditorOrReplayByFileKind) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    const std::vector<int> plain{ID_FILEMGR_OPEN, ID_FILEMGR_RENAME, ID_FILEMGR_DELETE};
    struct Case {
        const wchar_t* folder;
        const wchar_t* name;
        int extra; // 0: none
    };
    for (const Case& c :
         {Case{L"/", L"hosts", ID_FILEMGR_TEXT_EDITOR}, Case{L"/", L"timezone", ID_FILEMGR_TEXT_EDITOR},
          Case{L"/", L"Data", 0}, Case{L"/Data", L"run1.vxs", ID_FILEMGR_REPLAY},
          Case{L"/Data", L"Survey001.vxz", 0}, Case{L"/Method", L"Site.xmth", ID_FILEMGR_TEXT_EDITOR},
          Case{L"/Method", L"Default.mth", 0}}) {
        ASSERT_TRUE(dialog.ShowRemoteFolder(c.folder));
        const int row = RowOf(instrument, c.name);
        ASSERT_GE(row, 0) << QString::fromWCharArray(c.name).toStdString();
        std::vector<int> expected = plain;
        if (c.extra != 0)
            expected.push_back(c.extra);
        auto menu = dialog.BuildContextMenu(CVexaFileDlg::kRemotePane, row);
        EXPECT_EQ(MenuCommands(*menu), expected) << QString::fromWCharArray(c.name).toStdString();
        EXPECT_EQ(menu->defaultAction()->data().toInt(), ID_FILEMGR_OPEN);
    }
    // The PC pane never offers them.
    m_temp.createFile("pc/hosts", "x");
    dialog.RefreshLocalPane();
    auto pcMenu = dialog.BuildContextMenu(CVexaFileDlg::kLocalPane,
                                          RowOf(dialog.View(CVexaFileDlg::kLocalPane), L"hosts"));
    EXPECT_EQ(MenuCommands(*pcMenu), plain);
}

TEST_F(FileManagerTest, TextEditorWritesOnlyAChangedTextAfterYes) {
    StartInstrument();
    const std::string original = ReadWholeFile(InstrumentPath("hosts"));
    ASSERT_NE(original.find('\n'), std::string::npos);
    CVexaFileDlg& dialog = OpenDialog();
    const int row = RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"hosts");
    ASSERT_GE(row, 0);

    // OK without typing: nothing asked, nothing written.
    std::wstring shown;
    m_prompt.QueueDialog([&](CDialog_& editor) {
        shown = editor.GetDlgItemText(IDC_EDIT_TEXT);
        return IDOK;
    });
    dialog.RunMenuCommand(CVexaFileDlg::kRemotePane, row, ID_FILEMGR_TEXT_EDITOR);
    EXPECT_NE(shown.find(L"\r\n"), std::wstring::npos);
    EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::YesNo).empty());
    EXPECT_EQ(ReadWholeFile(InstrumentPath("hosts")), original);

    // Typed, OK, then No: still nothing written.
    auto typeLine = [](CDialog_& editor) {
        auto* edit = qobject_cast<QPlainTextEdit*>(editor.GetDlgItem(IDC_EDIT_TEXT));
        edit->moveCursor(QTextCursor::End);
        QTest::keyClicks(edit, "10.0.0.9 spare");
        QTest::keyClick(edit, Qt::Key_Return);
        return IDOK;
    };
    m_prompt.QueueDialog(typeLine);
    m_prompt.QueueYesNo(IDNO);
    dialog.RunMenuCommand(CVexaFileDlg::kRemotePane, row, ID_FILEMGR_TEXT_EDITOR);
    const auto asked = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(asked.size(), 1u);
    EXPECT_EQ(asked[0].text, L"Do you wish to overwrite\n\n@" + m_instrument.sim().host() + L":/hosts");
    EXPECT_EQ(ReadWholeFile(InstrumentPath("hosts")), original);

    // Typed, OK, Yes: written back with line feeds only.
    m_prompt.QueueDialog(typeLine);
    m_prompt.QueueYesNo(IDYES);
    dialog.RunMenuCommand(CVexaFileDlg::kRemotePane, row, ID_FILEMGR_TEXT_EDITOR);
    const std::string written = ReadWholeFile(InstrumentPath("hosts"));
    EXPECT_EQ(written, original + "10.0.0.9 spare\n");
    EXPECT_EQ(written.find('\r'), std::string::npos);
}

TEST_F(FileManagerTest, RenameNewFolderAndInPlaceEscape) {
    m_temp.createFile("pc/before.txt", "b");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* pc = dialog.View(CVexaFileDlg::kLocalPane);
    Select(pc, {L"before.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    m_prompt.QueueDialog([](CDialog_& rename) {
        rename.SetDlgItemText(IDC_RENAME_NEW_NAME, L"after.txt");
        return IDOK;
    });
    ASSERT_TRUE(dialog.PressButton(IDC_FILEMGR_RENAME));
    EXPECT_TRUE(FileExists(PcPath("after.txt")));
    EXPECT_FALSE(FileExists(PcPath("before.txt")));
    EXPECT_NE(RowOf(pc, L"after.txt"), -1);

    m_prompt.QueueDialog([](CDialog_& mkdir) {
        mkdir.SetDlgItemText(IDC_PX_MKDIR_NAME, L"Fresh");
        return IDOK;
    });
    ASSERT_TRUE(dialog.PressButton(IDC_FILEMGR_REMOTE_NEW_FOLDER));
    EXPECT_TRUE(std::filesystem::is_directory(InstrumentPath("Fresh")));
    EXPECT_NE(RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"Fresh"), -1);

    // In place: Escape changes nothing.
    const int row = RowOf(pc, L"after.txt");
    ASSERT_TRUE(pc->EditLabel(row));
    auto* editor = pc->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("escaped.txt"));
    QTest::keyClick(editor, Qt::Key_Escape);
    QApplication::processEvents();
    EXPECT_FALSE(pc->IsEditingLabel());
    EXPECT_TRUE(FileExists(PcPath("after.txt")));
    EXPECT_FALSE(FileExists(PcPath("escaped.txt")));

    // In place with Enter: renamed, and the pane shows it once the editor has closed.
    ASSERT_TRUE(pc->EditLabel(RowOf(pc, L"after.txt")));
    editor = nullptr; // the first editor may still wait for its deletion
    for (QLineEdit* open : pc->findChildren<QLineEdit*>())
        if (open->isVisible())
            editor = open;
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("in place.txt"));
    QTest::keyClick(editor, Qt::Key_Return);
    ASSERT_TRUE(WaitFor([&] { return RowOf(pc, L"in place.txt") != -1; }));
    EXPECT_TRUE(FileExists(PcPath("in place.txt")));
    EXPECT_EQ(RowOf(pc, L"after.txt"), -1);
}

TEST_F(FileManagerTest, OpeningAFileEndsWithItsFullName) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    CPXExplorerCtrl* instrument = dialog.View(CVexaFileDlg::kRemotePane);
    dialog.OpenEntry(CVexaFileDlg::kRemotePane, RowOf(instrument, L"Method"));
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REMOTE_PATH), L"/Method");
    dialog.OpenEntry(CVexaFileDlg::kRemotePane, RowOf(instrument, L"Default.mth"));
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_EQ(dialog.result(), IDOK);
    EXPECT_EQ(dialog.GetSelectedFile(), L"@" + m_instrument.sim().host() + L":/Method/Default.mth");
}

TEST_F(FileManagerTest, ReplayClosesTheDialogAndRunsTheFileAtTheChosenSpeed) {
    const std::string profile = m_temp.createFile("profile.json", R"({"methodSeconds": 60})");
    StartInstrument({"--profile", profile});
    CVexaFileDlg& dialog = OpenDialog();
    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Data"));
    dialog.findChild<QSlider*>()->setValue(15);
    EXPECT_EQ(dialog.GetDlgItemText(IDC_FILEMGR_REPLAY_SPEED_LABEL), L"Replay Speed: 15");
    dialog.RunMenuCommand(CVexaFileDlg::kRemotePane,
                          RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"run1.vxs"), ID_FILEMGR_REPLAY);
    EXPECT_TRUE(dialog.HasEnded());
    EXPECT_EQ(dialog.result(), IDCANCEL);
    m_instrument.sensor()->OnTimer(0);
    EXPECT_EQ(VexaDevice(m_instrument.sensor()->GetDevice(L"VEXA")).getActiveProcess(),
              L"\"/Data/run1.vxs\" -speed=15");
}

TEST_F(FileManagerTest, CopiesBothWaysThroughTheWorker) {
    m_temp.createFile("pc/notes.txt", "notes from the PC");
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    Select(dialog.View(CVexaFileDlg::kLocalPane), {L"notes.txt"});
    dialog.UpdateButtons(CVexaFileDlg::kLocalPane, true);
    ASSERT_TRUE(dialog.PressButton(IDC_FILEMGR_COPY_TO_REMOTE));
    EXPECT_EQ(ReadWholeFile(InstrumentPath("notes.txt")), "notes from the PC");

    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Data"));
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"run1.vxs", L"Survey001.vxz"});
    dialog.UpdateButtons(CVexaFileDlg::kRemotePane, true);
    ASSERT_TRUE(dialog.PressButton(IDC_FILEMGR_COPY_TO_LOCAL));
    EXPECT_EQ(ReadWholeFile(PcPath("run1.vxs")), ReadWholeFile(InstrumentPath("Data/run1.vxs")));
    EXPECT_EQ(ReadWholeFile(PcPath("Survey001.vxz")), ReadWholeFile(InstrumentPath("Data/Survey001.vxz")));
    EXPECT_NE(RowOf(dialog.View(CVexaFileDlg::kLocalPane), L"run1.vxs"), -1);

    // An existing name asks; Cancel abandons before anything is written.
    m_temp.createFile("pc/run1.vxs", "older");
    dialog.RefreshLocalPane();
    m_prompt.QueueOverwrite(COverwriteDlg::kCancel);
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"run1.vxs", L"run2.vxs"});
    dialog.CopyToLocal();
    ASSERT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Overwrite).size(), 1u);
    EXPECT_EQ(ReadWholeFile(PcPath("run1.vxs")), "older");
    EXPECT_FALSE(FileExists(PcPath("run2.vxs")));
    // The question showed both files for the user to compare.
    const OverwriteSubject asked = m_prompt.Asked(ScriptedPrompt::Kind::Overwrite)[0].overwrite;
    EXPECT_EQ(asked.name, L"run1.vxs");
    EXPECT_FALSE(asked.folder);
    ASSERT_TRUE(asked.existing && asked.replacement);
    EXPECT_EQ(asked.existing->size, 5);
    EXPECT_EQ(size_t(asked.replacement->size), ReadWholeFile(InstrumentPath("Data/run1.vxs")).size());
    EXPECT_NE(asked.description.find(FromUtf8(PcPath("run1.vxs"))), std::wstring::npos);

    // A folder that exists is asked about as a folder to copy into.
    m_instrument.tree().createDir("Data/batch");
    m_instrument.tree().createFile("Data/batch/a.txt", "new");
    m_temp.createFile("pc/batch/a.txt", "old");
    dialog.RefreshLocalPane();
    dialog.RefreshRemotePane();
    m_prompt.ClearAsked();
    m_prompt.QueueOverwrite(COverwriteDlg::kYes);
    m_prompt.QueueOverwrite(COverwriteDlg::kNo);
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"batch"});
    dialog.CopyToLocal();
    const auto folderAsked = m_prompt.Asked(ScriptedPrompt::Kind::Overwrite);
    ASSERT_EQ(folderAsked.size(), 2u);
    EXPECT_TRUE(folderAsked[0].overwrite.folder);
    EXPECT_EQ(folderAsked[0].text, L"batch");
    EXPECT_NE(folderAsked[0].caption.find(L"copied into"), std::wstring::npos);
    EXPECT_FALSE(folderAsked[1].overwrite.folder);
    EXPECT_EQ(folderAsked[1].text, L"a.txt");
    EXPECT_EQ(ReadWholeFile(PcPath("batch/a.txt")), "old");
}

TEST_F(FileManagerTest, CancelMidwayFromTheInstrumentKeepsTheOldFile) {
    m_instrument.tree().createFile("big.log", std::string(600 * 1024, 'n'));
    m_temp.createFile("pc/big.log", "old contents");
    StartInstrument({"--no-compress", "--fault", "trickle=0"});
    CVexaFileDlg& dialog = OpenDialog();
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"big.log"});
    m_prompt.QueueOverwrite(COverwriteDlg::kYes);
    CancelWhenCopying cancel;
    dialog.CopyToLocal();
    EXPECT_TRUE(cancel.pressed);
    EXPECT_EQ(ReadWholeFile(PcPath("big.log")), "old contents");
    EXPECT_FALSE(FileExists(PcPath("___temp@@big.log")));
}

// A large sparse file on the PC: the worker is still sending it when the cancel lands.
TEST_F(FileManagerTest, CancelMidwayToTheInstrumentKeepsTheOldFile) {
    StartInstrument();
    const std::string original = ReadWholeFile(InstrumentPath("hosts"));
    ASSERT_EQ(::truncate(m_temp.createFile("pc/hosts").c_str(), 128 << 20), 0);
    CVexaFileDlg& dialog = OpenDialog();
    Select(dialog.View(CVexaFileDlg::kLocalPane), {L"hosts"});
    m_prompt.QueueOverwrite(COverwriteDlg::kYes);
    CancelWhenCopying cancel;
    dialog.CopyToRemote();
    EXPECT_TRUE(cancel.pressed);
    EXPECT_EQ(m_prompt.Asked(ScriptedPrompt::Kind::Overwrite).size(), 1u);
    EXPECT_EQ(ReadWholeFile(InstrumentPath("hosts")), original);
    EXPECT_FALSE(FileExists(InstrumentPath("___temp@@hosts")));
    EXPECT_EQ(RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"___temp@@hosts"), -1);
}

// The instrument drops the link in the middle of the file: the copy stops, the progress window closes
// and nothing half-copied is left on the PC.
TEST_F(FileManagerTest, InstrumentDroppingDuringACopyEndsItCleanly) {
    m_instrument.tree().createFile("big.log", std::string(600 * 1024, 'n'));
    StartInstrument({"--no-compress", "--fault", "drop-after-frames=6"});
    CVexaFileDlg& dialog = OpenDialog();
    ASSERT_NE(RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"big.log"), -1);
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"big.log"});
    dialog.CopyToLocal();
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
    EXPECT_FALSE(FileExists(PcPath("big.log")));
    EXPECT_FALSE(FileExists(PcPath("___temp@@big.log")));
    EXPECT_EQ(RowOf(dialog.View(CVexaFileDlg::kLocalPane), L"big.log"), -1);
    EXPECT_EQ(RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"big.log"), -1);
}

TEST_F(FileManagerTest, SensorManageFilesOpensTheDialog) {
    StartInstrument();
    CVexaDialogLauncher launcher;
    IVexaDialogLauncher* previous = VexaDialogLauncher();
    SetVexaDialogLauncher(&launcher);
    struct Case {
        std::wstring argument;
        uint32_t flags;
        std::wstring title;
    };
    for (const Case& c : {Case{L"", 0, L"Manage Files"}, Case{L"Files of VEXA-1", 5, L"Files of VEXA-1"}}) {
        std::wstring title;
        uint32_t flags = 0;
        int objects = -1;
        m_prompt.QueueDialog([&](CDialog_& dialog) {
            auto& files = static_cast<CVexaFileDlg&>(dialog);
            title = files.windowTitle().toStdWString();
            flags = files.Flags();
            objects = files.View(CVexaFileDlg::kRemotePane)->GetItemCount();
            return IDOK;
        });
        EXPECT_EQ(m_instrument.sensor()->ManageFiles(c.argument, 0, c.flags), L"");
        EXPECT_EQ(title, c.title);
        EXPECT_EQ(flags, c.flags);
        EXPECT_GT(objects, 0);
    }
    SetVexaDialogLauncher(previous);
    const auto dialogs = m_prompt.Asked(ScriptedPrompt::Kind::Dialog);
    ASSERT_EQ(dialogs.size(), 2u);
    EXPECT_EQ(dialogs[0].templateId, IDD_VEXA_FILE);
    EXPECT_EQ(dialogs[0].answer, IDOK);
}
