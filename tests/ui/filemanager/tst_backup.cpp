// SPDX-License-Identifier: Apache-2.0
// Backup and Backup All from Manage Files against the simulator: the question, the entries packed, the
// progress window, and what each backup notification does (fetch, refresh only, close on off line).
#include "filemanagerfixture.h"

#include "backupdlg.h"
#include "dialoglauncher.h"
#include "explorerctrl.h"
#include "resource.h"
#include "sensornotifyevent.h"
#include "tgzcontents.h"
#include "vexadevice.h"
#include "vexafiledlg.h"
#include "vexasensorobject.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr const char* kArchive = "Backup/vexaron-0427_backup.tgz";

// Answers the save question with a fixed name (empty: cancelled) and records how it was asked.
class SaveAnswer : public IVexaDialogLauncher {
public:
    explicit SaveAnswer(std::wstring answer) : m_answer(std::move(answer)), m_previous(VexaDialogLauncher()) {
        SetVexaDialogLauncher(this);
    }
    ~SaveAnswer() override { SetVexaDialogLauncher(m_previous); }
    bool ManageFiles(VEXASensorObject&, const std::wstring&, int, uint32_t, std::wstring*) override {
        return false;
    }
    bool SelectFile(VEXASensorObject&, int, const std::wstring& start, uint32_t flags,
                    const std::wstring& title, const std::wstring& filter, const std::wstring& extension,
                    std::wstring* result) override {
        ++asked;
        this->start = start;
        this->flags = flags;
        this->title = title;
        this->filter = filter;
        this->extension = extension;
        *result = m_answer;
        return !m_answer.empty();
    }
    void ShowTuneReports(VEXASensorObject&, const std::wstring&) override {}

    int asked = 0;
    std::wstring start, title, filter, extension;
    uint32_t flags = 0;

private:
    std::wstring m_answer;
    IVexaDialogLauncher* m_previous;
};

} // namespace

class BackupFromManageFiles : public FileManagerTest {
protected:
    // The sensor's timer as the studio runs it: status and events, here every 100 ms.
    void StartSensorTimer() {
        m_timer.setInterval(100);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            if (m_polling || !m_instrument.sensor())
                return; // the poll pumps events: no second poll inside the first
            m_polling = true;
            m_instrument.sensor()->OnTimer(0);
            m_polling = false;
        });
        m_timer.start();
    }
    // Backup (or Backup All) answered Yes; returns once the progress window has ended. A window still
    // open after 30 s is ended and the case fails.
    void RunBackup(CVexaFileDlg& dialog, bool all) {
        m_prompt.QueueYesNo(IDYES);
        QTimer watchdog;
        watchdog.setSingleShot(true);
        QObject::connect(&watchdog, &QTimer::timeout, [&] {
            ADD_FAILURE() << "the backup window was not ended";
            dialog.BackupWindow()->EndDialog(IDCANCEL);
        });
        watchdog.start(30000);
        dialog.Backup(all);
        EXPECT_FALSE(dialog.BackupWindow()->isVisible());
    }
    std::map<std::string, std::string> InstrumentFiles() const {
        return FilesBelow(InstrumentPath(""), {"Backup"});
    }

    QTimer m_timer;
    bool m_polling = false;
};

TEST_F(BackupFromManageFiles, BackupAllAsksThenFetchesAnArchiveOfEveryInstrumentFile) {
    StartInstrument();
    StartSensorTimer();
    CVexaFileDlg& dialog = OpenDialog();
    SaveAnswer save(Wide(PcPath("site.tgz")));
    RunBackup(dialog, true);

    const auto questions = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(questions.size(), 1u);
    EXPECT_EQ(questions[0].text, L"Backups make take several minutes. Are you sure you want to do a backup?");
    ASSERT_EQ(save.asked, 1);
    EXPECT_EQ(save.title, L"Backup");
    EXPECT_EQ(save.filter, L"Compressed Files (*.tgz)|*.tgz|");
    EXPECT_EQ(save.extension, L"tgz");
    EXPECT_EQ(save.flags, 17u);
    EXPECT_EQ(save.start, m_instrument.sensor()->GetSensorDir(L"", false) + L"/" +
                              m_instrument.sensor()->GetName() + L".tgz");

    const TgzContents archive = ReadTgz(PcPath("site.tgz"));
    ASSERT_TRUE(archive.ok);
    EXPECT_EQ(archive.files, InstrumentFiles());
    EXPECT_EQ(Names(dialog.View(CVexaFileDlg::kLocalPane)), (std::vector<std::wstring>{L"..", L"site.tgz"}));
    EXPECT_FALSE(dialog.GetDlgItem(IDC_FILEMGR_BACKUP)->isEnabled());
}

TEST_F(BackupFromManageFiles, BackupPacksOnlyTheSelectedEntries) {
    StartInstrument();
    StartSensorTimer();
    CVexaFileDlg& dialog = OpenDialog();
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"Method", L"hostname"});
    SaveAnswer save(Wide(PcPath("some.tgz")));
    RunBackup(dialog, false);

    const TgzContents archive = ReadTgz(PcPath("some.tgz"));
    ASSERT_TRUE(archive.ok);
    std::map<std::string, std::string> expected;
    for (const auto& [name, content] : InstrumentFiles())
        if (name == "hostname" || name.starts_with("Method/"))
            expected[name] = content;
    EXPECT_EQ(archive.files, expected);
}

TEST_F(BackupFromManageFiles, ACancelledSaveLeavesTheArchiveOnTheInstrument) {
    StartInstrument();
    StartSensorTimer();
    CVexaFileDlg& dialog = OpenDialog();
    SaveAnswer save(L"");
    RunBackup(dialog, true);
    EXPECT_EQ(save.asked, 1);
    EXPECT_TRUE(ReadTgz(InstrumentPath(kArchive)).ok);
    EXPECT_TRUE(fs::is_empty(PcFolder()));
    ASSERT_TRUE(dialog.ShowRemoteFolder(L"/Backup"));
    EXPECT_GE(RowOf(dialog.View(CVexaFileDlg::kRemotePane), L"vexaron-0427_backup.tgz"), 0);
}

TEST_F(BackupFromManageFiles, NoStartsNothingAndAnAbortedBackupFetchesNothing) {
    StartInstrument({"--fault", "backup-abort"});
    StartSensorTimer();
    CVexaFileDlg& dialog = OpenDialog();
    SaveAnswer save(Wide(PcPath("never.tgz")));
    m_prompt.QueueYesNo(IDNO);
    dialog.Backup(true); // a started backup would use up the one abort the instrument has
    EXPECT_FALSE(dialog.BackupWindow()->isVisible());
    RunBackup(dialog, true);
    EXPECT_EQ(save.asked, 0);
    EXPECT_FALSE(FileExists(InstrumentPath(kArchive)));
    EXPECT_TRUE(fs::is_empty(PcFolder()));
}

TEST_F(BackupFromManageFiles, ANotificationOutsideItsOwnBackupOnlyRefreshes) {
    StartInstrument();
    CVexaFileDlg& dialog = OpenDialog();
    SaveAnswer save(L"");
    const struct {
        uint32_t code;
        const wchar_t* text;
        int asked;
    } cases[] = {{kSensorEventBackup, L"backup.tgz", 0},
                 {kSensorEventBackup, L"aborted", 0},
                 {0, L"x_backup.tgz", 0},
                 {kSensorEventBackup, L"x_backup.tgz", 0}}; // no backup of this dialog runs
    for (const auto& c : cases) {
        m_temp.createFile("pc/appeared.txt", "x");
        CSensorNotifyEvent event(CSensorNotifyEvent::kDefaultType, ISensorEvent{c.code, c.text, L""});
        QApplication::sendEvent(&dialog, &event);
        EXPECT_EQ(save.asked, c.asked) << c.code;
        // Every code from 1 refreshes the panes.
        EXPECT_EQ(RowOf(dialog.View(CVexaFileDlg::kLocalPane), L"appeared.txt") >= 0, c.code >= 1) << c.code;
        fs::remove(PcPath("appeared.txt"));
        QApplication::sendEvent(&dialog, &event); // the next case starts from a refreshed pane
        save.asked = 0;
    }
}

TEST_F(BackupFromManageFiles, AnInstrumentLostMidBackupClosesTheWindowAndFetchesNothing) {
    StartInstrument({"--fault", "backup-hang"});
    StartSensorTimer();
    CVexaFileDlg& dialog = OpenDialog();
    SaveAnswer save(Wide(PcPath("never.tgz")));
    bool shownWhileHanging = false;
    QTimer::singleShot(1500, [&] {
        shownWhileHanging = dialog.BackupWindow()->isVisible();
        m_instrument.sim().stop();
    });
    RunBackup(dialog, true);
    EXPECT_TRUE(shownWhileHanging);
    EXPECT_FALSE(dialog.IsInstrumentOnline());
    EXPECT_EQ(save.asked, 0);
    EXPECT_TRUE(fs::is_empty(PcFolder()));
}

// Not a check: with VEXA_SCREENSHOT set, saves the screen while a slow backup of the demo tree runs.
TEST_F(BackupFromManageFiles, Screenshot) {
    const char* target = std::getenv("VEXA_SCREENSHOT");
    if (!target || !*target)
        GTEST_SKIP() << "VEXA_SCREENSHOT names no file";
    StartInstrument({"--fault", "backup-slow=400"});
    StartSensorTimer();
    CVexaFileDlg& dialog = OpenDialog();
    dialog.move(0, 0);
    SaveAnswer save(L"");
    QTimer::singleShot(4000, [&] {
        CBackupDlg* progress = dialog.BackupWindow();
        progress->move(dialog.geometry().center() - progress->rect().center());
        QTest::qWait(600);
        EXPECT_TRUE(QGuiApplication::primaryScreen()->grabWindow(0).save(QString::fromLocal8Bit(target)));
    });
    RunBackup(dialog, true);
}

// The instrument's notifications are one queue for every client: the dialog's backup acts on its own
// outcome only, not on what a refused start or another client's finished backup left queued, and
// never fetches the archive that was there before.
TEST_F(BackupFromManageFiles, TakesOnlyItsOwnBackupsOutcome) {
    const std::string archive = InstrumentPath(kArchive);
    m_instrument.tree().createFile(kArchive, "an old archive");
    fs::last_write_time(archive, fs::file_time_type::clock::now() - std::chrono::hours(24 * 400));
    StartInstrument({"--fault", "backup-slow=300"});
    CVexaFileDlg& dialog = OpenDialog();
    VexaDevice device(m_instrument.sensor()->GetDevice(L"VEXA"));
    EXPECT_FALSE(device.runBackup(L"/Data/none.vxs"));
    ASSERT_TRUE(device.runBackup(L"/Data"));
    ASSERT_TRUE(WaitFor([&] { return ReadTgz(archive).files.count("Data/run1.vxs") > 0; }, 20000));

    StartSensorTimer();
    Select(dialog.View(CVexaFileDlg::kRemotePane), {L"Method"});
    dialog.UpdateButtons(CVexaFileDlg::kRemotePane, true);
    SaveAnswer save(Wide(PcPath("mine.tgz")));
    RunBackup(dialog, false);
    EXPECT_EQ(save.asked, 1);
    const TgzContents mine = ReadTgz(PcPath("mine.tgz"));
    ASSERT_TRUE(mine.ok);
    std::map<std::string, std::string> expected;
    for (const auto& [name, content] : InstrumentFiles())
        if (name.starts_with("Method/"))
            expected[name] = content;
    EXPECT_EQ(mine.files, expected);
}
