// SPDX-License-Identifier: Apache-2.0
#pragma once
// The FTP back end of StdioFile for a file on an instrument, used when the instrument link does not
// reach the instrument. Reading and writing stream whatever the file's size: on Windows through
// WinINet's own FTP functions, elsewhere through libcurl and a small buffer.
//
// Thread rule: one thread at a time (the copy worker or the user-interface thread). Calls block for
// at most the FTP time limits (FtpStallTimeout); they pump no window messages.
#include "stdiofile.h"

#include <cstddef>
#include <memory>
#include <string>

class FtpConnection;

class NETFileImpl : public StdioFileImpl {
public:
    // Bytes held between libcurl and the caller in either direction (one libcurl chunk more at most).
    static constexpr std::size_t kBufferSize = 256 * 1024;

    // Opens `file` in `folder` on `host` (mapped through get_actual_host): reading unless the mode
    // starts with 'w', ASCII transfers when the mode holds 't'. A failed open keeps its error.
    NETFileImpl(const std::wstring& host, const std::wstring& folder, const std::wstring& file,
                const std::wstring& mode);
    // Writes out pending text, then ends the transfer (see Close).
    ~NETFileImpl() override;
    NETFileImpl(const NETFileImpl&) = delete;
    NETFileImpl& operator=(const NETFileImpl&) = delete;

    int Read(void* buffer, int count) override;
    int Write(const void* buffer, int count) override;
    bool ReadString(std::wstring& line) override;
    int WriteString(const std::wstring& text) override;
    int GetError() override;
    int Tell() override { return -1; }
    void Seek(int, int) override {}
    int GetLength() override { return m_length; }
    std::wstring GetErrorText() override;
    const wchar_t* TransportName() const override { return L"FTP"; }

    // Writes out pending text and ends the transfer. Writing: true only once the server confirmed the
    // whole file (callers that rename an upload into place must check this). Reading: abandons the
    // rest of the file; false when the transfer had failed. False when no file was open; later calls
    // return false and change nothing.
    bool Close() override;
    // The most bytes the buffer held at once, for checking that memory stays bounded.
    std::size_t PeakBuffered() const { return m_peakBuffered; }

private:
    // libcurl's data callbacks and buffer (not used over WinINet).
    static size_t OnReceive(char* data, size_t size, size_t count, void* self);
    static size_t OnSend(char* data, size_t size, size_t count, void* self);
    void OpenForReading(const std::wstring& file, bool ascii);
    void OpenForWriting(const std::wstring& file, bool ascii);
    void Open(const std::wstring& file, unsigned long access, bool ascii); // WinINet's FtpOpenFileW
    void FlushPendingText();
    std::size_t Buffered() const { return m_buffer.size() - m_head; }
    void Append(const char* data, std::size_t size);
    std::size_t Take(char* out, std::size_t size);
    void ReleaseBuffer();

    // The platform's FTP connection: libcurl's handles (ftpconnection.h), or WinINet's session,
    // connection and file handles with the last error (netfileimpl_win.cpp).
    std::unique_ptr<FtpConnection> m_connection;
    bool m_writing = false;
    bool m_open = false;
    int m_length = -1;
    std::string m_pendingText;

    // libcurl streaming state; WinINet streams by itself and leaves these alone.
    bool m_transferStarted = false; // bytes arrived (reading) or libcurl asked for bytes (writing)
    bool m_paused = false;          // a data callback paused libcurl: buffer full (reading) or empty
    bool m_endOfData = false;       // writing: no more bytes will come, the upload may end
    std::string m_buffer;
    std::size_t m_head = 0;
    std::size_t m_peakBuffered = 0;
    struct curl_slist* m_preCommands = nullptr;
};
