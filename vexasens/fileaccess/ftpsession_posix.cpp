// SPDX-License-Identifier: Apache-2.0
#include "ftpsession.h"

#include "ftpconnection.h"
#include "ftperror.h"
#include "remotename.h"
#include "text.h"

namespace {

bool HasLineBreak(const std::wstring& text) {
    return text.find_first_of(std::wstring(L"\r\n\0", 3)) != std::wstring::npos;
}

// Sends `commands` after changing to `folder`, in one request that moves no file data.
bool RunCommands(const std::wstring& host, const std::wstring& folder, const std::wstring& command1,
                 const std::wstring& command2, int* error, std::wstring* text) {
    FtpConnection connection(get_actual_host(host));
    bool ok = false;
    if (HasLineBreak(command1) || HasLineBreak(command2)) {
        connection.SetError(22, L"an FTP file name may not hold a line break");
    } else if (connection.Usable() && connection.SetTarget(folder, L"")) {
        curl_slist* commands = curl_slist_append(nullptr, ToUtf8(command1).c_str());
        if (commands && !command2.empty())
            commands = curl_slist_append(commands, ToUtf8(command2).c_str());
        if (!commands) {
            connection.SetError(kFtpCurlErrorBase + CURLE_OUT_OF_MEMORY, L"out of memory");
        } else {
            // After the change of folder, so that relative names resolve in it.
            curl_easy_setopt(connection.Easy(), CURLOPT_NOBODY, 1L);
            curl_easy_setopt(connection.Easy(), CURLOPT_POSTQUOTE, commands);
            ok = connection.Run();
            curl_slist_free_all(commands);
        }
    }
    if (error)
        *error = ok ? 0 : connection.Error();
    if (text)
        *text = ok ? std::wstring() : connection.ErrorText();
    return ok;
}

} // namespace

bool FtpRename(const std::wstring& host, const std::wstring& folder, const std::wstring& from,
               const std::wstring& to, int* error, std::wstring* text) {
    if (from.empty() || to.empty()) {
        if (error)
            *error = 22;
        if (text)
            *text = L"a rename needs both names";
        return false;
    }
    return RunCommands(host, folder, L"RNFR " + from, L"RNTO " + to, error, text);
}

bool FtpDelete(const std::wstring& host, const std::wstring& folder, const std::wstring& name, int* error,
               std::wstring* text) {
    if (name.empty()) {
        if (error)
            *error = 22;
        if (text)
            *text = L"no file name to delete";
        return false;
    }
    return RunCommands(host, folder, L"DELE " + name, L"", error, text);
}
