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

#include <algorithm>
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

std::vector<std::wstring> PatternArguments(const wchar_t* key, const wchar_t* fallback,
                                           const std::vector<std::wstring>& inserts) {
    const std::wstring pattern =
        CPXRegistry::Instance().GetString(kProgramsSection, std::wstring(key) + L"Arguments", fallback);
    return ExpandArguments(pattern, inserts);
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

std::vector<std::wstring> ExpandArguments(const std::wstring& pattern,
                                          const std::vector<std::wstring>& inserts) {
    std::vector<std::wstring> words;
    size_t start = 0;
    while (start < pattern.size()) {
        const size_t end = std::min(pattern.find_first_of(L" \t", start), pattern.size());
        std::wstring word;
        for (size_t i = start; i < end; ++i) {
            const wchar_t c = pattern[i];
            if (c == L'%' && i + 1 < end && pattern[i + 1] >= L'1' && pattern[i + 1] <= L'9') {
                const size_t index = size_t(pattern[i + 1] - L'1');
                if (index < inserts.size())
                    word += inserts[index];
                ++i;
            } else {
                word += c;
            }
        }
        if (!word.empty())
            words.push_back(std::move(word));
        start = end + 1;
    }
    return words;
}

int StartDetachedProgram(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    if (program.empty())
        return kProgramNotFound;
    return Spawn(program, arguments);
}

int ShellOpen(const std::wstring& path) {
    if (path.empty() || !PathAccessible(path, 0))
        return kProgramNotFound;
    std::wstring opener = CPXRegistry::Instance().GetString(kProgramsSection, L"Opener", L"");
    return StartDetachedProgram(opener.empty() ? DefaultOpener() : opener,
                                PatternArguments(L"Opener", L"%1", {path}));
}

bool NistSwitch(bool /*flag*/) {
    return StartConfigured(L"NIST", L"Nist", PatternArguments(L"Nist", L"", {}));
}

bool AmdisSwitch(const std::wstring& first, const std::wstring& second) {
    return StartConfigured(L"AMDIS", L"Amdis", PatternArguments(L"Amdis", L"%1 %2", {first, second}));
}
