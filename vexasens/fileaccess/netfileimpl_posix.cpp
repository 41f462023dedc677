// SPDX-License-Identifier: Apache-2.0
#include "netfileimpl.h"

#include "ftpconnection.h"
#include "ftperror.h"
#include "remotename.h"
#include "text.h"
#include "winsockerror.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

NETFileImpl::NETFileImpl(const std::wstring& host, const std::wstring& folder, const std::wstring& file,
                         const std::wstring& mode)
    : m_connection(std::make_unique<FtpConnection>(get_actual_host(host))) {
    if (!m_connection->Usable())
        return;
    if (file.empty()) {
        m_connection->SetError(kErrInvalid, L"no FTP file name");
        return;
    }
    if (!m_connection->SetTarget(folder, file))
        return;
    m_writing = !mode.empty() && mode[0] == L'w';
    const bool ascii = mode.find(L't') != std::wstring::npos;
    m_buffer.reserve(kBufferSize + CURL_MAX_WRITE_SIZE);
    if (m_writing)
        OpenForWriting(file, ascii);
    else
        OpenForReading(file, ascii);
    if (!m_open) {
        m_connection->Stop();
        ReleaseBuffer();
    }
}

NETFileImpl::~NETFileImpl() {
    Close();
    m_connection.reset();
    if (m_preCommands)
        curl_slist_free_all(m_preCommands);
}

void NETFileImpl::OpenForReading(const std::wstring&, bool ascii) {
    CURL* easy = m_connection->Easy();
    // The length first, in binary type: servers may refuse SIZE in ASCII type.
    curl_easy_setopt(easy, CURLOPT_NOBODY, 1L);
    curl_easy_setopt(easy, CURLOPT_TRANSFERTEXT, 0L);
    if (m_connection->Run()) {
        curl_off_t length = -1;
        if (curl_easy_getinfo(easy, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length) == CURLE_OK && length >= 0)
            m_length = static_cast<int>(static_cast<std::uint32_t>(length & 0xFFFFFFFF));
    } else if (m_connection->Result() != CURLE_REMOTE_FILE_NOT_FOUND &&
               m_connection->LastCommand().rfind("SIZE ", 0) != 0) {
        // Connecting, logging in or changing the folder failed: there is no file to open.
        return;
    }
    // A file whose length could not be found may still open; its error then stays set.
    curl_easy_setopt(easy, CURLOPT_NOBODY, 0L);
    curl_easy_setopt(easy, CURLOPT_TRANSFERTEXT, ascii ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, OnReceive);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
    if (!m_connection->Start())
        return;
    m_connection->DriveUntil([this] { return m_transferStarted; });
    m_open = m_transferStarted || !m_connection->Failed();
}

void NETFileImpl::OpenForWriting(const std::wstring& file, bool ascii) {
    CURL* easy = m_connection->Easy();
    // The old file goes first, whether or not it exists ('*': a refusal does not stop the upload).
    m_preCommands = curl_slist_append(nullptr, ("*DELE " + ToUtf8(file)).c_str());
    curl_easy_setopt(easy, CURLOPT_PREQUOTE, m_preCommands);
    curl_easy_setopt(easy, CURLOPT_UPLOAD, 1L);
    curl_easy_setopt(easy, CURLOPT_INFILESIZE_LARGE, static_cast<curl_off_t>(-1));
    curl_easy_setopt(easy, CURLOPT_TRANSFERTEXT, ascii ? 1L : 0L);
    curl_easy_setopt(easy, CURLOPT_READFUNCTION, OnSend);
    curl_easy_setopt(easy, CURLOPT_READDATA, this);
    if (!m_connection->Start())
        return;
    // The server took the STOR once libcurl asks for the first bytes.
    m_connection->DriveUntil([this] { return m_transferStarted; });
    m_open = m_transferStarted || !m_connection->Failed();
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
    if (m_writing) {
        m_connection->SetError(kErrBadFile, L"the FTP file is open for writing");
        return -1;
    }
    char* out = static_cast<char*>(buffer);
    std::size_t got = 0;
    const std::size_t wanted = static_cast<std::size_t>(count);
    while (got < wanted) {
        got += Take(out + got, wanted - got);
        if (m_paused && kBufferSize - Buffered() >= CURL_MAX_WRITE_SIZE) {
            m_paused = false;
            m_connection->Resume(); // may hand over data at once
        }
        if (got == wanted)
            break;
        if (Buffered() > 0)
            continue;
        if (!m_connection->Running())
            break;
        if (!m_connection->DriveUntil([this] { return Buffered() > 0; }) && Buffered() == 0)
            break;
    }
    // Bytes that arrived before a failure are handed out first; the failure shows on the next call.
    if (got > 0)
        return static_cast<int>(got);
    return m_connection->Failed() ? -1 : 0;
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
    if (!m_writing) {
        m_connection->SetError(kErrBadFile, L"the FTP file is open for reading");
        return -1;
    }
    const char* in = static_cast<const char*>(buffer);
    std::size_t left = static_cast<std::size_t>(count);
    while (left > 0) {
        if (!m_connection->Running()) {
            if (!m_connection->Failed())
                m_connection->SetError(kErrBadFile, L"the FTP upload has ended");
            return -1;
        }
        const std::size_t taken = std::min(left, kBufferSize - Buffered());
        Append(in, taken);
        in += taken;
        left -= taken;
        if (m_paused && Buffered() > 0) {
            m_paused = false;
            m_connection->Resume();
        }
        if (left > 0 && !m_connection->DriveUntil([this] { return Buffered() < kBufferSize; }))
            return -1;
    }
    m_connection->Step(); // start sending what is buffered without waiting
    if (m_connection->Failed())
        return -1;
    return count;
}

int NETFileImpl::GetError() {
    return m_connection->Error();
}

std::wstring NETFileImpl::GetErrorText() {
    return m_connection->ErrorText();
}

bool NETFileImpl::Close() {
    FlushPendingText();
    if (!m_open)
        return false;
    m_open = false;
    bool ok = true;
    if (m_writing) {
        m_endOfData = true;
        if (m_paused) {
            m_paused = false;
            m_connection->Resume();
        }
        ok = m_connection->DriveUntil([] { return false; });
    } else {
        ok = !m_connection->Failed();
    }
    m_connection->Stop();
    ReleaseBuffer();
    return ok;
}

size_t NETFileImpl::OnReceive(char* data, size_t size, size_t count, void* self) {
    auto* file = static_cast<NETFileImpl*>(self);
    const std::size_t bytes = size * count;
    if (file->Buffered() > 0 && file->Buffered() + bytes > kBufferSize) {
        file->m_paused = true;
        return CURL_WRITEFUNC_PAUSE;
    }
    file->Append(data, bytes);
    file->m_transferStarted = true;
    file->m_connection->NoteProgress();
    return bytes;
}

size_t NETFileImpl::OnSend(char* data, size_t size, size_t count, void* self) {
    auto* file = static_cast<NETFileImpl*>(self);
    file->m_transferStarted = true;
    const std::size_t bytes = file->Take(data, size * count);
    if (bytes > 0) {
        file->m_connection->NoteProgress();
        return bytes;
    }
    if (file->m_endOfData)
        return 0;
    file->m_paused = true;
    return CURL_READFUNC_PAUSE;
}

void NETFileImpl::Append(const char* data, std::size_t size) {
    if (m_head > 0 && m_buffer.size() + size > m_buffer.capacity()) {
        m_buffer.erase(0, m_head);
        m_head = 0;
    }
    m_buffer.append(data, size);
    m_peakBuffered = std::max(m_peakBuffered, Buffered());
}

std::size_t NETFileImpl::Take(char* out, std::size_t size) {
    const std::size_t taken = std::min(size, Buffered());
    if (taken == 0)
        return 0;
    std::memcpy(out, m_buffer.data() + m_head, taken);
    m_head += taken;
    if (m_head == m_buffer.size()) {
        m_buffer.clear();
        m_head = 0;
    }
    return taken;
}

void NETFileImpl::ReleaseBuffer() {
    std::string().swap(m_buffer);
    m_head = 0;
}
