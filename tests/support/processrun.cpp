#include "processrun.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

void Drain(int fd, std::string& into) {
    char buffer[4096];
    ssize_t n;
    while ((n = ::read(fd, buffer, sizeof buffer)) > 0)
        into.append(buffer, size_t(n));
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
        for (const std::string& kv : extraEnv)
            putenv(strdup(kv.c_str()));
        std::vector<char*> argv{const_cast<char*>(program.c_str())};
        for (const std::string& a : args)
            argv.push_back(const_cast<char*>(a.c_str()));
        argv.push_back(nullptr);
        execv(program.c_str(), argv.data());
        _exit(127);
    }
    ::close(outPipe[1]);
    ::close(errPipe[1]);
    fcntl(outPipe[0], F_SETFL, O_NONBLOCK);
    fcntl(errPipe[0], F_SETFL, O_NONBLOCK);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    int status = 0;
    bool exited = false;
    while (!exited) {
        pollfd fds[2] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
        poll(fds, 2, 20);
        Drain(outPipe[0], result.out);
        Drain(errPipe[0], result.err);
        exited = waitpid(pid, &status, WNOHANG) == pid;
        if (!exited && std::chrono::steady_clock::now() > deadline) {
            kill(pid, SIGKILL);
            waitpid(pid, &status, 0);
            ::close(outPipe[0]);
            ::close(errPipe[0]);
            result.exitCode = -1;
            return result;
        }
    }
    Drain(outPipe[0], result.out);
    Drain(errPipe[0], result.err);
    ::close(outPipe[0]);
    ::close(errPipe[0]);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

ProcessResult RunVexa(const std::vector<std::string>& args, int timeoutMs,
                      const std::vector<std::string>& extraEnv) {
    const char* cli = std::getenv("VEXA_CLI");
    return RunProcess(cli ? cli : "vexa", args, timeoutMs, extraEnv);
}
