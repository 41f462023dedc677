// SPDX-License-Identifier: Apache-2.0
// The file commands of `vexa` end to end against the simulator: results, JSON shapes and exit codes.
#include "loopback.h"
#include "processrun.h"
#include "simulatedinstrument.h"
#include "tempdir.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <ctime>
#include <set>
#include <thread>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

class CliFiles : public ::testing::Test {
protected:
    void SetUp() override {
        m_instrument.tree().createFile("Data/a.mth", "method a");
        m_instrument.tree().createFile("Data/run1.vxs", RandomBytes(150000, 4));
        m_instrument.tree().createFile("Data/.hidden", "h");
        m_instrument.tree().createDir("Data/Sub");
        m_instrument.start();
    }
    std::string Remote(const std::string& path) const { return m_instrument.remote(path); }
    std::string Instrument(const std::string& path) const { return m_instrument.root() + path; }

    SimulatedInstrument m_instrument;
    TempDir m_pc;
};

std::set<std::string> Names(const nlohmann::json& entries) {
    std::set<std::string> names;
    for (const auto& entry : entries)
        names.insert(entry["name"].get<std::string>());
    return names;
}

} // namespace

TEST_F(CliFiles, LsPrintsTheBackEndsEntries) {
    ProcessResult r = RunVexa({"ls", "--json", Remote("/Data")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    nlohmann::json entries = nlohmann::json::parse(r.out);
    ASSERT_TRUE(entries.is_array());
    EXPECT_EQ(Names(entries), (std::set<std::string>{"..", "a.mth", "run1.vxs", "Sub"}));
    for (const auto& entry : entries) {
        for (const char* key : {"name", "size", "folder", "attributes", "created", "accessed", "modified"})
            EXPECT_TRUE(entry.contains(key)) << key;
        if (entry["name"] == "run1.vxs") {
            EXPECT_EQ(entry["size"], 150000);
            EXPECT_EQ(entry["folder"], false);
            EXPECT_GT(entry["modified"].get<int64_t>(), 1000000000LL * 1000000);
        }
        if (entry["name"] == "Sub") {
            EXPECT_EQ(entry["folder"], true);
        }
    }

    r = RunVexa({"--json", "ls", "--all", "--pattern", "*.MTH;.h*", Remote("/Data")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(Names(nlohmann::json::parse(r.out)), (std::set<std::string>{"a.mth", ".hidden", ".."}));

    r = RunVexa({"ls", Remote("/Data")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_LT(r.out.find(".."), r.out.find("Sub/")) << r.out;
    EXPECT_LT(r.out.find("Sub/"), r.out.find("a.mth")) << r.out;
    EXPECT_NE(r.out.find("150000"), std::string::npos) << r.out;
}

TEST_F(CliFiles, StatDescribesAndPreviews) {
    ProcessResult r = RunVexa({"stat", "--json", "--preview", "4", Remote("/Data/a.mth")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    nlohmann::json entry = nlohmann::json::parse(r.out);
    EXPECT_EQ(entry["name"], "a.mth");
    EXPECT_EQ(entry["size"], 8);
    EXPECT_EQ(entry["previewSize"], 4);
    EXPECT_EQ(entry["preview"], "6d657468"); // "meth"

    r = RunVexa({"stat", Remote("/Data/none")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("2 (file not found)"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("no such file"), std::string::npos) << "the instrument's message: " << r.err;
}

TEST_F(CliFiles, GetAndPutRoundTripThroughTheTemporaryName) {
    ProcessResult r = RunVexa({"-v", "get", Remote("/Data/run1.vxs"), m_pc.path() + "/"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(ReadWholeFile(m_pc.file("run1.vxs")) == ReadWholeFile(Instrument("/Data/run1.vxs")));
    EXPECT_NE(r.err.find("over link"), std::string::npos) << r.err;

    r = RunVexa({"put", m_pc.file("run1.vxs"), Remote("/Data/Sub/")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(ReadWholeFile(Instrument("/Data/Sub/run1.vxs")) == ReadWholeFile(m_pc.file("run1.vxs")));

    r = RunVexa({"put", m_pc.file("run1.vxs"), Remote("/Data/Sub/copy.vxs")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(FileExists(Instrument("/Data/Sub/copy.vxs")));
    EXPECT_TRUE(LeftoverTemporaries(m_instrument.root()).empty());
    EXPECT_TRUE(LeftoverTemporaries(m_pc.path()).empty());
}

TEST_F(CliFiles, ExistingFilesNeedAnAnswerWithoutATerminal) {
    m_pc.createFile("a.mth", "mine");
    ProcessResult r = RunVexa({"get", Remote("/Data/a.mth"), m_pc.file("a.mth")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("--overwrite"), std::string::npos) << r.err;
    EXPECT_EQ(ReadWholeFile(m_pc.file("a.mth")), "mine");

    r = RunVexa({"get", "--overwrite", "no", Remote("/Data/a.mth"), m_pc.file("a.mth")});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadWholeFile(m_pc.file("a.mth")), "mine");

    r = RunVexa({"get", "--overwrite", "yes", Remote("/Data/a.mth"), m_pc.file("a.mth")});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadWholeFile(m_pc.file("a.mth")), "method a");

    EXPECT_EQ(RunVexa({"get", "--overwrite", "maybe", Remote("/Data/a.mth"), m_pc.path()}).exitCode, 2);
}

// At a terminal the question shows both files, the newer marked, and takes the typed answer.
TEST_F(CliFiles, AtATerminalTheQuestionComparesBothFiles) {
    const std::string mine = m_pc.createFile("a.mth", "mine");
    const timespec future[2] = {{0, UTIME_OMIT}, {::time(nullptr) + 3600, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, mine.c_str(), future, 0), 0);
    ProcessResult r = RunVexaOnTerminal({"get", Remote("/Data/a.mth"), mine}, "n\n");
    EXPECT_EQ(r.exitCode, 0) << r.out;
    EXPECT_NE(r.out.find("a.mth exists."), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("existing:     4 bytes, modified "), std::string::npos) << r.out;
    EXPECT_NE(r.out.find("replace with: 8 bytes, modified "), std::string::npos) << r.out;
    const size_t newer = r.out.find("(newer)");
    EXPECT_TRUE(newer != std::string::npos && newer < r.out.find("replace with:")) << r.out;
    EXPECT_EQ(ReadWholeFile(mine), "mine");

    r = RunVexaOnTerminal({"get", Remote("/Data/a.mth"), mine}, "y\n");
    EXPECT_EQ(r.exitCode, 0) << r.out;
    EXPECT_EQ(ReadWholeFile(mine), "method a");
}

TEST_F(CliFiles, DataFilesNeedAccessLevelZero) {
    ProcessResult r = RunVexa({"get", Remote("/Data/run1.vxs"), m_pc.path() + "/"}, 60000, {"VEXA_ACCESS=1"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("access level 0"), std::string::npos) << r.err;
    EXPECT_FALSE(FileExists(m_pc.file("run1.vxs")));

    // A tree copy leaves them out without a word, as the file manager does.
    r = RunVexa({"cp", "-r", Remote("/Data"), m_pc.file("tree")}, 60000, {"VEXA_ACCESS=1"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_TRUE(FileExists(m_pc.file("tree/a.mth")));
    EXPECT_TRUE(FileExists(m_pc.file("tree/Sub")));
    EXPECT_FALSE(FileExists(m_pc.file("tree/run1.vxs")));
}

TEST_F(CliFiles, CopyTreesBothWays) {
    m_pc.createFile("up/x.txt", "x");
    m_pc.createFile("up/in/y.txt", "y");
    ProcessResult r = RunVexa({"cp", "-r", m_pc.file("up"), Remote("/Data/")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadWholeFile(Instrument("/Data/up/in/y.txt")), "y");

    r = RunVexa({"cp", "-r", Remote("/Data/up"), m_pc.file("down")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadWholeFile(m_pc.file("down/in/y.txt")), "y");

    r = RunVexa({"cp", Remote("/Data/up"), m_pc.file("flat")});
    EXPECT_EQ(r.exitCode, 1) << "a folder needs -r";
    r = RunVexa({"cp", Remote("/Data/a.mth"), m_pc.file("down/a2.mth")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(ReadWholeFile(m_pc.file("down/a2.mth")), "method a");
}

// Several links at once: each carries its share of the files, and every file arrives whole.
TEST_F(CliFiles, CopyTreesOverSeveralLinks) {
    for (int i = 0; i < 7; ++i)
        m_instrument.tree().createFile("Data/Many/f" + std::to_string(i) + ".txt",
                                       RandomBytes(3000 + i, unsigned(i)));
    m_instrument.tree().createFile("Data/Many/Sub/s.txt", "s");
    // Links that said hello and ended (the simulator's start-up probe never says hello).
    const auto linksServed = [this] {
        const std::string log = m_instrument.sim().log();
        const auto count = [&log](const std::string& text) {
            int n = 0;
            for (size_t at = 0; (at = log.find(text, at)) != std::string::npos; ++at)
                ++n;
            return n;
        };
        return count("connection closed") - count("closed before the hello");
    };
    ProcessResult r = RunVexa({"cp", "-r", "--jobs", "3", Remote("/Data/Many"), m_pc.file("down")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    // Each link comes with its command channel: three links are six connections, whose ends the
    // simulator notes on its own threads.
    for (int i = 0; i < 100 && linksServed() < 6; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(linksServed(), 6) << m_instrument.sim().log();
    r = RunVexa({"cp", "-r", "--jobs", "3", m_pc.file("down"), Remote("/Data/Back")});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    for (const std::string name : {"f0.txt", "f3.txt", "f6.txt", "Sub/s.txt"}) {
        EXPECT_EQ(ReadWholeFile(m_pc.file("down/" + name)), ReadWholeFile(Instrument("/Data/Many/" + name)))
            << name;
        EXPECT_EQ(ReadWholeFile(Instrument("/Data/Back/" + name)),
                  ReadWholeFile(Instrument("/Data/Many/" + name)))
            << name;
    }
}

TEST_F(CliFiles, FolderCommandsAndTheirStatuses) {
    EXPECT_EQ(RunVexa({"mkdir", Remote("/Data/New")}).exitCode, 0);
    EXPECT_TRUE(FileExists(Instrument("/Data/New")));
    ProcessResult r = RunVexa({"mkdir", Remote("/Data/New")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("17 (file exists)"), std::string::npos) << r.err;

    EXPECT_EQ(RunVexa({"mv", Remote("/Data/New"), "Renamed"}).exitCode, 0);
    EXPECT_TRUE(FileExists(Instrument("/Data/Renamed")));
    EXPECT_EQ(RunVexa({"mv", Remote("/Data/a.mth"), Remote("/Data/Renamed/b.mth")}).exitCode, 0);
    EXPECT_TRUE(FileExists(Instrument("/Data/Renamed/b.mth")));
    EXPECT_EQ(RunVexa({"mv", Remote("/Data/Renamed"), "@127.9.9.9:/x"}).exitCode, 2);

    r = RunVexa({"rmdir", Remote("/Data/Renamed")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("not empty"), std::string::npos) << r.err;
    EXPECT_EQ(RunVexa({"rmdir", "-r", Remote("/Data/Renamed")}).exitCode, 0);
    EXPECT_FALSE(FileExists(Instrument("/Data/Renamed")));

    EXPECT_EQ(RunVexa({"rm", Remote("/Data/run1.vxs")}).exitCode, 0);
    EXPECT_FALSE(FileExists(Instrument("/Data/run1.vxs")));
    r = RunVexa({"rm", Remote("/Data/run1.vxs")});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("2 (file not found)"), std::string::npos) << r.err;
}

TEST_F(CliFiles, RunPrintsTheOutput) {
    ProcessResult r = RunVexa({"run", "--timeout", "5", m_instrument.address(), "status"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_NE(r.out.find("model="), std::string::npos) << r.out;
    r = RunVexa({"--json", "run", m_instrument.address(), "status"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(nlohmann::json::parse(r.out)["command"], "status");
    r = RunVexa({"run", m_instrument.address(), "no-such-command"});
    EXPECT_EQ(r.exitCode, 1);
}

TEST_F(CliFiles, ExitCodesForUsageAndUnreachableInstruments) {
    const std::string nobody = "@" + FreshLoopbackAddress() + ":/Data";
    struct Case {
        std::vector<std::string> args;
        int exitCode;
    } cases[] = {
        {{"ls", nobody}, 3},
        {{"stat", nobody + "/x"}, 3},
        {{"mkdir", nobody + "/x"}, 3},
        {{"run", nobody.substr(1, nobody.find(':') - 1), "status"}, 3},
        {{"ls", "/tmp"}, 2},
        {{"ls", "@bad host:/x"}, 2},
        {{"ls", "@" + m_instrument.address() + ":relative"}, 2},
        {{"get", "/tmp/x", "/tmp/y"}, 2},
        {{"put", Remote("/Data/a.mth"), "/tmp/y"}, 2},
        {{"ls"}, 2},
        {{"cp", "-r", "--jobs", "0", Remote("/Data"), "/tmp/y"}, 2},
        {{"cp", "-r", "--jobs", "17", Remote("/Data"), "/tmp/y"}, 2},
        {{"get", Remote("/Data/none"), "/tmp/"}, 1},
    };
    for (const Case& c : cases) {
        ProcessResult r = RunVexa(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode)
            << c.args[0] << " " << (c.args.size() > 1 ? c.args[1] : "") << ": " << r.err;
    }
}
