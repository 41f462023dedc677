// SPDX-License-Identifier: Apache-2.0
#include "processrun.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace {

void Drain(int fd, std::string& into) {
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        into.append(buffer, size_t(n));
}

[[noreturn]] void Exec(const std::string& program, const std::vector<std::string>& args,
                       const std::vector<std::string>& extraEnv) {
    for (const std::string& kv : extraEnv)
        putenv(strdup(kv.c_str()));
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& a : args)
        argv.push_back(const_cast<char*>(a.c_str()));
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
}

// Collects what the child writes to each of `fds` (closing them) until it exits or the time is up.
int CollectUntilExit(pid_t pid, const std::vector<std::pair<int, std::string*>>& fds, int timeoutMs) {
    std::vector<pollfd> watched;
    for (const auto& [fd, into] : fds) {
        fcntl(fd, F_SETFL, O_NONBLOCK);
        watched.push_back({fd, POLLIN, 0});
    }
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    int status = 0;
    bool exited = false, killed = false;
    while (!exited) {
        poll(watched.data(), watched.size(), 20);
        for (const auto& [fd, into] : fds)
            Drain(fd, *into);
        exited = waitpid(pid, &status, WNOHANG) == pid;
        if (!exited && std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            exited = killed = true;
        }
    }
    for (const auto& [fd, into] : fds) {
        Drain(fd, *into);
        ::close(fd);
    }
    return !killed && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace

ProcessResult RunProcess(const std::string& program, const std::vector<std::string>& args, int timeoutMs,
                         const std::vector<std::string>& extraEnv) {
    ProcessResult result;
    int outPipe[2], errPipe[2];
    if (pipe2(outPipe, O_CLOEXEC) != 0 || pipe2(errPipe, O_CLOEXEC) != 0)
        return result;
    pid_t pid = fork();
    if (pid == 0) {
        dup2(outPipe[1], 1);
        dup2(errPipe[1], 2);
        int null = ::open("/dev/null", O_RDONLY);
        dup2(null, 0);
        Exec(program, args, extraEnv);
    }
    ::close(outPipe[1]);
    ::close(errPipe[1]);
    result.exitCode =
        CollectUntilExit(pid, {{outPipe[0], &result.out}, {errPipe[0], &result.err}}, timeoutMs);
    return result;
}

ProcessResult RunOnTerminal(const std::string& program, const std::vector<std::string>& args,
                            const std::string& typed, int timeoutMs) {
    ProcessResult result;
    int terminal = -1;
    pid_t pid = forkpty(&terminal, nullptr, nullptr, nullptr);
    if (pid < 0)
        return result;
    if (pid == 0)
        Exec(program, args, {});
    // The terminal keeps what is typed until the program reads it.
    if (!typed.empty() && ::write(terminal, typed.data(), typed.size()) != ssize_t(typed.size()))
        result.err = "could not type the input";
    result.exitCode = CollectUntilExit(pid, {{terminal, &result.out}}, timeoutMs);
    return result;
}

ProcessResult RunVexa(const std::vector<std::string>& args, int timeoutMs,
                      const std::vector<std::string>& extraEnv) {
    const char* cli = std::getenv("VEXA_CLI");
    return RunProcess(cli ? cli : "vexa", args, timeoutMs, extraEnv);
}

ProcessResult RunVexaOnTerminal(const std::vector<std::string>& args, const std::string& typed,
                                int timeoutMs) {
    const char* cli = std::getenv("VEXA_CLI");
    return RunOnTerminal(cli ? cli : "vexa", args, typed, timeoutMs);
}
