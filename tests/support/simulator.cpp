// SPDX-License-Identifier: Apache-2.0
#include "simulator.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/prctl.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "loopback.h"
#include "tempdir.h"

namespace {

constexpr int kLinkPort = 4840;
constexpr auto kStartLimit = std::chrono::seconds(5);
constexpr auto kStopLimit = std::chrono::seconds(5);
constexpr int kAttempts = 3;

bool AcceptsConnections(const std::string& address) {
    sockaddr_in target{};
    target.sin_family = AF_INET;
    target.sin_port = htons(kLinkPort);
    if (::inet_pton(AF_INET, address.c_str(), &target.sin_addr) != 1)
        return false;
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return false;
    // A loopback connect is answered at once: accepted, or refused while nothing listens yet.
    const bool connected = ::connect(fd, reinterpret_cast<const sockaddr*>(&target), sizeof target) == 0;
    ::close(fd);
    return connected;
}

std::string NewLogFile() {
    std::string base = "/tmp";
    if (const char* env = std::getenv("TMPDIR"); env && *env)
        base = env;
    std::string path = base + "/vexa-sim-log-XXXXXX";
    const int fd = ::mkstemp(path.data());
    if (fd < 0)
        throw std::runtime_error("cannot create a log file under " + base);
    ::close(fd);
    return path;
}

// Starts the program with stdout and stderr appended to `logPath`; -1 when fork fails.
int Spawn(const std::vector<std::string>& arguments, const std::string& logPath) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const int logFd = ::open(logPath.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
    const int nullFd = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const pid_t pid = ::fork();
    if (pid == 0) {
        // Only async-signal-safe calls between fork and exec: the test program may have threads.
        // A test killed by its time limit must not leave the simulator running.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(nullFd, 0);
        ::dup2(logFd, 1);
        ::dup2(logFd, 2);
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    ::close(logFd);
    ::close(nullFd);
    return pid;
}

} // namespace

SimulatorProcess::SimulatorProcess(const std::string& root, const std::vector<std::string>& extraArgs) {
    const char* program = std::getenv("VEXA_SIM");
    if (!program || !*program)
        throw std::runtime_error("VEXA_SIM does not name the vexa-sim program");
    m_logPath = NewLogFile();

    // An address may be taken by a simulator that another test left running: try a fresh one.
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        m_address = FreshLoopbackAddress();
        std::vector<std::string> arguments = {program, "--root", root, "--address", m_address};
        arguments.insert(arguments.end(), extraArgs.begin(), extraArgs.end());
        m_pid = Spawn(arguments, m_logPath);
        if (m_pid < 0)
            throw std::runtime_error("cannot start vexa-sim: fork failed");
        const auto deadline = std::chrono::steady_clock::now() + kStartLimit;
        while (std::chrono::steady_clock::now() < deadline && running()) {
            if (AcceptsConnections(m_address))
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        const bool exited = !running();
        stop();
        if (!exited)
            break;
    }
    const std::string output = log();
    ::unlink(m_logPath.c_str());
    throw std::runtime_error("vexa-sim did not start on " + m_address + ":\n" + output);
}

SimulatorProcess::~SimulatorProcess() {
    stop();
    ::unlink(m_logPath.c_str());
}

std::wstring SimulatorProcess::host() const {
    return std::wstring(m_address.begin(), m_address.end());
}

bool SimulatorProcess::running() const {
    if (m_pid <= 0)
        return false;
    // WNOWAIT leaves an exited child to be reaped by stop().
    siginfo_t info{};
    if (::waitid(P_PID, static_cast<id_t>(m_pid), &info, WEXITED | WNOHANG | WNOWAIT) != 0)
        return false;
    return info.si_pid == 0;
}

void SimulatorProcess::stop() {
    if (m_pid <= 0)
        return;
    ::kill(m_pid, SIGTERM);
    const auto deadline = std::chrono::steady_clock::now() + kStopLimit;
    for (;;) {
        int status = 0;
        const pid_t reaped = ::waitpid(m_pid, &status, WNOHANG);
        if (reaped == m_pid || (reaped < 0 && errno != EINTR))
            break;
        if (std::chrono::steady_clock::now() >= deadline) {
            ::kill(m_pid, SIGKILL);
            ::waitpid(m_pid, &status, 0);
            break;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    m_pid = -1;
}

std::string SimulatorProcess::log() const {
    return ReadWholeFile(m_logPath);
}
