// SPDX-License-Identifier: Apache-2.0
// Methods: the run-time rule, content equality, what makes a file invalid, and the editor's checks.
#include "vexafileref.h"
#include "vexamethod.h"

#include "tempdir.h"
#include "text.h"

#include <gtest/gtest.h>

namespace {

VexaMethod WithEvents(const std::vector<VexaMethodEvent>& events) {
    VexaMethod method;
    method.SetEvents(events);
    return method;
}

// Opens `text` as a file and reads the method in it; *opened tells whether the file itself was read.
VexaMethod MethodFromText(TempDir& dir, const std::string& text, bool* opened) {
    VexaFileRef file;
    *opened = file.Open(FromUtf8(dir.createFile("m.mth", text)));
    return VexaMethod(file);
}

const char kValidMethod[] = R"({"format":"VexaMethod","version":1,"description":"d","model":1,"accessory":0,
  "methodMode":0,"scanMode":0,"concentrator":1,
  "gc":{"initialTemp":50,"initialHold":60,"rate":20,"finalTemp":280,"finalHold":120},
  "ms":{"massLow":40,"massHigh":300,"simIons":[]},
  "events":[{"time":0,"valveState":6},{"time":720000,"valveState":12}]})";

} // namespace

TEST(VexaMethodRunTime, WalksTheEventTable) {
    struct Case {
        const char* what;
        std::vector<VexaMethodEvent> events;
        int64_t seconds;
    };
    const Case cases[] = {
        {"empty event list", {}, 0},
        {"inject to end", {{1000, 6}, {2000, 3}, {61000, 12}}, 60},
        {"direct start when no start yet", {{5000, 7}, {65000, 12}}, 60},
        {"a later direct start is ignored", {{5000, 7}, {20000, 7}, {65000, 12}}, 60},
        {"an inject after a direct start moves the start", {{5000, 7}, {20000, 6}, {80000, 12}}, 60},
        {"a direct start after an inject is ignored", {{10000, 6}, {30000, 7}, {70000, 12}}, 60},
        {"end right after the start", {{30000, 6}, {30000, 12}, {90000, 6}, {95000, 12}}, 0},
        {"the first end stops the walk", {{0, 6}, {120000, 12}, {200000, 6}, {900000, 12}}, 120},
        {"no end: measured against the initial end", {{90000, 6}, {200000, 3}}, -90},
        {"end before any start", {{60000, 12}, {70000, 6}}, 60},
        {"milliseconds are cut, not rounded", {{0, 6}, {59999, 12}}, 59},
    };
    for (const Case& c : cases)
        EXPECT_EQ(WithEvents(c.events).GetRunTimeSeconds(), c.seconds) << c.what;
}

TEST(VexaMethodEquality, ComparesContentNotText) {
    TempDir dir;
    bool opened = false;
    const VexaMethod a = MethodFromText(dir, kValidMethod, &opened);
    ASSERT_TRUE(opened && a.IsValid()) << ToUtf8(a.GetInvalidReason());
    // Same content, other key order and spacing.
    const VexaMethod b =
        MethodFromText(dir,
                       R"({ "events" : [ {"valveState":6,"time":0}, {"valveState":12,"time":720000} ],
        "ms":{"simIons":[],"massHigh":300,"massLow":40}, "concentrator":1, "scanMode":0,"methodMode":0,
        "accessory":0, "model":1, "description":"d",
        "gc":{"finalHold":120,"finalTemp":280,"rate":20,"initialHold":60,"initialTemp":50},
        "version":1, "format":"VexaMethod" })",
                       &opened);
    EXPECT_TRUE(a == b);

    VexaMethod changed = a;
    std::vector<VexaMethodEvent> events = changed.GetEvents();
    events[1] = {721000, 12};
    changed.SetEvents(events);
    EXPECT_FALSE(a == changed) << "one changed event";
    changed = a;
    changed.setDescription(L"other");
    EXPECT_FALSE(a == changed);
}

namespace {

std::string Replace(std::string text, const std::string& from, const std::string& to) {
    text.replace(text.find(from), from.size(), to);
    return text;
}

} // namespace

TEST(VexaMethodValidity, RejectsOnlyAnotherFormatOrANewerVersion) {
    struct Case {
        const char* what;
        std::string text;
        bool opens;
    };
    std::string truncated = kValidMethod;
    truncated.resize(truncated.size() / 2);
    const Case cases[] = {
        {"empty file", "", false},
        {"truncated JSON", truncated, false},
        {"not JSON", "method: default\n", false},
        {"a JSON array", "[1,2]", false},
        {"another format", Replace(kValidMethod, "\"VexaMethod\"", "\"VexaTune\""), true},
        {"no format", Replace(kValidMethod, "\"format\":\"VexaMethod\",", ""), true},
        {"a newer version", Replace(kValidMethod, "\"version\":1", "\"version\":2"), true},
        {"version zero", Replace(kValidMethod, "\"version\":1", "\"version\":0"), true},
        {"version as text", Replace(kValidMethod, "\"version\":1", "\"version\":\"1\""), true},
    };
    TempDir dir;
    for (const Case& c : cases) {
        bool opened = false;
        const VexaMethod method = MethodFromText(dir, c.text, &opened);
        EXPECT_EQ(opened, c.opens) << c.what;
        EXPECT_FALSE(method.IsValid()) << c.what;
        EXPECT_FALSE(method.GetInvalidReason().empty()) << c.what;
        // Getters of an invalid method answer without throwing.
        EXPECT_GE(method.GetNumEvents(), 0) << c.what;
        method.GetRunTimeSeconds();
        method.getMassRange();
    }
}

// A partial method (a survey method, one of an older or newer editor) is read: what is missing or
// malformed is named as not set, the rest and the run time still read, and saving refuses it.
TEST(VexaMethodValidity, ReadsAPartialMethodAndNamesWhatIsNotSet) {
    struct Case {
        const char* what;
        std::string text;
        std::vector<std::wstring> unset;
        int64_t runTime;
    };
    const Case cases[] = {
        {"the whole method", kValidMethod, {}, 720},
        {"no gc programme",
         Replace(kValidMethod, "\"gc\":", "\"gcx\":"),
         {L"gc.initialTemp", L"gc.initialHold", L"gc.rate", L"gc.finalTemp", L"gc.finalHold"},
         720},
        {"no ms section",
         Replace(kValidMethod, "\"ms\":{\"massLow\":40,\"massHigh\":300,\"simIons\":[]},", ""),
         {L"ms.massLow", L"ms.massHigh"},
         720},
        {"a time that is not an integer",
         Replace(kValidMethod, "\"time\":0", "\"time\":0.5"),
         {L"events"},
         720},
        {"an event without a valve state", Replace(kValidMethod, ",\"valveState\":6", ""), {L"events"}, 720},
        {"events not a list",
         Replace(kValidMethod, "\"events\":[", "\"events\":{\"x\":[") + "}",
         {L"events"},
         0},
        {"a mass as text",
         Replace(kValidMethod, "\"massLow\":40", "\"massLow\":\"40\""),
         {L"ms.massLow"},
         720},
        {"description not text",
         Replace(kValidMethod, "\"description\":\"d\"", "\"description\":7"),
         {L"description"},
         720},
        {"a SIM ion not an integer",
         Replace(kValidMethod, "\"simIons\":[]", "\"simIons\":[69.5]"),
         {L"ms.simIons"},
         720},
    };
    TempDir dir;
    for (const Case& c : cases) {
        bool opened = false;
        const VexaMethod method = MethodFromText(dir, c.text, &opened);
        ASSERT_TRUE(opened) << c.what;
        EXPECT_TRUE(method.IsValid()) << c.what << ": " << ToUtf8(method.GetInvalidReason());
        EXPECT_EQ(method.GetUnsetSettings(), c.unset) << c.what;
        EXPECT_EQ(method.GetRunTimeSeconds(), c.runTime) << c.what;
        EXPECT_EQ(method.getConcentrator(), 1) << c.what << ": the settings that are there still read";
        EXPECT_EQ(method.CheckSettings().empty(), c.unset.empty()) << c.what;
        for (const std::wstring& name : c.unset)
            EXPECT_FALSE(method.IsSet(name)) << c.what;
    }
}

TEST(VexaMethodChecks, NamesWhatAnEditorMustNotSave) {
    struct Case {
        const char* what;
        void (*change)(VexaMethod&);
    };
    const Case cases[] = {
        {"times out of order",
         [](VexaMethod& m) {
             m.SetEvents({{0, 6}, {5000, 3}, {4000, 12}});
         }},
        {"a negative time",
         [](VexaMethod& m) {
             m.SetEvents({{-1, 6}});
         }},
        {"an unknown valve state",
         [](VexaMethod& m) {
             m.SetEvents({{0, 13}});
         }},
        {"low mass above high",
         [](VexaMethod& m) {
             m.setMassRange({300, 40, {}});
         }},
        {"mass above the analyser",
         [](VexaMethod& m) {
             m.setMassRange({40, 1001, {}});
         }},
        {"SIM without ions", [](VexaMethod& m) { m.setScanMode(VexaMethod::kSim); }},
        {"final below initial temperature",
         [](VexaMethod& m) {
             m.setGcProgram({200, 0, 10, 100, 0});
         }},
        {"a ramp without rate",
         [](VexaMethod& m) {
             m.setGcProgram({50, 0, 0, 100, 0});
         }},
        {"an oven beyond its limit",
         [](VexaMethod& m) {
             m.setGcProgram({50, 0, 10, 400, 0});
         }},
        {"an unknown model", [](VexaMethod& m) { m.setModel(99); }},
        {"a device the model lacks", [](VexaMethod& m) { m.setModel(5), m.setAccessory(7); }},
        {"an unknown concentrator", [](VexaMethod& m) { m.setConcentrator(3); }},
    };
    EXPECT_TRUE(VexaMethod().CheckSettings().empty()) << "a new method is sane";
    for (const Case& c : cases) {
        VexaMethod method;
        c.change(method);
        EXPECT_TRUE(method.IsValid()) << c.what;
        EXPECT_FALSE(method.CheckSettings().empty()) << c.what;
    }
    VexaMethod sim;
    sim.setScanMode(VexaMethod::kSim);
    sim.setMassRange({40, 300, {69, 219}});
    EXPECT_TRUE(sim.CheckSettings().empty());
}
