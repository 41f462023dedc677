// SPDX-License-Identifier: Apache-2.0
#include "processlaunch.h"

#include "text.h"

#include <cerrno>
#include <string>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

// Double fork, so the program is nobody's zombie; a close-on-exec pipe carries exec's error back.
int SpawnDetached(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    std::vector<std::string> texts{ToUtf8(program)};
    for (const std::wstring& argument : arguments)
        texts.push_back(ToUtf8(argument));
    std::vector<char*> argv;
    for (std::string& text : texts)
        argv.push_back(text.data());
    argv.push_back(nullptr);

    int pipeFds[2];
    if (pipe2(pipeFds, O_CLOEXEC) != 0)
        return errno;
    pid_t child = fork();
    if (child < 0) {
        int error = errno;
        close(pipeFds[0]);
        close(pipeFds[1]);
        return error;
    }
    if (child == 0) {
        setsid();
        pid_t grandchild = fork();
        if (grandchild == 0) {
            execvp(argv[0], argv.data());
            int error = errno;
            ssize_t ignored = write(pipeFds[1], &error, sizeof error);
            (void)ignored;
            _exit(127);
        }
        if (grandchild < 0) {
            int error = errno;
            ssize_t ignored = write(pipeFds[1], &error, sizeof error);
            (void)ignored;
        }
        _exit(0);
    }
    close(pipeFds[1]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    int error = 0;
    ssize_t got;
    while ((got = read(pipeFds[0], &error, sizeof error)) < 0 && errno == EINTR) {
    }
    close(pipeFds[0]);
    return got == ssize_t(sizeof error) ? error : 0;
}

std::wstring DesktopOpenerName() {
    return L"xdg-open";
}

int OpenWithDesktop(const std::wstring& path) {
    return SpawnDetached(DesktopOpenerName(), {path});
}
