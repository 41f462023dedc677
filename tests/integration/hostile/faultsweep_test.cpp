// SPDX-License-Identifier: Apache-2.0
// Fault sweeps: for every N, the simulator cuts the connection after its N-th frame (and, for a sample
// of N, stalls after N bytes) while `vexa` gets, puts, lists and copies a tree. Every run ends within
// the link's limits with the error in words and numbers; the destination's old file is intact or
// wholly replaced, nothing half-written stands under a final name and no temporary file stays on the
// PC.
#include "processrun.h"
#include "simulator.h"
#include "tempdir.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <map>
#include <set>

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

// Three data frames: 64 KiB, 64 KiB and the rest, incompressible.
const std::string kBig = RandomBytes(150000, 16);
const std::string kMiddle = RandomBytes(70000, 17);

std::set<std::string> Names(const std::string& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        names.insert(fs::relative(entry.path(), folder).generic_string());
    return names;
}

bool HasTemporaryFile(const std::string& folder) {
    for (const std::string& name : Names(folder))
        if (name.find("___temp@@") != std::string::npos)
            return true;
    return false;
}

class FaultSweep : public ::testing::Test {
protected:
    void SetUp() override {
        m_root.createFile("Data/big.vxs", "old on the instrument");
        m_root.createFile("Data/source.vxs", kBig);
        m_root.createFile("Data/tree/a.mth", "method a");
        m_root.createFile("Data/tree/b.vxs", kMiddle);
        m_root.createFile("Data/tree/sub/c.txt", "c");
    }

    // Runs `args` (with "@" standing for "@ADDRESS:") against a simulator with `fault`, then `check`
    // with the exit code. Returns the exit code.
    int RunFaulted(const std::string& fault, std::vector<std::string> args) {
        SimulatorProcess sim(m_root.path(), {"--fault", fault});
        for (std::string& arg : args)
            if (!arg.empty() && arg[0] == '@')
                arg = "@" + sim.address() + ":" + arg.substr(1);
        // One attempt per file: each fault here is about a single cut, not about the retries.
        args.insert(args.begin(), {"--retry", "0"});
        const auto start = Clock::now();
        const ProcessResult r = RunVexa(args, 60000);
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        // A cut link is noticed by the 3 s receive limit; the close waits add half a second each.
        EXPECT_LT(seconds, 15.0) << fault;
        EXPECT_NE(r.exitCode, -1) << fault << ": still running at the limit";
        if (r.exitCode != 0) {
            // "vexa: ...: NUMBER (meaning)"
            EXPECT_NE(r.err.find(" ("), std::string::npos) << fault << ": " << r.err;
        }
        return r.exitCode;
    }

    // Sweeps `fault`=N for N = 0, 1, ... until a run succeeds (at most `limit` frames).
    void SweepFrames(const std::vector<std::string>& args, int limit, const std::function<void(int)>& check) {
        bool succeeded = false;
        int cuts = 0;
        for (int n = 0; n <= limit && !succeeded; ++n, ++cuts) {
            SCOPED_TRACE("drop-after-frames=" + std::to_string(n));
            const int exitCode = RunFaulted("drop-after-frames=" + std::to_string(n), args);
            check(exitCode);
            succeeded = exitCode == 0;
        }
        EXPECT_TRUE(succeeded) << "no run got through within " << limit << " frames";
        std::printf("fault sweep: %s cut after every frame 0..%d\n", args[0].c_str(), cuts - 1);
    }

    TempDir m_root;
    TempDir m_pc;
};

} // namespace

TEST_F(FaultSweep, GetKeepsTheOldFileUntilTheNewOneIsWhole) {
    const std::string target = m_pc.createFile("big.vxs", "old on the pc");
    auto check = [&](int exitCode) {
        const std::string now = ReadWholeFile(target);
        EXPECT_TRUE(now == (exitCode == 0 ? kBig : "old on the pc")) << now.size() << " bytes";
        EXPECT_EQ(Names(m_pc.path()), std::set<std::string>{"big.vxs"});
        if (exitCode == 0)
            m_pc.createFile("big.vxs", "old on the pc"); // the next run starts from the old file again
    };
    SweepFrames({"get", "--overwrite", "yes", "@/Data/source.vxs", target}, 8, check);
    for (const int bytes : {0, 32, 40000, 140000}) {
        SCOPED_TRACE("stall-after=" + std::to_string(bytes));
        const int exitCode = RunFaulted("stall-after=" + std::to_string(bytes),
                                        {"get", "--overwrite", "yes", "@/Data/source.vxs", target});
        EXPECT_NE(exitCode, 0);
        check(exitCode);
    }
}

TEST_F(FaultSweep, PutLeavesTheInstrumentFileOldOrWhole) {
    const std::string source = m_pc.createFile("new.vxs", kBig);
    const std::string onInstrument = m_root.file("Data/big.vxs");
    const std::string temporary = m_root.file("Data/___temp@@big.vxs");
    SweepFrames({"put", "--overwrite", "yes", source, "@/Data/big.vxs"}, 8, [&](int exitCode) {
        if (FileExists(onInstrument)) {
            const std::string now = ReadWholeFile(onInstrument);
            EXPECT_TRUE(now == "old on the instrument" || now == kBig) << now.size() << " bytes";
        } else {
            // Cut between the old file's delete and the rename: the whole new file waits under the
            // temporary name (the replacement order is delete, then rename).
            EXPECT_TRUE(ReadWholeFile(temporary) == kBig);
        }
        if (exitCode == 0) {
            EXPECT_TRUE(ReadWholeFile(onInstrument) == kBig);
        }
        EXPECT_EQ(Names(m_pc.path()), std::set<std::string>{"new.vxs"});
    });
}

TEST_F(FaultSweep, ListingEndsWithAnErrorOrTheWholeFolder) {
    SweepFrames({"ls", "@/Data"}, 4, [](int) {});
    for (const int bytes : {0, 100, 2000}) {
        SCOPED_TRACE("stall-after=" + std::to_string(bytes));
        EXPECT_NE(RunFaulted("stall-after=" + std::to_string(bytes), {"ls", "@/Data"}), 0);
    }
}

TEST_F(FaultSweep, TreeCopyHoldsOnlyWholeFiles) {
    const std::string dest = m_pc.file("dest");
    const std::map<std::string, std::string> whole = {
        {"a.mth", "method a"}, {"b.vxs", kMiddle}, {"sub/c.txt", "c"}};
    SweepFrames({"cp", "-r", "--overwrite", "yes", "@/Data/tree", dest}, 14, [&](int exitCode) {
        EXPECT_FALSE(HasTemporaryFile(m_pc.path()));
        if (!fs::exists(dest))
            return;
        for (const std::string& name : Names(dest)) {
            if (fs::is_directory(dest + "/" + name))
                continue;
            ASSERT_TRUE(whole.count(name)) << name;
            EXPECT_TRUE(ReadWholeFile(dest + "/" + name) == whole.at(name)) << name;
        }
        if (exitCode == 0) {
            EXPECT_EQ(Names(dest), (std::set<std::string>{"a.mth", "b.vxs", "sub", "sub/c.txt"}));
        }
        fs::remove_all(dest); // the next run makes the tree anew, not a copy inside this one
    });
}
