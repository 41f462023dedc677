// SPDX-License-Identifier: Apache-2.0
#include "ftpconnection_win.h"

#include "ftpsession.h"

namespace {

constexpr wchar_t kAgent[] = L"VEXARON";
constexpr wchar_t kUser[] = L"qord";
constexpr wchar_t kPassword[] = L"";

std::wstring LastResponseText() {
    DWORD code = 0;
    DWORD length = 0;
    InternetGetLastResponseInfoW(&code, nullptr, &length);
    if (length == 0)
        return {};
    std::wstring text(length + 1, L'\0');
    if (!InternetGetLastResponseInfoW(&code, text.data(), &length))
        return {};
    text.resize(length);
    while (!text.empty() && (text.back() == L'\n' || text.back() == L'\r' || text.back() == L'\0'))
        text.pop_back();
    return text;
}

// Every wait of WinINet is bounded by the same limit as a stalled transfer elsewhere.
void SetTimeouts(HINTERNET session) {
    DWORD ms = static_cast<DWORD>(FtpStallTimeout().count());
    InternetSetOptionW(session, INTERNET_OPTION_CONNECT_TIMEOUT, &ms, sizeof ms);
    InternetSetOptionW(session, INTERNET_OPTION_SEND_TIMEOUT, &ms, sizeof ms);
    InternetSetOptionW(session, INTERNET_OPTION_RECEIVE_TIMEOUT, &ms, sizeof ms);
}

} // namespace

FtpConnection::FtpConnection(const std::wstring& host, const std::wstring& folder) {
    m_session = InternetOpenW(kAgent, INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    if (m_session == nullptr) {
        KeepLastError();
        return;
    }
    SetTimeouts(m_session);
    // No flags: INTERNET_FLAG_PASSIVE stays off, the transfers are active.
    m_connection = InternetConnectW(m_session, host.c_str(), INTERNET_DEFAULT_FTP_PORT, kUser, kPassword,
                                    INTERNET_SERVICE_FTP, 0, 0);
    if (m_connection == nullptr) {
        KeepLastError();
        return;
    }
    if (!folder.empty() && !FtpSetCurrentDirectoryW(m_connection, folder.c_str())) {
        KeepLastError();
        InternetCloseHandle(m_connection);
        m_connection = nullptr;
    }
}

FtpConnection::~FtpConnection() {
    CloseFile();
    if (m_connection != nullptr)
        InternetCloseHandle(m_connection);
    if (m_session != nullptr)
        InternetCloseHandle(m_session);
}

bool FtpConnection::CloseFile() {
    if (m_file == nullptr)
        return false;
    const bool ok = InternetCloseHandle(m_file) != FALSE;
    m_file = nullptr;
    if (!ok)
        KeepLastError();
    return ok;
}

void FtpConnection::SetError(int code, std::wstring text) {
    m_error = code;
    m_errorText = std::move(text);
}

void FtpConnection::KeepLastError() {
    m_error = static_cast<int>(GetLastError());
    m_errorText = m_error == ERROR_INTERNET_EXTENDED_ERROR ? LastResponseText() : std::wstring();
}
