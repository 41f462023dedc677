// SPDX-License-Identifier: Apache-2.0
// The dialog base: data exchange both ways, the modal run and its ends, controls by identifier,
// scripted prompts and texts by string identifier.
#include "dialog.h"
#include "modalguard.h"
#include "pxresource.h"
#include "scriptedprompt.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>

namespace {

enum : int { kName = 100, kCount = 101, kLabel = 102, kNotes = 103, kChoice = 104, kExtra = 105 };
constexpr int kProbeTemplate = 4242;

// A dialog put together by hand, each control tagged as a template would tag it.
class ProbeDialog : public CDialog_ {
public:
    explicit ProbeDialog(int endInInit = 0) : CDialog_(kProbeTemplate), m_endInInit(endInInit) {
        auto* layout = new QVBoxLayout(this);
        const auto add = [layout](QWidget* control, int id) {
            control->setProperty("ctrlId", id);
            layout->addWidget(control);
        };
        add(new QLineEdit, kName);
        add(new QLineEdit, kCount);
        add(new QLabel, kLabel);
        add(new QPlainTextEdit, kNotes);
        auto* combo = new QComboBox;
        combo->addItems({QStringLiteral("one"), QStringLiteral("two")});
        add(combo, kChoice);
        add(new QPushButton(QStringLiteral("OK")), IDOK);
        add(new QPushButton(QStringLiteral("Cancel")), IDCANCEL);
        add(new QPushButton(QStringLiteral("Extra")), kExtra);
        ConnectControls();
    }

    std::wstring name, label, notes, choice = L"one";
    int count = 0;
    int initCalls = 0;
    int shows = 0;

protected:
    void DoDataExchange(CDataExchange& dx) override {
        DDX_Text(dx, kName, name);
        DDX_Text(dx, kCount, count);
        DDX_Text(dx, kLabel, label);
        DDX_Text(dx, kNotes, notes);
        DDX_Text(dx, kChoice, choice);
    }
    bool OnInitDialog() override {
        ++initCalls;
        CDialog_::OnInitDialog();
        if (m_endInInit)
            EndDialog(m_endInInit);
        return true;
    }
    void showEvent(QShowEvent* event) override {
        ++shows;
        CDialog_::showEvent(event);
    }

private:
    int m_endInInit;
};

template <class W> W* Control(CDialog_& dialog, int id) {
    return qobject_cast<W*>(dialog.GetDlgItem(id));
}

} // namespace

class DialogBaseTest : public QObject {
    Q_OBJECT
private slots:
    void dataExchangeMovesValuesBothWays();
    void invalidIntegerFailsTheExchange();
    void modalRunEnds_data();
    void modalRunEnds();
    void endDialogDuringInitSkipsTheModalRun();
    void endDialogDuringInitOfAShownDialogClosesIt();
    void controlsByIdentifier();
    void scriptedPromptAnswersQuestionsAndDialogs();
    void textsByStringIdentifier();
};

void DialogBaseTest::dataExchangeMovesValuesBothWays() {
    ProbeDialog dialog;
    dialog.name = L"abc";
    dialog.count = 42;
    dialog.label = L"a label";
    dialog.notes = L"line 1\r\nline 2";
    dialog.choice = L"two";
    QVERIFY(dialog.UpdateData(false));
    QCOMPARE(Control<QLineEdit>(dialog, kName)->text(), QStringLiteral("abc"));
    QCOMPARE(Control<QLineEdit>(dialog, kCount)->text(), QStringLiteral("42"));
    QCOMPARE(Control<QLabel>(dialog, kLabel)->text(), QStringLiteral("a label"));
    // The edit shows plain line feeds and reads back the edit control's "\r\n".
    QCOMPARE(Control<QPlainTextEdit>(dialog, kNotes)->toPlainText(), QStringLiteral("line 1\nline 2"));
    QCOMPARE(Control<QComboBox>(dialog, kChoice)->currentText(), QStringLiteral("two"));

    Control<QLineEdit>(dialog, kName)->setText(QStringLiteral("xyz"));
    Control<QLineEdit>(dialog, kCount)->setText(QStringLiteral(" -7 "));
    Control<QPlainTextEdit>(dialog, kNotes)->setPlainText(QStringLiteral("a\nb\n"));
    Control<QComboBox>(dialog, kChoice)->setCurrentIndex(0);
    QVERIFY(dialog.UpdateData(true));
    QCOMPARE(dialog.name, std::wstring(L"xyz"));
    QCOMPARE(dialog.count, -7);
    QCOMPARE(dialog.notes, std::wstring(L"a\r\nb\r\n"));
    QCOMPARE(dialog.choice, std::wstring(L"one"));
}

void DialogBaseTest::invalidIntegerFailsTheExchange() {
    ScriptedPrompt prompt;
    ProbeDialog dialog;
    dialog.count = 5;
    dialog.UpdateData(false);
    Control<QLineEdit>(dialog, kCount)->setText(QStringLiteral("12x"));
    QVERIFY(!dialog.UpdateData(true));
    QCOMPARE(dialog.count, 5);
    QCOMPARE(prompt.Asked(ScriptedPrompt::Kind::Message).size(), size_t(1));
}

void DialogBaseTest::modalRunEnds_data() {
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("namesSaved");
    QTest::newRow("OK button") << "ok" << IDOK << true;
    QTest::newRow("Enter") << "enter" << IDOK << true;
    QTest::newRow("Cancel button") << "cancel" << IDCANCEL << false;
    QTest::newRow("Escape") << "escape" << IDCANCEL << false;
    QTest::newRow("close box") << "close" << IDCANCEL << false;
    QTest::newRow("EndDialog") << "end" << 77 << false;
}

void DialogBaseTest::modalRunEnds() {
    QFETCH(QString, action);
    QFETCH(int, expected);
    QFETCH(bool, namesSaved);
    ProbeDialog dialog;
    dialog.name = L"before";
    QTimer::singleShot(0, &dialog, [&] {
        const auto guard = EndWhenLeft(dialog);
        Control<QLineEdit>(dialog, kName)->setText(QStringLiteral("after"));
        if (action == "ok")
            dialog.PressButton(IDOK);
        else if (action == "enter")
            QTest::keyClick(Control<QLineEdit>(dialog, kName), Qt::Key_Return);
        else if (action == "cancel")
            dialog.PressButton(IDCANCEL);
        else if (action == "escape")
            QTest::keyClick(&dialog, Qt::Key_Escape);
        else if (action == "close")
            dialog.close();
        else
            dialog.EndDialog(77);
    });
    QCOMPARE(dialog.DoModal(), expected);
    QCOMPARE(dialog.initCalls, 1);
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.name, std::wstring(namesSaved ? L"after" : L"before"));

    // A second run starts afresh: initialised again, the controls refilled from the members.
    QTimer::singleShot(0, &dialog, [&] { dialog.PressButton(IDCANCEL); });
    QCOMPARE(dialog.DoModal(), IDCANCEL);
    QCOMPARE(dialog.initCalls, 2);
}

void DialogBaseTest::endDialogDuringInitSkipsTheModalRun() {
    ProbeDialog dialog(IDCANCEL);
    QCOMPARE(dialog.DoModal(), IDCANCEL);
    QCOMPARE(dialog.shows, 0);
    QVERIFY(dialog.HasEnded());
}

void DialogBaseTest::endDialogDuringInitOfAShownDialogClosesIt() {
    ProbeDialog dialog(IDABORT);
    QSignalSpy finished(&dialog, &QDialog::finished);
    dialog.open();
    QCOMPARE(dialog.initCalls, 1);
    QVERIFY(finished.wait(5000));
    QCOMPARE(finished.front().front().toInt(), IDABORT);
    QVERIFY(!dialog.isVisible());
}

void DialogBaseTest::controlsByIdentifier() {
    ProbeDialog dialog;
    QVERIFY(dialog.GetDlgItem(kName));
    QVERIFY(!dialog.GetDlgItem(9999));
    QVERIFY(!dialog.SetDlgItemText(9999, L"x"));
    QCOMPARE(dialog.GetDlgItemText(9999), std::wstring());

    QVERIFY(dialog.SetDlgItemText(kLabel, L"text"));
    QCOMPARE(dialog.GetDlgItemText(kLabel), std::wstring(L"text"));
    QVERIFY(dialog.SetDlgItemText(IDOK, L"Done"));
    QCOMPARE(dialog.GetDlgItemText(IDOK), std::wstring(L"Done"));
    // A drop-down list only takes one of its own entries.
    QVERIFY(!dialog.SetDlgItemText(kChoice, L"three"));

    QSignalSpy command(&dialog, &CDialog_::command);
    QVERIFY(dialog.PressButton(kExtra));
    QCOMPARE(command.size(), 1);
    QCOMPARE(command.front().front().toInt(), int(kExtra));
    dialog.EnableControl(kExtra, false);
    QVERIFY(!dialog.PressButton(kExtra));
    QCOMPARE(command.size(), 1);
    QVERIFY(!dialog.PressButton(kLabel));

    dialog.show();
    dialog.ShowControl(kLabel, false);
    QVERIFY(!dialog.GetDlgItem(kLabel)->isVisible());
    dialog.ShowControl(kLabel, true);
    QVERIFY(dialog.GetDlgItem(kLabel)->isVisible());
    dialog.hide();
}

void DialogBaseTest::scriptedPromptAnswersQuestionsAndDialogs() {
    IPrompt* before = &Prompt();
    {
        ScriptedPrompt prompt;
        QCOMPARE(&Prompt(), static_cast<IPrompt*>(&prompt));
        prompt.QueueYesNo(IDYES);
        QCOMPARE(Prompt().AskYesNo(L"Delete?", L"Files", nullptr), IDYES);
        QCOMPARE(Prompt().AskYesNo(L"Again?", L"", nullptr), IDNO); // nothing queued: the safe answer

        ProbeDialog dialog;
        prompt.QueueDialog([](CDialog_& d) {
            d.SetDlgItemText(kName, L"scripted");
            return IDOK;
        });
        QCOMPARE(dialog.DoModal(), IDOK);
        QCOMPARE(dialog.name, std::wstring(L"scripted"));
        QVERIFY(!dialog.isVisible());

        // A script that presses a disabled button does not end the dialog.
        prompt.QueueDialog([](CDialog_& d) {
            d.EnableControl(IDOK, false);
            return IDOK;
        });
        QCOMPARE(dialog.DoModal(), -1);
        dialog.EnableControl(IDOK, true);

        // Unscripted dialogs never block: they end as cancelled and are recorded.
        QCOMPARE(dialog.DoModal(), IDCANCEL);

        const auto asked = prompt.Asked();
        QCOMPARE(asked.size(), size_t(5));
        QCOMPARE(asked[0].text, std::wstring(L"Delete?"));
        QCOMPARE(asked[0].caption, std::wstring(L"Files"));
        const auto dialogs = prompt.Asked(ScriptedPrompt::Kind::Dialog);
        QCOMPARE(dialogs.size(), size_t(3));
        QCOMPARE(dialogs[0].templateId, kProbeTemplate);
        QCOMPARE(dialogs[2].answer, IDCANCEL);
    }
    QCOMPARE(&Prompt(), before);
}

void DialogBaseTest::textsByStringIdentifier() {
    static const PXStringEntry table[] = {
        {900001, L"Delete \"%1!s!\" on the %2!s!?"},
        {900002, L"%1!d! Object(s)"},
    };
    static const int module = 0;
    PXRegisterStringTable(&module, table, 2);
    QCOMPARE(CDialog_::LoadString(900002), std::wstring(L"%1!d! Object(s)"));
    QCOMPARE(CDialog_::FormatString(900001, L"run1.vxs", L"PC"),
             std::wstring(L"Delete \"run1.vxs\" on the PC?"));
    QCOMPARE(CDialog_::FormatString(900002, 12), std::wstring(L"12 Object(s)"));
    QCOMPARE(CDialog_::LoadQString(900003), QString());
    PXUnregisterStringTable(&module);
}

QTEST_MAIN(DialogBaseTest)
#include "tst_dialogbase.moc"
