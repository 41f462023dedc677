// The instrument editor with the loaded sensor type's address check: what it refuses and why.
#include "studiofixture.h"

#include "instrumenteditordialog.h"
#include "sensormanager.h"

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>

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
