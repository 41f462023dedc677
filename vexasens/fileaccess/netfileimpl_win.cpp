// SPDX-License-Identifier: Apache-2.0
#include "netfileimpl.h"

#include "ftpconnection_win.h"
#include "remotename.h"
#include "winsockerror.h"

NETFileImpl::NETFileImpl(const std::wstring& host, const std::wstring& folder, const std::wstring& file,
                         const std::wstring& mode)
    : m_connection(std::make_unique<FtpConnection>(get_actual_host(host), folder)) {
    if (!m_connection->Connected())
        return;
    if (file.empty()) {
        m_connection->SetError(kErrInvalid, L"no FTP file name");
        return;
    }
    m_writing = !mode.empty() && mode[0] == L'w';
    const bool ascii = mode.find(L't') != std::wstring::npos;
    if (m_writing)
        OpenForWriting(file, ascii);
    else
        OpenForReading(file, ascii);
}

NETFileImpl::~NETFileImpl() {
    Close();
}

void NETFileImpl::OpenForReading(const std::wstring& file, bool ascii) {
    WIN32_FIND_DATAW found{};
    HINTERNET search = FtpFindFirstFileW(m_connection->Handle(), file.c_str(), &found, 0, 0);
    if (search != nullptr) {
        m_length = static_cast<int>(found.nFileSizeLow);
        InternetCloseHandle(search);
    } else {
        // The open below may still succeed; the error then stays set.
        m_connection->KeepLastError();
    }
    Open(file, GENERIC_READ, ascii);
}

void NETFileImpl::OpenForWriting(const std::wstring& file, bool ascii) {
    FtpDeleteFileW(m_connection->Handle(), file.c_str()); // a missing old file is no failure
    Open(file, GENERIC_WRITE, ascii);
}

void NETFileImpl::Open(const std::wstring& file, unsigned long access, bool ascii) {
    const DWORD type = ascii ? FTP_TRANSFER_TYPE_ASCII : FTP_TRANSFER_TYPE_BINARY;
    HINTERNET handle = FtpOpenFileW(m_connection->Handle(), file.c_str(), access, type, 0);
    if (handle == nullptr) {
        m_connection->KeepLastError();
        return;
    }
    m_connection->SetFile(handle);
    m_open = true;
}

int NETFileImpl::Read(void* buffer, int count) {
    if (!buffer || count < 0) {
        m_connection->SetError(kErrInvalid, L"no buffer to read into");
        return -1;
    }
    if (!m_open) {
        m_connection->SetError(kErrBadFile, L"no FTP file is open");
        return 0;
    }
    DWORD read = 0;
    if (!InternetReadFile(m_connection->File(), buffer, static_cast<DWORD>(count), &read)) {
        m_connection->KeepLastError();
        return -1;
    }
    return static_cast<int>(read);
}

int NETFileImpl::Write(const void* buffer, int count) {
    if (!buffer || count < 0) {
        m_connection->SetError(kErrInvalid, L"no buffer to write from");
        return 0;
    }
    if (!m_open) {
        m_connection->SetError(kErrBadFile, L"no FTP file is open");
        return 0;
    }
    FlushPendingText();
    if (count < 1)
        return 0;
    const char* in = static_cast<const char*>(buffer);
    int left = count;
    while (left > 0) {
        DWORD written = 0;
        if (!InternetWriteFile(m_connection->File(), in, static_cast<DWORD>(left), &written)) {
            m_connection->KeepLastError();
            return -1;
        }
        if (written == 0) {
            m_connection->SetError(kErrBadFile, L"the FTP server takes no more bytes");
            return -1;
        }
        in += written;
        left -= static_cast<int>(written);
    }
    return count;
}

int NETFileImpl::GetError() {
    return m_connection->Error();
}

std::wstring NETFileImpl::GetErrorText() {
    return m_connection->ErrorText();
}

// Closing the file handle ends the transfer; for a write WinINet then reads the server's verdict.
bool NETFileImpl::Close() {
    FlushPendingText();
    if (!m_open)
        return false;
    m_open = false;
    const bool hadError = m_writing && m_connection->Error() != 0 && m_connection->Error() != kErrBadFile;
    return m_connection->CloseFile() && !hadError;
}
