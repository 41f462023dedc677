// SPDX-License-Identifier: Apache-2.0
#include "processlaunch.h"

#include <windows.h>

#include <shellapi.h>

#include <cerrno>
#include <process.h>

int SpawnDetached(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    std::vector<const wchar_t*> argv{program.c_str()};
    for (const std::wstring& argument : arguments)
        argv.push_back(argument.c_str());
    argv.push_back(nullptr);
    return _wspawnvp(_P_DETACH, program.c_str(), argv.data()) == -1 ? errno : 0;
}

// ShellExecuteW answers a number above 32 on success, otherwise an error (2: file not found).
int OpenWithDesktop(const std::wstring& path) {
    const auto result = reinterpret_cast<INT_PTR>(
        ShellExecuteW(nullptr, L"open", path.c_str(), nullptr, nullptr, SW_SHOWNORMAL));
    if (result > 32)
        return 0;
    return result == 0 ? ERROR_OUTOFMEMORY : static_cast<int>(result);
}

std::wstring DesktopOpenerName() {
    return L"ShellExecuteW \"open\"";
}
