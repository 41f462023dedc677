// SPDX-License-Identifier: Apache-2.0
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
    void overwriteShowsWhatTheUserDecidesOn_data();
    void overwriteShowsWhatTheUserDecidesOn();
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

void QuestionsTest::overwriteShowsWhatTheUserDecidesOn_data() {
    QTest::addColumn<bool>("folder");
    QTest::addColumn<bool>("known");
    QTest::addColumn<int>("newer"); // -1 existing, 1 replacement, 0 neither
    QTest::newRow("file, replacement newer") << false << true << 1;
    QTest::newRow("file, existing newer") << false << true << -1;
    QTest::newRow("file, same time") << false << true << 0;
    QTest::newRow("file, name only") << false << false << 0;
    QTest::newRow("folder") << true << true << 1;
}

void QuestionsTest::overwriteShowsWhatTheUserDecidesOn() {
    QFETCH(bool, folder);
    QFETCH(bool, known);
    QFETCH(int, newer);
    const int64_t older = 1'700'000'000'000'000, later = 1'710'000'000'000'000;
    OverwriteSubject subject;
    subject.name = L"run1.vxs";
    subject.description = L"It would replace /Data/run1.vxs.";
    subject.folder = folder;
    if (known) {
        subject.existing = MakeFile(L"run1.vxs", 1234, newer < 0 ? later : older);
        subject.replacement = MakeFile(L"run1.vxs", 98765, newer > 0 ? later : older);
        if (folder)
            subject.existing->attrib = subject.replacement->attrib = kFileAttrFolder;
    }

    COverwriteDlg dialog(subject);
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        const QString question = QString::fromStdWString(dialog.GetDlgItemText(IDC_PX_OVERWRITE_QUESTION));
        QVERIFY2(question.contains(folder ? QStringLiteral("folder \"run1.vxs\"")
                                          : QStringLiteral("file \"run1.vxs\"")),
                 qPrintable(question));
        QCOMPARE(dialog.GetDlgItemText(IDC_PX_OVERWRITE_DESCRIPTION), subject.description);
        QCOMPARE(dialog.GetDlgItem(IDC_PX_OVERWRITE_COMPARISON)->isVisible(), known);
        if (!known) {
            dialog.PressButton(IDNO);
            return;
        }
        const QString existing = QString::fromStdWString(dialog.GetDlgItemText(IDC_PX_OVERWRITE_EXISTING));
        const QString replacement =
            QString::fromStdWString(dialog.GetDlgItemText(IDC_PX_OVERWRITE_REPLACEMENT));
        QVERIFY2(existing.contains(folder ? QStringLiteral("Folder") : QStringLiteral("1,234 bytes")),
                 qPrintable(existing));
        QVERIFY2(replacement.contains(folder ? QStringLiteral("Folder") : QStringLiteral("98,765 bytes")),
                 qPrintable(replacement));
        // 14 or 15 November 2023, or 9 or 10 March 2024, by time zone.
        QVERIFY2(existing.contains(newer < 0 ? QStringLiteral("modified 2024-03-")
                                             : QStringLiteral("modified 2023-11-1")),
                 qPrintable(existing));
        QCOMPARE(existing.contains(QStringLiteral("(newer)")), newer < 0);
        QCOMPARE(replacement.contains(QStringLiteral("(newer)")), newer > 0);
        QCOMPARE(dialog.GetDlgItem(IDC_PX_OVERWRITE_EXISTING)->font().bold(), newer < 0);
        QCOMPARE(dialog.GetDlgItem(IDC_PX_OVERWRITE_REPLACEMENT)->font().bold(), newer > 0);
        dialog.PressButton(IDNO);
    });
    QCOMPARE(dialog.Ask(), int(COverwriteDlg::kNo));
}

void QuestionsTest::overwriteThroughAScriptedPrompt() {
    ScriptedPrompt prompt;
    prompt.QueueOverwrite(COverwriteDlg::kYesToAll);
    OverwriteSubject subject;
    subject.name = L"a.txt";
    subject.existing = subject.replacement = MakeFile(L"a.txt", 1, 0);
    QCOMPARE(COverwriteDlg::PromptUser(subject), int(COverwriteDlg::kYesToAll));
    // An unexpected question cancels rather than overwrites.
    QCOMPARE(COverwriteDlg::PromptUser(L"b.txt", L""), int(COverwriteDlg::kCancel));
    const auto asked = prompt.Asked(ScriptedPrompt::Kind::Overwrite);
    QCOMPARE(asked.size(), size_t(2));
    QCOMPARE(asked[0].text, std::wstring(L"a.txt"));
    QVERIFY(asked[0].overwrite.existing && asked[0].overwrite.replacement);
    QCOMPARE(asked[1].text, std::wstring(L"b.txt"));
    QVERIFY(!asked[1].overwrite.existing);
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
