// SPDX-License-Identifier: Apache-2.0
// The module's rename and text editor dialogs, driven as the file manager and its user drive them.
#include "edittextdialog.h"
#include "modalguard.h"
#include "renamedlg.h"
#include "resource.h"

#include <QFontInfo>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTimer>
#include <QtTest>

class ModuleDialogsTest : public QObject {
    Q_OBJECT
private slots:
    void renameStartsWithTheOldName_data();
    void renameStartsWithTheOldName();
    void textEditorModifiedFlag_data();
    void textEditorModifiedFlag();
    void textEditorUsesFixedPitchFont();
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

QTEST_MAIN(ModuleDialogsTest)
#include "tst_moduledialogs.moc"
