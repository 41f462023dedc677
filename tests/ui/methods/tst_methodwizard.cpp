// SPDX-License-Identifier: Apache-2.0
// The method editor: an edit saved and read back, Save As through the chooser, validation that keeps
// bad methods off the disk, the modes, and the question before unsaved changes are dropped.
#include "demotree.h"
#include "editabletable.h"
#include "methodresource.h"
#include "scriptedprompt.h"
#include "tempdir.h"
#include "text.h"
#include "vexafileref.h"
#include "vexamethodwizard.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QTest>
#include <gtest/gtest.h>

#include <filesystem>

namespace {

VexaMethod Load(const std::wstring& name) {
    VexaFileRef file;
    EXPECT_TRUE(file.Open(name)) << ToUtf8(file.GetLastErrorText());
    return VexaMethod(file);
}

class MethodWizardTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_path = FromUtf8(m_dir.file("Default.mth"));
        std::filesystem::copy_file(DemoTreePath("Method/Default.mth"), m_dir.file("Default.mth"));
    }
    // An open, initialised editor on the copied demo method.
    std::unique_ptr<CVexaMethodWizard> Open(VexaWizardMode mode = kWizardExpert) {
        auto wizard = std::make_unique<CVexaMethodWizard>(Load(m_path), m_path, mode);
        wizard->show();
        return wizard;
    }
    template <class W> static W* Control(CVexaMethodWizard& wizard, int id) {
        return qobject_cast<W*>(wizard.GetDlgItem(id));
    }
    static void SetEventTime(CVexaMethodWizard& wizard, int row, const QString& seconds) {
        Control<QTableWidget>(wizard, IDC_VMW_EVENTS)->item(row, 0)->setText(seconds);
    }

    TempDir m_dir;
    std::wstring m_path;
    ScriptedPrompt m_prompt;
};

} // namespace

TEST_F(MethodWizardTest, AnEditSavedAndReloadedIsEqual) {
    auto wizard = Open();
    EXPECT_EQ(Control<QLabel>(*wizard, IDC_VMW_RUN_TIME)->text(), "Run Time (M:S): 12:00");
    Control<QLineEdit>(*wizard, IDC_VMW_DESCRIPTION)->setText("Edited survey");
    auto* model = Control<QComboBox>(*wizard, IDC_VMW_MODEL);
    model->setCurrentIndex(model->findData(2));
    auto* accessory = Control<QComboBox>(*wizard, IDC_VMW_ACCESSORY);
    EXPECT_EQ(accessory->count(), 4) << "the devices of model 2";
    accessory->setCurrentIndex(accessory->findData(7));
    Control<QSpinBox>(*wizard, IDC_VMW_FINAL_TEMP)->setValue(260);
    // A new event after the first, moved down past the inject, then the end moved to 10 minutes.
    auto* events = Control<CEditableTable>(*wizard, IDC_VMW_EVENTS);
    events->setCurrentCell(0, 0);
    ASSERT_TRUE(wizard->PressButton(IDC_VM_ADD));
    ASSERT_EQ(events->rowCount(), 4);
    SetEventTime(*wizard, 1, "30");
    qobject_cast<QComboBox*>(events->cellWidget(1, 1))->setCurrentIndex(kValveSampleLoop);
    ASSERT_TRUE(wizard->PressButton(IDC_VM_DOWN));
    EXPECT_EQ(events->currentRow(), 2);
    SetEventTime(*wizard, 1, "30");
    SetEventTime(*wizard, 2, "60");
    SetEventTime(*wizard, 3, "660.5");
    EXPECT_EQ(Control<QLabel>(*wizard, IDC_VMW_RUN_TIME)->text(), "Run Time (M:S): 10:30");

    ASSERT_TRUE(wizard->PressButton(IDC_VM_SAVE));
    EXPECT_TRUE(m_prompt.Asked().empty()) << ToUtf8(m_prompt.Asked()[0].text);
    const VexaMethod saved = Load(m_path);
    EXPECT_TRUE(saved == wizard->GetSavedMethod());
    EXPECT_EQ(saved.getDescription(), L"Edited survey");
    EXPECT_EQ(saved.getModel(), 2);
    EXPECT_EQ(saved.getAccessory(), 7);
    EXPECT_EQ(saved.getGcProgram().finalTemp, 260);
    EXPECT_EQ(saved.GetEvents(),
              (std::vector<VexaMethodEvent>{{0, 1}, {30000, 6}, {60000, 2}, {660500, 12}}));

    // Reopened, the editor shows what was saved: closing without a change asks nothing.
    wizard.reset();
    auto again = Open();
    std::vector<std::wstring> problems;
    EXPECT_TRUE(again->MethodFromControls(&problems) == saved);
    EXPECT_TRUE(problems.empty());
}

TEST_F(MethodWizardTest, InvalidSettingsAreNamedAndNothingIsWritten) {
    const std::string before = ReadWholeFile(ToUtf8(m_path));
    struct Case {
        const char* what;
        std::function<void(CVexaMethodWizard&)> change;
        const wchar_t* expected;
    };
    const Case cases[] = {
        {"times out of order", [](CVexaMethodWizard& w) { SetEventTime(w, 2, "10"); }, L"ascending order"},
        {"a time that is no number", [](CVexaMethodWizard& w) { SetEventTime(w, 1, "1:00"); },
         L"not a number"},
        {"mass range upside down",
         [](CVexaMethodWizard& w) { Control<QSpinBox>(w, IDC_VMW_MASS_LOW)->setValue(500); }, L"mass range"},
        {"an ion that is no number",
         [](CVexaMethodWizard& w) { Control<QLineEdit>(w, IDC_VMW_SIM_IONS)->setText("69, x"); }, L"\"x\""},
    };
    for (const Case& c : cases) {
        auto wizard = Open();
        c.change(*wizard);
        m_prompt.ClearAsked();
        EXPECT_FALSE(wizard->Save()) << c.what;
        const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
        ASSERT_EQ(messages.size(), 1u) << c.what;
        EXPECT_EQ(messages[0].text.rfind(L"The method cannot be saved:\n- ", 0), 0u)
            << ToUtf8(messages[0].text);
        EXPECT_NE(messages[0].text.find(c.expected), std::wstring::npos) << ToUtf8(messages[0].text);
        EXPECT_EQ(ReadWholeFile(ToUtf8(m_path)), before) << c.what;
        m_prompt.QueueYesNo(IDYES); // close without saving
        wizard->reject();
    }
}

TEST_F(MethodWizardTest, NewMethodSavesThroughTheChooserAndBasicModeHidesTheProgramme) {
    CVexaMethodWizard wizard(VexaMethod(), L"", kWizardBasic);
    std::vector<std::wstring> offered;
    const std::wstring target = FromUtf8(m_dir.file("New.mth"));
    wizard.SetSaveNameChooser(
        [&](const std::wstring& current, const std::wstring& extension, std::wstring* chosen) {
            offered.push_back(current + L"|" + extension);
            *chosen = target;
            return true;
        });
    wizard.show();
    EXPECT_FALSE(wizard.GetDlgItem(IDC_VMW_EXPERT_GROUP)->isVisible());
    EXPECT_TRUE(wizard.GetDlgItem(IDC_VMW_DESCRIPTION)->isVisible());
    Control<QLineEdit>(wizard, IDC_VMW_DESCRIPTION)->setText("Fresh");
    EXPECT_EQ(wizard.windowTitle(), "Method Editor - New method");
    ASSERT_TRUE(wizard.PressButton(IDC_VM_SAVE)) << "no name yet: Save asks for one";
    EXPECT_EQ(offered, std::vector<std::wstring>{L"|mth"});
    EXPECT_EQ(wizard.GetFileName(), target);
    EXPECT_EQ(wizard.windowTitle().toStdWString(), L"Method Editor - " + target);
    EXPECT_EQ(Load(target).getDescription(), L"Fresh");
    EXPECT_TRUE(Load(target).IsValid());
}

TEST_F(MethodWizardTest, ClosingWithUnsavedChangesAsksFirst) {
    auto wizard = Open();
    Control<QLineEdit>(*wizard, IDC_VMW_DESCRIPTION)->setText("changed");
    m_prompt.QueueYesNo(IDNO);
    wizard->reject();
    EXPECT_TRUE(wizard->isVisible()) << "No keeps the editor open";
    m_prompt.QueueYesNo(IDYES);
    wizard->reject();
    EXPECT_FALSE(wizard->isVisible());
    const auto asked = m_prompt.Asked(ScriptedPrompt::Kind::YesNo);
    ASSERT_EQ(asked.size(), 2u);
    EXPECT_EQ(asked[0].text, L"The method has changes that are not saved. Close without saving?");
}

// A method without its programme (a survey method, another editor's file) opens with those settings
// shown as not set; closing it untouched asks nothing, and saving names what must be set first.
TEST_F(MethodWizardTest, APartialMethodShowsNotSetAndSavingNamesIt) {
    VexaFileRef file;
    ASSERT_TRUE(file.Open(m_path));
    nlohmann::json document = file.Document();
    document.erase("gc");
    document.erase("scanMode");
    file.SetDocument(document);
    ASSERT_TRUE(file.Save());
    auto wizard = Open();
    EXPECT_EQ(Control<QSpinBox>(*wizard, IDC_VMW_RATE)->text(), "not set");
    EXPECT_EQ(Control<QComboBox>(*wizard, IDC_VMW_SCAN_MODE)->currentText(), "not set");
    EXPECT_NE(Control<QSpinBox>(*wizard, IDC_VMW_MASS_LOW)->text(), "not set");
    EXPECT_EQ(Control<QLabel>(*wizard, IDC_VMW_RUN_TIME)->text(), "Run Time (M:S): 12:00");

    const std::string before = ReadWholeFile(ToUtf8(m_path));
    EXPECT_FALSE(wizard->Save());
    const auto messages = m_prompt.Asked(ScriptedPrompt::Kind::Message);
    ASSERT_EQ(messages.size(), 1u);
    for (const wchar_t* named : {L"Rate (°C/min) is not set.", L"Collection mode is not set."})
        EXPECT_NE(messages[0].text.find(named), std::wstring::npos) << ToUtf8(messages[0].text);
    EXPECT_EQ(ReadWholeFile(ToUtf8(m_path)), before);

    wizard->reject();
    EXPECT_FALSE(wizard->isVisible()) << "nothing was changed: no question";
    EXPECT_TRUE(m_prompt.Asked(ScriptedPrompt::Kind::YesNo).empty());
}

// A default method's editor is titled by the method's name until it is saved under another file.
TEST_F(MethodWizardTest, AGivenTitleStandsUntilSavedElsewhere) {
    auto wizard = Open();
    wizard->SetTitle(L"Default");
    EXPECT_EQ(wizard->windowTitle(), "Default");
    ASSERT_TRUE(wizard->Save());
    EXPECT_EQ(wizard->windowTitle(), "Default");
    const std::wstring other = FromUtf8(m_dir.file("Other.mth"));
    wizard->SetSaveNameChooser([&](const std::wstring&, const std::wstring&, std::wstring* chosen) {
        *chosen = other;
        return true;
    });
    ASSERT_TRUE(wizard->SaveAs());
    EXPECT_EQ(wizard->windowTitle().toStdWString(), L"Method Editor - " + other);
}
