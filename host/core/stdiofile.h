// SPDX-License-Identifier: Apache-2.0
#pragma once
// An open file on the workstation or on an instrument. Remote names ("@HOST:PATH") are served by the
// back end that a registered StdioFileImplFactory creates; local names by the workstation back end.
#include <cstdint>
#include <memory>
#include <string>

class StdioFileImpl {
public:
    virtual ~StdioFileImpl();
    virtual int Read(void* buffer, int count) = 0;
    virtual int Write(const void* buffer, int count) = 0;
    virtual bool ReadString(std::wstring& line);
    virtual int WriteString(const std::wstring& text);
    virtual int GetError() = 0;
    virtual int Tell() = 0;
    virtual void Seek(int offset, int origin) = 0;
    virtual int GetLength() = 0;
    // Host addition: finishes the transfer before the back end is destroyed; false when the other side
    // did not take the whole file (the error then says why). Called once, by StdioFile::Close.
    virtual bool Close() { return true; }
    // Host additions: the other side's message for the last error, and which way the file travels.
    virtual std::wstring GetErrorText() { return {}; }
    virtual const wchar_t* TransportName() const { return L"local"; }
};

class StdioFileImplFactory {
public:
    StdioFileImplFactory();
    virtual ~StdioFileImplFactory();
    virtual StdioFileImpl* Create(const std::wstring& name, const std::wstring& mode) = 0;
};

// The workstation's file back end (fopen modes).
StdioFileImpl* CreateLocalStdioFileImpl(const std::wstring& name, const std::wstring& mode);

class StdioFile {
public:
    StdioFile() = default;
    ~StdioFile();
    StdioFile(const StdioFile&) = delete;
    StdioFile& operator=(const StdioFile&) = delete;

    // Opens a local or remote file; false when no back end could be made or it reports an error.
    bool Open(const std::wstring& name, const std::wstring& mode);
    // Closes the file (a remote file sends its last data here); false when that failed, with the error
    // kept for GetError. Idempotent.
    bool Close();
    bool IsOpen() const { return m_impl != nullptr; }

    int Read(void* buffer, int count);
    int Write(const void* buffer, int count);
    bool ReadString(std::wstring& line);
    int WriteString(const std::wstring& text);
    int GetLength();
    // The back end's error, or the open's error when no back end was made.
    int GetError();
    std::wstring GetErrorText();
    const wchar_t* TransportName() const;
    StdioFileImpl* Impl() const { return m_impl.get(); }

private:
    std::unique_ptr<StdioFileImpl> m_impl;
    int m_openError = 0;
    std::wstring m_openErrorText;
};
