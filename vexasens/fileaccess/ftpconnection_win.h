// SPDX-License-Identifier: Apache-2.0
#pragma once
// One FTP connection through WinINet: the session (agent "VEXARON", the platform's proxy settings) and
// the connection to the instrument (default FTP port, user "qord", empty password, active transfers),
// in the instrument's folder. Used by one thread at a time.
//
// Errors are WinINet's own numbers as GetLastError gives them; for 12003 (the server refused a command)
// ErrorText holds the server's reply.
#include <windows.h>
#include <wininet.h>

#include <string>

class FtpConnection {
public:
    // Opens the session, connects to `host` (already mapped through get_actual_host) and changes to
    // `folder` when it is not empty. A failed step keeps its error and leaves Connected() false.
    FtpConnection(const std::wstring& host, const std::wstring& folder);
    // Closes the open file, the connection and the session, in that order.
    ~FtpConnection();
    FtpConnection(const FtpConnection&) = delete;
    FtpConnection& operator=(const FtpConnection&) = delete;

    bool Connected() const { return m_connection != nullptr; }
    HINTERNET Handle() const { return m_connection; }
    HINTERNET File() const { return m_file; }
    void SetFile(HINTERNET file) { m_file = file; }
    // Closes the open file; false when WinINet reports that the transfer did not end well.
    bool CloseFile();

    int Error() const { return m_error; }
    const std::wstring& ErrorText() const { return m_errorText; }
    void SetError(int code, std::wstring text);
    // Keeps the calling thread's last WinINet error (and the server's reply, when there is one).
    void KeepLastError();

private:
    HINTERNET m_session = nullptr;
    HINTERNET m_connection = nullptr;
    HINTERNET m_file = nullptr;
    int m_error = 0;
    std::wstring m_errorText;
};
