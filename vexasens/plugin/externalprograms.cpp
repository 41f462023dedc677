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

namespace {

const wchar_t kProgramsSection[] = L"Programs";

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
    const int error = opener.empty() ? OpenWithDesktop(path) : StartDetachedProgram(opener, {path});
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
