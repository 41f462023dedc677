// SPDX-License-Identifier: Apache-2.0
// The simulator as a program: start-up failures, exit codes, stopping on a signal.
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>

#include "loopback.h"
#include "simulatorfixture.h"

namespace {

// Runs the simulator under coreutils timeout (by default a hard limit of 10 s); the exit code, or -1.
int RunSimulator(const std::string& arguments, const std::string& logPath, const std::string& limit = "10") {
    const std::string command =
        "timeout " + limit + " '" + std::getenv("VEXA_SIM") + "' " + arguments + " >'" + logPath + "' 2>&1";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

TEST_F(SimulatorTest, StartUpFailuresExitWithClearMessages) {
    Start();
    const std::string log = m_temp.file("run.log");
    const std::string rootArg = " --root '" + root() + "'";
    struct Case {
        std::string arguments;
        int exitCode;
        const char* message;
    };
    m_temp.createFile("bad.json", R"({"model": "two"})");
    const Case cases[] = {
        {rootArg + " --address " + m_simulator->address(), 1, "Address already in use"},
        {rootArg + " --address 127.0.0.256", 1, "not an IPv4 address"},
        {" --root '" + m_temp.file("none") + "' --address " + FreshLoopbackAddress(), 1, "is not a folder"},
        {rootArg + " --address " + FreshLoopbackAddress() + " --profile '" + m_temp.file("bad.json") + "'", 1,
         "wrong value for \"model\""},
        {rootArg + " --fault stall-after=x", 2, "malformed fault"},
        {rootArg + " --reply-delay -5", 2, "--reply-delay needs a number"},
        {rootArg + " --reply-delay 60001", 2, "--reply-delay needs a number"},
        {rootArg + " --bogus", 2, "unknown option"},
        {"", 2, "--root or --demo is required"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.arguments);
        EXPECT_EQ(RunSimulator(c.arguments, log), c.exitCode);
        EXPECT_NE(ReadWholeFile(log).find(c.message), std::string::npos) << ReadWholeFile(log);
    }
}

TEST_F(SimulatorTest, StopsCleanlyOnInterrupt) {
    const std::string log = m_temp.file("run.log");
    const std::string address = FreshLoopbackAddress();
    // timeout sends SIGINT after one second and passes on the simulator's own exit code.
    EXPECT_EQ(RunSimulator("--root '" + root() + "' --address " + address, log, "--preserve-status -s INT 1"),
              0);
    EXPECT_NE(ReadWholeFile(log).find("vexa-sim: serving " + std::filesystem::canonical(root()).string() +
                                      " on " + address + ":4840"),
              std::string::npos)
        << ReadWholeFile(log);
}
