// SPDX-License-Identifier: Apache-2.0
// The default-method catalogue against the modules that ship (built beside the programs) and against
// damaged copies. Validity and equality of method files are stand-ins here (a file is valid when it is
// a JSON object; equal when its bytes are), so these cases test the catalogue's own rules.
#include "defaultmethodmodules.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace {

const std::string kPluginDir = VEXA_PLUGIN_DIR_FOR_TESTS;

std::wstring W(const std::string& text) {
    return std::wstring(text.begin(), text.end());
}

bool LooksValid(const std::wstring& path) {
    const std::string content = ReadWholeFile(fs::path(path).string());
    return !content.empty() && content.front() == '{' && content.find("VexaMethod") != std::string::npos;
}

bool SameBytes(const std::wstring& a, const std::wstring& b) {
    if (!FileExists(fs::path(a).string()) || !FileExists(fs::path(b).string()))
        return false;
    return ReadWholeFile(fs::path(a).string()) == ReadWholeFile(fs::path(b).string());
}

class DefaultMethodModulesTest : public testing::Test {
protected:
    void SetUp() override {
        if (!VEXA_DEFAULT_MODULES_BUILT)
            GTEST_SKIP() << "the MinGW binutils that build the modules are not installed";
        modules = m_dir.createDir("bin");
        methods = m_dir.createDir("DefaultMethods");
        for (const char* name : {"DefaultMethods.ddll", "RJWMethods.ddll", "TarnMethods.ddll"})
            fs::copy_file(kPluginDir + "/" + name, modules + "/" + name);
    }
    DefaultMethodModules Catalogue() const {
        return DefaultMethodModules(W(modules), W(methods), LooksValid, SameBytes);
    }
    std::string Installed(const std::string& name) const { return methods + "/" + name; }

    TempDir m_dir;
    std::string modules, methods;
};

TEST_F(DefaultMethodModulesTest, ScanFindsModelsInOrderAndInstallsEveryMethodOnce) {
    DefaultMethodModules catalogue = Catalogue();
    EXPECT_TRUE(catalogue.Scan().empty());
    const auto& models = catalogue.Models();
    ASSERT_EQ(models.size(), 3u);
    // "DefaultMethods" has no model string and falls to Brisk; RJW names itself; Tarn by its name.
    EXPECT_EQ(models[0].name, L"Brisk");
    EXPECT_EQ(models[1].name, L"RJW");
    EXPECT_EQ(models[2].name, L"Tarn");
    EXPECT_EQ(models[0].methods, (std::vector<std::wstring>{L"VOC Screening.dmth", L"Fast Survey.dmth",
                                                            L"BTEX Headspace SIM.dmth"}));
    EXPECT_EQ(models[2].methods,
              (std::vector<std::wstring>{L"Agent Screening SIM.dmth", L"Tarn VOC Screening.dmth"}));

    EXPECT_TRUE(catalogue.InstallMissing().empty());
    int count = 0;
    for (const auto& entry : fs::directory_iterator(methods)) {
        EXPECT_EQ(entry.path().extension(), ".dmth") << "left behind: " << entry.path();
        ++count;
    }
    EXPECT_EQ(count, 7);
}

TEST_F(DefaultMethodModulesTest, DeletedMethodsComeBackEditedOnesAreKept) {
    DefaultMethodModules first = Catalogue();
    first.Scan();
    first.InstallMissing();
    fs::remove(Installed("Fast Survey.dmth"));
    const std::string edited = R"({"format": "VexaMethod", "version": 1, "description": "mine"})";
    std::ofstream(Installed("Air Survey.dmth")) << edited;
    std::ofstream(Installed("SPME Screening.dmth")) << "damaged";

    DefaultMethodModules second = Catalogue();
    second.Scan();
    EXPECT_TRUE(second.InstallMissing().empty());
    EXPECT_TRUE(FileExists(Installed("Fast Survey.dmth")));
    EXPECT_EQ(ReadWholeFile(Installed("Air Survey.dmth")), edited);
    // An installed file that is not a valid method counts as not installed.
    EXPECT_TRUE(LooksValid(W(Installed("SPME Screening.dmth"))));
}

TEST_F(DefaultMethodModulesTest, RestoreMarksChangedAndMissingAndWritesOnlyTicked) {
    DefaultMethodModules catalogue = Catalogue();
    catalogue.Scan();
    catalogue.InstallMissing();
    std::ofstream(Installed("Fast Survey.dmth")) << R"({"format": "VexaMethod", "version": 1})";
    fs::remove(Installed("Air Survey.dmth"));

    const auto rows = catalogue.CompareWithFactory();
    ASSERT_EQ(rows.size(), 7u);
    std::vector<uint8_t> flags;
    for (const auto& row : rows) {
        const bool expectChanged = row.name == L"Fast Survey.dmth" || row.name == L"Air Survey.dmth";
        EXPECT_EQ(row.changed, expectChanged) << fs::path(row.name).string();
        flags.push_back(row.name == L"Air Survey.dmth");
    }
    for (const auto& entry : fs::directory_iterator(methods))
        EXPECT_EQ(entry.path().extension(), ".dmth") << "temporary left behind: " << entry.path();

    EXPECT_TRUE(catalogue.Restore(flags).empty());
    EXPECT_TRUE(FileExists(Installed("Air Survey.dmth")));
    EXPECT_EQ(ReadWholeFile(Installed("Fast Survey.dmth")), R"({"format": "VexaMethod", "version": 1})");
}

TEST_F(DefaultMethodModulesTest, DamagedAndEmptyModulesAreReportedAndSkipped) {
    const std::string good = ReadWholeFile(modules + "/RJWMethods.ddll");
    std::ofstream(modules + "/QVTruncated.ddll", std::ios::binary) << good.substr(0, good.size() / 3);
    std::ofstream(modules + "/ZLKEmpty.ddll", std::ios::binary) << "";
    std::ofstream(modules + "/CorvoText.ddll", std::ios::binary) << "MZ but nothing else";

    DefaultMethodModules catalogue = Catalogue();
    const auto problems = catalogue.Scan();
    ASSERT_EQ(problems.size(), 3u);
    for (const auto& problem : problems)
        EXPECT_NE(problem.find(L"193"), std::wstring::npos) << fs::path(problem).string();
    EXPECT_EQ(problems[0].rfind(L"CorvoText.ddll: ", 0), 0u);
    EXPECT_EQ(catalogue.Models().size(), 3u);
}

TEST_F(DefaultMethodModulesTest, UnwritableFolderIsReported) {
    DefaultMethodModules catalogue(W(modules), W(m_dir.file("missing/folder")), LooksValid, SameBytes);
    catalogue.Scan();
    const auto problems = catalogue.InstallMissing();
    EXPECT_EQ(problems.size(), 7u); // one per shipped method
}

TEST(DefaultMethodModules, ModelFromFileName) {
    const std::pair<const wchar_t*, const wchar_t*> rows[] = {
        {L"QV100.ddll", L"QV"},
        {L"qv.ddll", L"QV"},
        {L"TarnMethods.ddll", L"Tarn"},
        {L"TARN.ddll", L"Tarn"},
        {L"Brisk2.ddll", L"Brisk"},
        {L"corvo.ddll", L"Corvo"},
        {L"Default.ddll", L"Brisk"},
        {L"defaultX.ddll", L"Brisk"},
        {L"ZLK9.ddll", L"ZLK"},
        {L"Q.ddll", L"Brisk"},
        {L"Tar.ddll", L"Brisk"},
        {L"RJW.ddll", L"Brisk"},
        {L"", L"Brisk"},
    };
    for (const auto& [file, model] : rows)
        EXPECT_EQ(DefaultMethodModules::ModelFromFileName(file), model) << fs::path(file).string();
}

TEST(DefaultMethodModules, TickingPrefersRjwOnModelFiveElseTicksAll) {
    DefaultMethodModules catalogue(L"", L"", LooksValid, SameBytes);
    auto& models = catalogue.Models();
    const auto ticks = [&] {
        std::vector<bool> result;
        for (const auto& model : models)
            result.push_back(model.ticked);
        return result;
    };
    models = {{false, L"Brisk", {}}, {false, L"RJW", {}}, {false, L"Tarn", {}}};
    catalogue.TickModels(5);
    EXPECT_EQ(ticks(), (std::vector<bool>{false, true, false}));
    catalogue.TickModels(1);
    EXPECT_EQ(ticks(), (std::vector<bool>{true, true, true}));
    models = {{false, L"Brisk", {}}, {false, L"Tarn", {}}};
    catalogue.TickModels(5); // no RJW among the files
    EXPECT_EQ(ticks(), (std::vector<bool>{true, true}));
    models = {{false, L"RJW", {}}};
    catalogue.TickModels(5); // a single model is always ticked
    EXPECT_EQ(ticks(), (std::vector<bool>{true}));
}

} // namespace
