// The overwrite question and the new-folder dialog, answered the way a user would.
#include "fileinfo.h"
#include "mkdirdlg.h"
#include "modalguard.h"
#include "overwritedlg.h"
#include "scriptedprompt.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>
#include <QtTest>

namespace {

FileInfo MakeFile(const wchar_t* name, int32_t size, int64_t microseconds) {
    FileInfo entry;
    entry.name = name;
    entry.size = size;
    entry.times[2] = microseconds;
    return entry;
}

// Presses a button of the overwrite dialog once its modal run is under way.
void PressInActiveOverwriteDialog(int button, bool escape) {
    QTimer::singleShot(0, [button, escape] {
        auto* dialog = qobject_cast<COverwriteDlg*>(QApplication::activeModalWidget());
        QVERIFY(dialog);
        const auto guard = EndWhenLeft(*dialog);
        if (escape)
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            QVERIFY(dialog->PressButton(button));
    });
}

} // namespace

class QuestionsTest : public QObject {
    Q_OBJECT
private slots:
    void overwriteAnswersFollowTheButtons_data();
    void overwriteAnswersFollowTheButtons();
    void overwriteShowsNameAndBothFiles();
    void overwriteThroughAScriptedPrompt();
    void mkdirRefusesBadNames_data();
    void mkdirRefusesBadNames();
};

void QuestionsTest::overwriteAnswersFollowTheButtons_data() {
    QTest::addColumn<int>("button");
    QTest::addColumn<bool>("escape");
    QTest::addColumn<int>("answer");
    QTest::newRow("Yes") << IDYES << false << int(COverwriteDlg::kYes);
    QTest::newRow("No") << IDNO << false << int(COverwriteDlg::kNo);
    QTest::newRow("Cancel") << IDCANCEL << false << int(COverwriteDlg::kCancel);
    QTest::newRow("Yes to all") << IDC_PX_OVERWRITE_YES_ALL << false << int(COverwriteDlg::kYesToAll);
    QTest::newRow("No to all") << IDC_PX_OVERWRITE_NO_ALL << false << int(COverwriteDlg::kNoToAll);
    QTest::newRow("Escape") << 0 << true << int(COverwriteDlg::kCancel);
}

void QuestionsTest::overwriteAnswersFollowTheButtons() {
    QFETCH(int, button);
    QFETCH(bool, escape);
    QFETCH(int, answer);
    PressInActiveOverwriteDialog(button, escape);
    QCOMPARE(COverwriteDlg::PromptUser(L"run1.vxs", L"two files"), answer);
}

void QuestionsTest::overwriteShowsNameAndBothFiles() {
    const FileInfo existing = MakeFile(L"run1.vxs", 1234, 1'700'000'000'000'000);
    const FileInfo replacement = MakeFile(L"run1.vxs", 98765, 1'710'000'000'000'000);
    const std::wstring description = COverwriteDlg::DescribeFiles(existing, replacement);
    const QString text = QString::fromStdWString(description);
    QVERIFY2(text.contains(QStringLiteral("1,234 bytes")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("98,765 bytes")), qPrintable(text));
    QVERIFY2(text.contains(QStringLiteral("modified 2023-11-1")), qPrintable(text)); // 14 or 15, by time zone

    COverwriteDlg dialog(L"run1.vxs", description);
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        QVERIFY(dialog.GetDlgItemText(IDC_PX_OVERWRITE_QUESTION).find(L"\"run1.vxs\"") != std::wstring::npos);
        QCOMPARE(dialog.GetDlgItemText(IDC_PX_OVERWRITE_DESCRIPTION), description);
        QVERIFY(dialog.GetDlgItem(IDC_PX_OVERWRITE_DESCRIPTION)->isVisible());
        dialog.PressButton(IDNO);
    });
    QCOMPARE(dialog.Ask(), int(COverwriteDlg::kNo));
}

void QuestionsTest::overwriteThroughAScriptedPrompt() {
    ScriptedPrompt prompt;
    prompt.QueueOverwrite(COverwriteDlg::kYesToAll);
    const FileInfo a = MakeFile(L"a.txt", 1, 0);
    QCOMPARE(COverwriteDlg::PromptUser(L"a.txt", a, a), int(COverwriteDlg::kYesToAll));
    // An unexpected question cancels rather than overwrites.
    QCOMPARE(COverwriteDlg::PromptUser(L"b.txt", L""), int(COverwriteDlg::kCancel));
    const auto asked = prompt.Asked(ScriptedPrompt::Kind::Overwrite);
    QCOMPARE(asked.size(), size_t(2));
    QCOMPARE(asked[0].text, std::wstring(L"a.txt"));
    QCOMPARE(asked[1].text, std::wstring(L"b.txt"));
}

void QuestionsTest::mkdirRefusesBadNames_data() {
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("accepted");
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << "" << false << "";
    QTest::newRow("blanks") << "   " << false << "";
    QTest::newRow("dot") << "." << false << "";
    QTest::newRow("dot dot") << ".." << false << "";
    QTest::newRow("dot dot padded") << " .. " << false << "";
    QTest::newRow("slash") << "a/b" << false << "";
    QTest::newRow("backslash") << "a\\b" << false << "";
    QTest::newRow("control character") << "a\tb" << false << "";
    QTest::newRow("plain") << "Data" << true << "Data";
    QTest::newRow("blanks trimmed") << "  New Folder " << true << "New Folder";
    QTest::newRow("dots inside") << "..a.b" << true << "..a.b";
    QTest::newRow("unicode") << QString::fromUtf8("Méthodes") << true << QString::fromUtf8("Méthodes");
}

void QuestionsTest::mkdirRefusesBadNames() {
    QFETCH(QString, typed);
    QFETCH(bool, accepted);
    QFETCH(QString, name);
    QCOMPARE(CMkdirDlg::IsValidFolderName(typed.toStdWString()), accepted);

    CMkdirDlg dialog;
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        auto* edit = qobject_cast<QLineEdit*>(dialog.GetDlgItem(IDC_PX_MKDIR_NAME));
        QVERIFY(edit);
        QVERIFY(!dialog.GetDlgItem(IDOK)->isEnabled()); // nothing typed yet
        edit->setText(typed);
        QCOMPARE(dialog.GetDlgItem(IDOK)->isEnabled(), accepted);
        const bool explained = !dialog.GetDlgItemText(IDC_PX_MKDIR_HINT).empty();
        QCOMPARE(explained, !accepted && !typed.trimmed().isEmpty());
        // Enter must not get past a refused name either.
        QTest::keyClick(edit, Qt::Key_Return);
        if (!accepted) {
            QVERIFY(dialog.isVisible());
            dialog.PressButton(IDCANCEL);
        }
    });
    QCOMPARE(dialog.DoModal(), accepted ? IDOK : IDCANCEL);
    if (accepted)
        QCOMPARE(QString::fromStdWString(dialog.GetName()), name);
}

QTEST_MAIN(QuestionsTest)
#include "tst_questions.moc"
