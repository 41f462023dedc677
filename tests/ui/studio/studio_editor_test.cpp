// SPDX-License-Identifier: Apache-2.0
// The instrument editor with the loaded sensor type's address check: what it refuses and why, and
// what the window keeps of the operator's entries.
#include "studiofixture.h"

#include "hostresource.h"
#include "instrumenteditordialog.h"
#include "instrumentstore.h"
#include "managedinstrument.h"
#include "scriptedprompt.h"
#include "sensormanager.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <cstdlib>

namespace {
struct EditorCase {
    const char* name;
    std::string address;
    const char* refusal; // empty: accepted
};
} // namespace

TEST_F(StudioTest, EditorRefusesMalformedEntriesWithAClearMessage) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    window.Sensors().Add({"Lab unit", "127.0.0.9", "VEXA"}, true);

    const EditorCase cases[] = {
        {"Field unit", "127.0.0.10", ""},
        {"Field unit", "vexa-field-1.example", ""},
        {"Field unit", "", "Enter the instrument's address"},
        {"Field unit", "bad host", "\"bad host\" is not a valid instrument address"},
        {"Field unit", "host:4840", "is not a valid instrument address"},
        {"Field unit", "@instrument", "is not a valid instrument address"},
        {"Field unit", "a/b", "is not a valid instrument address"},
        {"Field unit", std::string(254, 'h'), "is not a valid instrument address"},
        {"Field unit", "127.0.0.9", "The instrument \"Lab unit\" already has the address 127.0.0.9"},
        {"", "127.0.0.10", "Enter a name"},
        {"lab UNIT", "127.0.0.10", "An instrument named \"lab UNIT\" already exists"},
        {"data/one", "127.0.0.10", "cannot be used"},
    };
    for (const EditorCase& c : cases) {
        SCOPED_TRACE(c.name + std::string(" @ ") + c.address);
        InstrumentEditorDialog dialog({{"VEXA", "VEXARON"}}, [&](const InstrumentConfig& config) {
            return window.Sensors().Validate(config);
        });
        dialog.SetConfig({"", "", "VEXA"});
        dialog.open();
        dialog.NameEdit()->setText(c.name);
        dialog.AddressEdit()->setText(QString::fromStdString(c.address));
        dialog.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok)->click();
        if (*c.refusal == '\0') {
            EXPECT_EQ(dialog.result(), QDialog::Accepted) << dialog.ErrorText().toStdString();
            EXPECT_TRUE(dialog.ErrorText().isEmpty());
            EXPECT_EQ(dialog.Config().address.toStdString(), c.address);
        } else {
            EXPECT_TRUE(dialog.isVisible()) << "the dialog stays open";
            EXPECT_NE(dialog.result(), QDialog::Accepted);
            EXPECT_TRUE(dialog.ErrorText().contains(c.refusal)) << dialog.ErrorText().toStdString();
            dialog.reject();
        }
    }
}

namespace {
// Fills the editor the window is about to run, then presses OK (a refused entry is corrected once).
void AnswerEditor(const QString& name, const QString& address, QStringList* refusals) {
    QTimer::singleShot(0, [=] {
        auto* dialog = qobject_cast<InstrumentEditorDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        QPushButton* ok = dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        dialog->NameEdit()->setText(name);
        dialog->AddressEdit()->setText("not an address");
        ok->click();
        *refusals << dialog->ErrorText();
        dialog->AddressEdit()->setText(address);
        ok->click();
    });
}
} // namespace

TEST_F(StudioTest, InstrumentsAddedAndEditedInTheWindowAreSavedWithTheGeometry) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    QStringList refusals;
    AnswerEditor("Lab unit", "127.0.0.11", &refusals);
    window.AddInstrument();
    ASSERT_EQ(window.Sensors().Count(), 1);
    EXPECT_EQ(refusals.size(), 1);
    EXPECT_TRUE(refusals.value(0).contains("\"not an address\" is not a valid instrument address"));
    EXPECT_EQ(window.SelectedRow(), 0);

    AnswerEditor("Lab unit 2", "127.0.0.12", &refusals);
    window.EditInstrument();
    QList<InstrumentConfig> saved = InstrumentStore(m_registry).Load();
    ASSERT_EQ(saved.size(), 1);
    EXPECT_EQ(saved[0], (InstrumentConfig{"Lab unit 2", "127.0.0.12", "VEXA"}));

    window.resize(900, 640);
    window.close();
    m_window.reset();
    StudioWindow& again = StartStudio(BuiltPluginDir());
    EXPECT_EQ(again.size(), QSize(900, 640));
    ASSERT_EQ(again.Sensors().Count(), 1);
    EXPECT_EQ(again.Sensors().At(0)->Config().name, "Lab unit 2");
}

// The PC folder of an instrument follows its name: a rename moves the files, into a folder that is
// already there only after Yes, and never over what that folder holds.
TEST_F(StudioTest, RenamingAnInstrumentMovesItsFolder) {
    ::setenv("VEXA_DATA_ROOT", m_temp.file("data").c_str(), 1);
    ScriptedPrompt prompt;
    StudioWindow& window = StartStudio(BuiltPluginDir());
    QStringList refusals;
    AnswerEditor("Lab unit", "127.0.0.11", &refusals);
    window.AddInstrument();
    m_temp.createFile("data/Lab unit/Backup/site.tgz", "archive");
    m_temp.createFile("data/Lab unit/Method/a.mth", "lab a");

    AnswerEditor("Field unit", "127.0.0.11", &refusals);
    window.EditInstrument();
    EXPECT_EQ(ReadWholeFile(m_temp.file("data/Field unit/Backup/site.tgz")), "archive");
    EXPECT_FALSE(QFileInfo::exists(SensorManager::SensorFolder("Lab unit")));
    EXPECT_TRUE(LogText().contains("Moved the files of Lab unit")) << LogText().toStdString();
    EXPECT_TRUE(prompt.Asked().empty());

    m_temp.createFile("data/Site unit/Method/a.mth", "site a");
    for (const int answer : {IDNO, IDYES}) {
        prompt.QueueYesNo(answer);
        AnswerEditor("Site unit", "127.0.0.11", &refusals);
        window.EditInstrument();
        EXPECT_EQ(window.Sensors().At(0)->Config().name, answer == IDYES ? "Site unit" : "Field unit");
    }
    EXPECT_EQ(prompt.Asked(ScriptedPrompt::Kind::YesNo).size(), 2u);
    EXPECT_EQ(ReadWholeFile(m_temp.file("data/Site unit/Backup/site.tgz")), "archive");
    EXPECT_EQ(ReadWholeFile(m_temp.file("data/Site unit/Method/a.mth")), "site a");
    EXPECT_EQ(ReadWholeFile(m_temp.file("data/Field unit/Method/a.mth")), "lab a") << "kept, not overwritten";
    ::unsetenv("VEXA_DATA_ROOT");
}
