// SPDX-License-Identifier: Apache-2.0
// The studio's ways into the method editors: the Method Editor tool's menu, and files handed on by
// Data Review and Manage Files (a method opens in the editor, a data file's method on request).
#include "studiofixture.h"

#include "demotree.h"
#include "hostresource.h"
#include "methodresource.h"
#include "scriptedprompt.h"
#include "sensorinfo.h"
#include "text.h"
#include "toollist.h"
#include "toolrunner.h"
#include "vexamethodwizard.h"

#include <QMenu>

namespace {

std::vector<int> DialogTemplates(const ScriptedPrompt& prompt) {
    std::vector<int> templates;
    for (const ScriptedPrompt::Question& question : prompt.Asked(ScriptedPrompt::Kind::Dialog))
        templates.push_back(question.templateId);
    return templates;
}

// The module's default-methods dialog (the studio sees the module only through its template number).
constexpr int kDefaultMethodsTemplate = 1737;

} // namespace

TEST_F(StudioTest, MethodEditorToolOffersNewMethodNewSequenceOpenAndDefaultMethods) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    ScriptedPrompt prompt;
    window.RunTool(ToolRow(window, "Method Editor"));
    ASSERT_NE(window.MethodMenu(), nullptr);
    const QList<QAction*> actions = window.MethodMenu()->actions();
    ASSERT_EQ(actions.size(), 4);
    actions[0]->trigger(); // new method
    actions[1]->trigger(); // new sequence
    actions[3]->trigger(); // default methods, cancelled: no new default method follows
    EXPECT_EQ(DialogTemplates(prompt),
              (std::vector<int>{IDD_VEXA_METHOD_WIZARD, IDD_VEXA_METHOD_LIST, kDefaultMethodsTemplate}));
    actions[2]->trigger(); // open: no instrument selected
    ASSERT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message).size(), 1u);
    EXPECT_NE(prompt.Asked(ScriptedPrompt::Kind::Message)[0].text.find(L"select one in the list first"),
              std::wstring::npos);
    window.MethodMenu()->hide();
}

TEST_F(StudioTest, ReviewedFilesGoToTheMethodEditors) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    ISensorInfo* type = window.Tools()->SensorType();
    ASSERT_NE(type, nullptr);
    const std::string demo = CopyDemoTree(m_temp.file("demo"));
    std::wstring opened;
    ScriptedPrompt prompt;
    const auto recordWizard = [&opened](CDialog_& dialog) {
        auto* wizard = dynamic_cast<CVexaMethodWizard*>(&dialog);
        opened = wizard ? wizard->GetFileName() + L"|" + wizard->GetSavedMethod().getDescription() : L"?";
        return IDCANCEL;
    };

    prompt.QueueDialog(recordWizard);
    ToolRunner::ReviewFile(*type, FromUtf8(demo + "/Method/Survey.mth"));
    EXPECT_EQ(opened, FromUtf8(demo + "/Method/Survey.mth") + L"|Fast screening, 45-350 amu, 5 minute run");

    // A data file: its method opens only when the user agrees.
    prompt.QueueYesNo(IDNO);
    EXPECT_EQ(ToolRunner::ReviewFile(*type, FromUtf8(demo + "/Data/run1.vxs")).kind,
              ToolRunner::Outcome::Kind::FileChosen);
    prompt.QueueYesNo(IDYES);
    prompt.QueueDialog(recordWizard);
    EXPECT_EQ(ToolRunner::ReviewFile(*type, FromUtf8(demo + "/Data/run1.vxs")).kind,
              ToolRunner::Outcome::Kind::HandedToModule);
    EXPECT_EQ(opened, FromUtf8(demo + "/Method/Default.mth") + L"|General survey, 40-300 amu, 12 minute run");

    prompt.ClearAsked();
    ToolRunner::ReviewFile(*type, FromUtf8(demo + "/Method/Site.xmth"));
    EXPECT_EQ(DialogTemplates(prompt), std::vector<int>{IDD_VEXA_METHOD_LIST});
    ToolRunner::ReviewFile(*type, FromUtf8(demo + "/hosts"));
    EXPECT_EQ(prompt.Asked().size(), 1u) << "a text file is left alone";
}

TEST_F(StudioTest, AMethodWithoutAccessLevelOneDoesNotOpen) {
    StudioWindow& window = StartStudio(BuiltPluginDir());
    const std::string demo = CopyDemoTree(m_temp.file("demo"));
    qputenv("VEXA_ACCESS", "0");
    ScriptedPrompt prompt;
    ToolRunner::ReviewFile(*window.Tools()->SensorType(), FromUtf8(demo + "/Method/Default.mth"));
    qunsetenv("VEXA_ACCESS");
    EXPECT_TRUE(prompt.Asked(ScriptedPrompt::Kind::Dialog).empty());
    ASSERT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message).size(), 1u);
    EXPECT_EQ(prompt.Asked(ScriptedPrompt::Kind::Message)[0].text,
              L"You do not have the access level to open this file.");
}
