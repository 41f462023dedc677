// SPDX-License-Identifier: Apache-2.0
#include "ftpsession.h"

#include "ftpconnection_win.h"
#include "remotename.h"

namespace {

bool HasLineBreak(const std::wstring& text) {
    return text.find_first_of(std::wstring(L"\r\n\0", 3)) != std::wstring::npos;
}

// Connects, changes to `folder` and runs `command` on the connection.
template <typename Command>
bool RunCommand(const std::wstring& host, const std::wstring& folder, Command command, int* error,
                std::wstring* text) {
    FtpConnection connection(get_actual_host(host), folder);
    const bool ok = connection.Connected() && command(connection.Handle());
    if (connection.Connected() && !ok)
        connection.KeepLastError();
    if (error)
        *error = ok ? 0 : connection.Error();
    if (text)
        *text = ok ? std::wstring() : connection.ErrorText();
    return ok;
}

bool Refuse(const wchar_t* why, int* error, std::wstring* text) {
    if (error)
        *error = 22;
    if (text)
        *text = why;
    return false;
}

} // namespace

bool FtpRename(const std::wstring& host, const std::wstring& folder, const std::wstring& from,
               const std::wstring& to, int* error, std::wstring* text) {
    if (from.empty() || to.empty())
        return Refuse(L"a rename needs both names", error, text);
    if (HasLineBreak(from) || HasLineBreak(to))
        return Refuse(L"an FTP file name may not hold a line break", error, text);
    return RunCommand(
        host, folder, [&](HINTERNET c) { return FtpRenameFileW(c, from.c_str(), to.c_str()) != FALSE; },
        error, text);
}

bool FtpDelete(const std::wstring& host, const std::wstring& folder, const std::wstring& name, int* error,
               std::wstring* text) {
    if (name.empty())
        return Refuse(L"no file name to delete", error, text);
    if (HasLineBreak(name))
        return Refuse(L"an FTP file name may not hold a line break", error, text);
    return RunCommand(
        host, folder, [&](HINTERNET c) { return FtpDeleteFileW(c, name.c_str()) != FALSE; }, error, text);
}
