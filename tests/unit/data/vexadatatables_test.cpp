// SPDX-License-Identifier: Apache-2.0
// The small tables of the data library: time spans, sample input devices per model, the editor mode.
#include "registry.h"
#include "timespan.h"
#include "vexamodels.h"
#include "wizardmode.h"

#include "tempdir.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <limits>

TEST(FormatTimeSpan, MinutesAndTwoDigitSeconds) {
    const std::pair<int64_t, const wchar_t*> cases[] = {
        {0, L"0:00"},    {5, L"0:05"},
        {59, L"0:59"},   {60, L"1:00"},
        {725, L"12:05"}, {3725, L"62:05"},
        {-90, L"-1:30"}, {std::numeric_limits<int64_t>::min(), L"-153722867280912930:08"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(FormatTimeSpan(seconds), text) << seconds;
}

TEST(VexaAccessoryName, DependsOnTheModel) {
    struct Case {
        int accessory;
        int model;
        const wchar_t* name;
    };
    const Case cases[] = {
        {0, 1, L"None"},          {7, 1, L"Injection Port"}, {7, 2, L"Injection Port"},
        {7, 5, L"Unknown (7)"},   {5, 2, L"Unknown (5)"},    {1, 5, L"Air Probe"},
        {42, 1, L"Unknown (42)"}, {-1, 1, L"Unknown (-1)"},  {0, 99, L"Unknown (0)"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(Vexa::GetAccessoryName(c.accessory, c.model), c.name) << c.accessory << " on " << c.model;
    for (int model : Vexa::GetModels()) {
        EXPECT_NE(Vexa::GetModelName(model).find(L"Unknown"), 0u);
        for (int accessory : Vexa::GetAccessories(model))
            EXPECT_NE(Vexa::GetAccessoryName(accessory, model).find(L"Unknown"), 0u)
                << model << "/" << accessory;
    }
    EXPECT_EQ(Vexa::GetModelName(5), L"RJW");
}

TEST(WizardMode, ReadsTheSettingAndFallsBackToBasic) {
    TempDir dir;
    setenv("VEXA_SETTINGS", dir.file("vexa.ini").c_str(), 1);
    CPXRegistry& registry = CPXRegistry::Instance();
    registry.Reload();
    const std::pair<const wchar_t*, VexaWizardMode> cases[] = {{nullptr, kWizardBasic},
                                                               {L"1", kWizardExpert},
                                                               {L"0", kWizardBasic},
                                                               {L"7", kWizardBasic},
                                                               {L"x", kWizardBasic}};
    for (const auto& [value, mode] : cases) {
        if (value)
            registry.SetString(L"Method", L"WizardMode", value);
        else
            registry.Remove(L"Method", L"WizardMode");
        EXPECT_EQ(GetWizardMode(), mode) << (value ? "set" : "unset");
    }
}
