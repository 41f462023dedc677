// SPDX-License-Identifier: Apache-2.0
#include "ftpserverprocess.h"

#include "loopback.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace {

constexpr int kStartTimeoutMs = 15000;
constexpr int kExitWaitMs = 5000;

// The Debian package installs pyftpdlib for the system interpreter, which a python3 earlier on PATH
// (pyenv, venv) may not see: the system one is tried first.
std::vector<std::string> PythonCandidates() {
    std::vector<std::string> candidates;
    if (const char* chosen = std::getenv("VEXA_PYTHON"))
        candidates.emplace_back(chosen);
    candidates.emplace_back("/usr/bin/python3");
    candidates.emplace_back("python3");
    return candidates;
}

// Reads the server's first line ("ready" or "error: ...") within the time limit.
std::string ReadFirstLine(int fd, int timeoutMs) {
    std::string line;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (line.find('\n') == std::string::npos) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            break;
        pollfd p{fd, POLLIN, 0};
        const int ready = poll(&p, 1, static_cast<int>(left.count()));
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            break;
        char chunk[256];
        const ssize_t got = read(fd, chunk, sizeof chunk);
        if (got <= 0)
            break;
        line.append(chunk, static_cast<size_t>(got));
    }
    return line.substr(0, line.find('\n'));
}

// The exit code of a server that gave up (the reason is in its code), or -1 after killing it.
int ExitCodeWithin(pid_t pid, int timeoutMs) {
    int status = 0;
    for (int waited = 0; waited < timeoutMs; waited += 10) {
        if (waitpid(pid, &status, WNOHANG) == pid)
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        usleep(10 * 1000);
    }
    kill(pid, SIGKILL);
    waitpid(pid, nullptr, 0);
    return -1;
}

} // namespace

FtpServerProcess::~FtpServerProcess() {
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGCONT);
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
}

bool FtpServerProcess::Start(const std::string& home, const std::string& user, std::string* whyNot,
                             bool* skippable, const std::string& address) {
    *skippable = false;
    m_address = address.empty() ? FreshLoopbackAddress() : address;
    std::string lastReason = "no python3 found";
    for (const std::string& python : PythonCandidates()) {
        int pipeFds[2];
        if (pipe2(pipeFds, O_CLOEXEC) != 0) {
            *whyNot = "pipe failed";
            return false;
        }
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
        std::vector<std::string> args = {python, FTP_SERVER_SCRIPT, "--address", m_address, "--root",
                                         home,   "--user",          user,        "--port",  "21"};
        std::vector<char*> argv;
        for (std::string& arg : args)
            argv.push_back(arg.data());
        argv.push_back(nullptr);
        pid_t pid = -1;
        const int spawned = posix_spawnp(&pid, python.c_str(), &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(pipeFds[1]);
        if (spawned != 0) {
            close(pipeFds[0]);
            lastReason = python + " cannot be started";
            continue;
        }
        const std::string line = ReadFirstLine(pipeFds[0], kStartTimeoutMs);
        close(pipeFds[0]);
        if (line == "ready") {
            m_pid = pid;
            return true;
        }
        const int code = ExitCodeWithin(pid, kExitWaitMs);
        lastReason = python + ": " + (line.empty() ? std::string("no answer") : line);
        if (code == 3) { // the address cannot be bound: another interpreter will not do better
            *whyNot = lastReason + " (port 21 needs root or CAP_NET_BIND_SERVICE)";
            *skippable = true;
            return false;
        }
        if (code != 4 && code != 127) { // anything but "pyftpdlib missing" / "no interpreter"
            *whyNot = lastReason;
            return false;
        }
    }
    *whyNot = lastReason + " (install python3-pyftpdlib)";
    *skippable = true;
    return false;
}

void FtpServerProcess::Kill() {
    if (m_pid <= 0)
        return;
    kill(m_pid, SIGCONT);
    kill(m_pid, SIGKILL);
    waitpid(m_pid, nullptr, 0);
    m_pid = -1;
}

void FtpServerProcess::Freeze() {
    if (m_pid > 0)
        kill(m_pid, SIGSTOP);
}

void FtpServerProcess::Thaw() {
    if (m_pid > 0)
        kill(m_pid, SIGCONT);
}
