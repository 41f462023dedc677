// The module's rename and text editor dialogs, driven as the file manager and its user drive them.
// With VEXA_SCREENSHOT_DIR set, `screenshots` also saves a picture of every dialog of this library.
#include "edittextdialog.h"
#include "filecopydlg.h"
#include "fileinfo.h"
#include "mkdirdlg.h"
#include "modalguard.h"
#include "overwritedlg.h"
#include "renamedlg.h"
#include "resource.h"

#include <QDir>
#include <QFontInfo>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTimer>
#include <QtTest>

#include <thread>

class ModuleDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void renameStartsWithTheOldName_data();
    void renameStartsWithTheOldName();
    void textEditorModifiedFlag_data();
    void textEditorModifiedFlag();
    void textEditorUsesFixedPitchFont();
    void screenshots();
};

void ModuleDialogsTest::renameStartsWithTheOldName_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<int>("button");
    QTest::addColumn<QString>("newName");
    QTest::newRow("OK unchanged") << "" << IDOK << "run1.vxs";
    QTest::newRow("typing appends at the caret") << "x" << IDOK << "run1.vxsx";
    QTest::newRow("Cancel") << "x" << IDCANCEL << "";
}

void ModuleDialogsTest::renameStartsWithTheOldName() {
    QFETCH(QString, typed);
    QFETCH(int, button);
    QFETCH(QString, newName);
    CRenameDlg dialog;
    dialog.SetOldName(L"run1.vxs");
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        QCOMPARE(dialog.GetDlgItemText(IDC_RENAME_OLD_NAME), std::wstring(L"run1.vxs"));
        auto* edit = qobject_cast<QLineEdit*>(dialog.GetDlgItem(IDC_RENAME_NEW_NAME));
        QVERIFY(edit);
        QCOMPARE(edit->text(), QStringLiteral("run1.vxs"));
        QVERIFY(!edit->hasSelectedText());
        QCOMPARE(edit->cursorPosition(), 8);
        QTest::keyClicks(edit, typed);
        dialog.PressButton(button);
    });
    QCOMPARE(dialog.DoModal(), button);
    if (button == IDOK)
        QCOMPARE(QString::fromStdWString(dialog.GetNewName()), newName);
    QCOMPARE(dialog.GetOldName(), std::wstring(L"run1.vxs"));
}

void ModuleDialogsTest::textEditorModifiedFlag_data() {
    QTest::addColumn<QString>("edit");
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("modified");
    QTest::addColumn<QString>("text");
    const QString original = QStringLiteral("127.0.0.1 localhost\r\n10.0.0.5 vexaron\r\n");
    QTest::newRow("OK without typing") << "none" << IDOK << false << original;
    QTest::newRow("typing then restoring") << "restore" << IDOK << true << original;
    QTest::newRow("typing then undoing") << "undo" << IDOK << true << original;
    QTest::newRow("typing a line") << "line" << IDOK << true
                                   << QStringLiteral("10.0.0.9 spare\r\n") + original;
    QTest::newRow("Cancel after typing") << "line" << IDCANCEL << false << original;
}

void ModuleDialogsTest::textEditorModifiedFlag() {
    QFETCH(QString, edit);
    QFETCH(int, button);
    QFETCH(bool, modified);
    QFETCH(QString, text);
    CEditTextDialog dialog;
    dialog.SetText(L"127.0.0.1 localhost\r\n10.0.0.5 vexaron\r\n");
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        auto* box = qobject_cast<QPlainTextEdit*>(dialog.GetDlgItem(IDC_EDIT_TEXT));
        QVERIFY(box);
        QCOMPARE(box->toPlainText(), QStringLiteral("127.0.0.1 localhost\n10.0.0.5 vexaron\n"));
        box->moveCursor(QTextCursor::Start);
        if (edit == "restore") {
            QTest::keyClick(box, Qt::Key_X);
            QTest::keyClick(box, Qt::Key_Backspace);
        } else if (edit == "undo") {
            QTest::keyClick(box, Qt::Key_X);
            QTest::keyClick(box, Qt::Key_Z, Qt::ControlModifier);
        } else if (edit == "line") {
            QTest::keyClicks(box, QStringLiteral("10.0.0.9 spare"));
            QTest::keyClick(box, Qt::Key_Return);
        }
        dialog.PressButton(button);
    });
    QCOMPARE(dialog.DoModal(), button);
    QCOMPARE(dialog.IsModified(), modified);
    QCOMPARE(QString::fromStdWString(dialog.GetText()), text);
}

void ModuleDialogsTest::textEditorUsesFixedPitchFont() {
    CEditTextDialog dialog;
    dialog.SetText(L"abc");
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        const QFont font = dialog.GetDlgItem(IDC_EDIT_TEXT)->font();
        QCOMPARE(font.family(), QStringLiteral("Courier New"));
        QCOMPARE(font.pointSize(), 10);
        // Whatever family stands in, its characters are all one width.
        const QFontMetrics metrics(font);
        QVERIFY2(metrics.horizontalAdvance(QLatin1Char('i')) == metrics.horizontalAdvance(QLatin1Char('W')),
                 qPrintable(QFontInfo(font).family()));
        dialog.PressButton(IDCANCEL);
    });
    QCOMPARE(dialog.DoModal(), IDCANCEL);
}

void ModuleDialogsTest::screenshots() {
    const QString folder = qEnvironmentVariable("VEXA_SCREENSHOT_DIR");
    if (folder.isEmpty())
        QSKIP("set VEXA_SCREENSHOT_DIR to save pictures of the dialogs");
    QDir().mkpath(folder);
    const auto shoot = [&](CDialog_& dialog, const QString& name, std::function<void()> prepare = {}) {
        QTimer::singleShot(0, &dialog, [&dialog, &folder, name, prepare] {
            if (prepare)
                prepare();
            QTest::qWait(200);
            QVERIFY(dialog.grab().save(folder + QLatin1Char('/') + name + QStringLiteral(".png")));
            dialog.EndDialog(IDCANCEL);
        });
        dialog.DoModal();
    };

    CRenameDlg rename;
    rename.SetOldName(L"Calibration_2024-03-18_run07.vxs");
    shoot(rename, QStringLiteral("rename"));

    CEditTextDialog editor;
    editor.SetText(
        L"127.0.0.1\tlocalhost\r\n10.0.0.5\tvexaron vexaron.lab\r\n# spare unit\r\n10.0.0.9\tspare\r\n");
    shoot(editor, QStringLiteral("edittext"));

    FileInfo existing;
    existing.name = L"run1.vxs";
    existing.size = 1'234'567;
    existing.times[2] = 1'700'000'000'000'000;
    FileInfo replacement = existing;
    replacement.size = 2'345'678;
    replacement.times[2] = 1'710'000'000'000'000;
    COverwriteDlg overwrite(L"run1.vxs", COverwriteDlg::DescribeFiles(existing, replacement));
    shoot(overwrite, QStringLiteral("overwrite"));

    CMkdirDlg mkdir;
    shoot(mkdir, QStringLiteral("mkdir"), [&mkdir] { mkdir.SetDlgItemText(IDC_PX_MKDIR_NAME, L"a/b"); });

    CFileCopyDlg copy;
    std::atomic<bool> saved{false};
    QTimer::singleShot(1500, &copy, [&] {
        QVERIFY(copy.grab().save(folder + QStringLiteral("/filecopy.png")));
        saved = true;
    });
    copy.Run([&](ICopyProgress& progress) {
        progress.SetTotal(40'000'000, 12);
        progress.SetCurrentFile(L"@10.0.0.5:/Data/Survey/2024-03-18/Calibration_run07_with_a_long_name.vxs");
        progress.SetFileSize(8'000'000);
        for (int i = 0; i < 100 && !saved; ++i) {
            progress.AddBytes(200'000);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return 1;
    });
    QVERIFY(saved);
}

QTEST_MAIN(ModuleDialogsTest)
#include "tst_moduledialogs.moc"
