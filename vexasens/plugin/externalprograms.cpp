#include "externalprograms.h"

#include "paths.h"
#include "pxformat.h"
#include "pxresource.h"
#include "registry.h"
#include "resource.h"
#include "stringtable.h"
#include "text.h"
#include "tooluserinterface.h"
#include "winsockerror.h"

#include <cerrno>

#ifdef _WIN32
#include <process.h>
#else
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

const wchar_t kProgramsSection[] = L"Programs";

#ifdef _WIN32
int Spawn(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    std::vector<const wchar_t*> argv{program.c_str()};
    for (const std::wstring& argument : arguments)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    return _wspawnvp(_P_DETACH, program.c_str(), argv.data()) == -1 ? errno : 0;
}
#else
// Double fork, so the program is nobody's zombie; a close-on-exec pipe carries exec's error back.
int Spawn(const std::wstring& program, const std::vector<std::wstring>& arguments) {
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
#endif

std::wstring DefaultOpener() {
#if defined(_WIN32)
    return L"explorer";
#elif defined(__APPLE__)
    return L"open";
#else
    return L"xdg-open";
#endif
}

bool StartConfigured(const wchar_t* name, const wchar_t* key, const std::vector<std::wstring>& arguments) {
    PXResourceScope scope(VexaResourceModule());
    CPXRegistry& registry = CPXRegistry::Instance();
    const std::wstring program = registry.GetString(kProgramsSection, key, L"");
    if (program.empty()) {
        std::wstring setting = std::wstring(kProgramsSection) + L"/" + key;
        std::wstring file = FromUtf8(registry.Path());
        VexaToolUserInterface().ShowMessage(PXFormatMessage(PXLoadCString(IDS_PROGRAM_NOT_CONFIGURED).c_str(),
                                                            name, setting.c_str(), file.c_str()));
        return false;
    }
    if (int error = StartDetachedProgram(program, arguments); error != 0) {
        VexaToolUserInterface().ShowMessage(PXFormatMessage(PXLoadCString(IDS_PROGRAM_START_FAILED).c_str(),
                                                            name, program.c_str(),
                                                            DescribeError(error).c_str()));
        return false;
    }
    return true;
}

} // namespace

int StartDetachedProgram(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    if (program.empty())
        return kProgramNotFound;
    return Spawn(program, arguments);
}

std::wstring DocumentOpener() {
    const std::wstring opener = CPXRegistry::Instance().GetString(kProgramsSection, L"Opener", L"");
    return opener.empty() ? DefaultOpener() : opener;
}

int ShellOpen(const std::wstring& path, int* openerError) {
    if (path.empty() || !PathAccessible(path, 0))
        return kProgramNotFound;
    const int error = StartDetachedProgram(DocumentOpener(), {path});
    if (openerError)
        *openerError = error;
    // The page is there: a failure is the opener's, never "file not found".
    return error == 0 ? 0 : kNoOpener;
}

bool NistSwitch(bool /*flag*/) {
    return StartConfigured(L"NIST", L"Nist", {});
}

bool AmdisSwitch(const std::wstring& first, const std::wstring& second) {
    std::vector<std::wstring> arguments;
    for (const std::wstring* text : {&first, &second}) {
        if (!text->empty())
            arguments.push_back(*text);
    }
    return StartConfigured(L"AMDIS", L"Amdis", arguments);
}
