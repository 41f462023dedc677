// The instrument editor with the loaded sensor type's address check: what it refuses and why, and
// what the window keeps of the operator's entries.
#include "studiofixture.h"

#include "instrumenteditordialog.h"
#include "instrumentstore.h"
#include "managedinstrument.h"
#include "sensormanager.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

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
