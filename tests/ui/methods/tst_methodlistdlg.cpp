// SPDX-License-Identifier: Apache-2.0
// The method sequence editor: steps added, reordered and saved, checks that keep a broken sequence off
// the disk, and the method chooser filling a step.
#include "editabletable.h"
#include "methodresource.h"
#include "scriptedprompt.h"
#include "tempdir.h"
#include "text.h"
#include "vexafileref.h"
#include "vexamethodlistdlg.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

VexaMethodSequence Load(const std::wstring& name) {
    VexaFileRef file;
    EXPECT_TRUE(file.Open(name)) << ToUtf8(file.GetLastErrorText());
    return VexaMethodSequence(file);
}

void SetCell(CEditableTable* table, int row, int column, const QString& text) {
    table->item(row, column)->setText(text);
}

} // namespace

TEST(MethodListDlgTest, StepsAddedReorderedSavedAndReloaded) {
    TempDir dir;
    ScriptedPrompt prompt;
    const std::wstring path = FromUtf8(dir.file("Site.xmth"));
    CVexaMethodListDlg dialog(VexaMethodSequence(), L"");
    dialog.SetSaveNameChooser([&](const std::wstring&, const std::wstring& extension, std::wstring* chosen) {
        EXPECT_EQ(extension, L"xmth");
        *chosen = path;
        return true;
    });
    dialog.SetMethodChooser([](const std::wstring&, std::wstring* chosen) {
        *chosen = L"@127.0.0.9:/Method/Survey.mth";
        return true;
    });
    dialog.show();
    auto* steps = qobject_cast<CEditableTable*>(dialog.GetDlgItem(IDC_VML_STEPS));
    ASSERT_NE(steps, nullptr);

    EXPECT_EQ(dialog.windowTitle(), "Method Sequence - New sequence");
    EXPECT_FALSE(dialog.Save()) << "an empty sequence is refused";
    ASSERT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message).size(), 1u);
    EXPECT_EQ(
        prompt.Asked(ScriptedPrompt::Kind::Message)[0].text.rfind(L"The sequence cannot be saved:\n- ", 0),
        0u);

    ASSERT_TRUE(dialog.PressButton(IDC_VM_ADD));
    SetCell(steps, 0, 0, "/pc/Default.mth");
    SetCell(steps, 0, 1, "3");
    ASSERT_TRUE(dialog.PressButton(IDC_VM_ADD));
    ASSERT_TRUE(dialog.PressButton(IDC_VM_BROWSE)); // fills the new step's method
    ASSERT_TRUE(dialog.PressButton(IDC_VM_UP));
    ASSERT_TRUE(dialog.PressButton(IDC_VM_SAVE));
    const std::vector<VexaSequenceStep> expected = {{L"@127.0.0.9:/Method/Survey.mth", 1},
                                                    {L"/pc/Default.mth", 3}};
    EXPECT_EQ(Load(path).GetSteps(), expected);
    EXPECT_TRUE(Load(path) == dialog.GetSavedSequence());
    EXPECT_EQ(dialog.windowTitle().toStdWString(), L"Method Sequence - " + path);

    // A repeat that is no number, and one out of range, keep the file as it was.
    const std::string before = ReadWholeFile(ToUtf8(path));
    for (const char* repeat : {"two", "0"}) {
        SetCell(steps, 1, 1, repeat);
        prompt.ClearAsked();
        EXPECT_FALSE(dialog.Save()) << repeat;
        EXPECT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message).size(), 1u) << repeat;
        EXPECT_EQ(ReadWholeFile(ToUtf8(path)), before) << repeat;
    }
    SetCell(steps, 1, 1, "3");
    ASSERT_TRUE(dialog.PressButton(IDC_VM_REMOVE)); // the first step, still the current one
    EXPECT_EQ(steps->rowCount(), 1);
    EXPECT_TRUE(dialog.Save());
    EXPECT_EQ(Load(path).GetNumSteps(), 1);
}

// Saving on the instrument changes its methods (level 1), and the instrument reaches its own files only.
TEST(MethodListDlgTest, SavingOnTheInstrumentNeedsLevelOneAndItsOwnMethods) {
    ScriptedPrompt prompt;
    const std::wstring target = L"@127.0.0.9:/Method/Site.xmth";
    VexaMethodSequence sequence;
    sequence.SetSteps(
        {{L"@127.0.0.9:/Method/A.mth", 1}, {L"/pc/B.mth", 2}, {L"@127.0.0.8:/Method/C.mth", 1}});
    CVexaMethodListDlg dialog(sequence, L"");
    dialog.SetSaveNameChooser([&](const std::wstring&, const std::wstring&, std::wstring* chosen) {
        *chosen = target;
        return true;
    });
    dialog.show();
    const struct {
        const char* levels;
        std::vector<std::wstring> named;
    } cases[] = {
        {"0", {L"access level 1"}},
        {"0,1",
         {L"Step 2: the instrument cannot reach /pc/B.mth",
          L"Step 3: the instrument cannot reach @127.0.0.8"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.levels);
        ::setenv("VEXA_ACCESS", c.levels, 1);
        prompt.ClearAsked();
        EXPECT_FALSE(dialog.SaveAs());
        const auto messages = prompt.Asked(ScriptedPrompt::Kind::Message);
        ASSERT_EQ(messages.size(), 1u);
        for (const std::wstring& part : c.named)
            EXPECT_NE(messages[0].text.find(part), std::wstring::npos) << ToUtf8(messages[0].text);
        EXPECT_EQ(messages[0].text.find(L"Step 1"), std::wstring::npos)
            << "the instrument's own method is fine";
    }
    ::unsetenv("VEXA_ACCESS");
}
