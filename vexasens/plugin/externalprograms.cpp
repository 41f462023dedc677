// SPDX-License-Identifier: Apache-2.0
#include "externalprograms.h"

#include "paths.h"
#include "processlaunch.h"
#include "pxformat.h"
#include "pxresource.h"
#include "registry.h"
#include "resource.h"
#include "stringtable.h"
#include "text.h"
#include "tooluserinterface.h"
#include "winsockerror.h"

#include <algorithm>

namespace {

const wchar_t kProgramsSection[] = L"Programs";

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
    return SpawnDetached(program, arguments);
}

std::wstring DocumentOpener() {
    const std::wstring opener = CPXRegistry::Instance().GetString(kProgramsSection, L"Opener", L"");
    return opener.empty() ? DesktopOpenerName() : opener;
}

int ShellOpen(const std::wstring& path, int* openerError) {
    if (path.empty() || !PathAccessible(path, 0))
        return kProgramNotFound;
    const std::wstring opener = CPXRegistry::Instance().GetString(kProgramsSection, L"Opener", L"");
    const int error = opener.empty()
                          ? OpenWithDesktop(path)
                          : StartDetachedProgram(opener, PatternArguments(L"Opener", L"%1", {path}));
    if (openerError)
        *openerError = error;
    // The page is there: a failure is the opener's, never "file not found".
    return error == 0 ? 0 : kNoOpener;
}

bool NistSwitch(bool /*flag*/) {
    return StartConfigured(L"NIST", L"Nist", PatternArguments(L"Nist", L"%1", {}));
}

bool AmdisSwitch(const std::wstring& first, const std::wstring& second) {
    return StartConfigured(L"AMDIS", L"Amdis", PatternArguments(L"Amdis", L"%1 %2", {first, second}));
}
