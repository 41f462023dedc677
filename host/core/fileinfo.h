// SPDX-License-Identifier: Apache-2.0
#pragma once
// Folder entries and the static folder operations. Local names go to the workstation's file system;
// remote names ("@HOST:PATH") go to the back end that a registered FileInfoImplFactory creates.
#include <cstdint>
#include <string>
#include <vector>

enum : uint32_t { kFileAttrFolder = 0x0001 };

class FileInfo {
public:
    std::wstring name;
    int32_t size = 0;             // negative: a folder or another non-file
    int64_t times[3] = {0, 0, 0}; // microseconds since 1970 UTC: creation, access, modification
    uint32_t attrib = 0;          // bit 0: folder

    bool IsFolder() const { return (attrib & kFileAttrFolder) != 0; }
    // The time shown and sorted by: the modification time.
    int64_t GetTime() const { return times[2]; }

    // Lists a folder. `host` empty: `folder` is a workstation path; else an instrument path on that host.
    // `pattern` is a WildMatch pattern (empty: all); `flags` is the listing option (show hidden).
    static bool ReadSensorDir(const std::wstring& host, const std::wstring& folder,
                              std::vector<FileInfo>& entries, const std::wstring& pattern, uint32_t flags);
    static bool MkDir(const std::wstring& path);
    static bool Rename(const std::wstring& oldPath, const std::wstring& newPath);
    static bool RmDir(const std::wstring& path, bool recursive);
    static bool Delete(const std::wstring& path);
    // Runs a command on the instrument of a remote name's host (`@HOST:` or just the host).
    static bool RunCommand(const std::wstring& host, const std::wstring& command, std::wstring& output,
                           int64_t timeoutUs);
    static bool GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview, int* previewSize);

    // The error of the calling thread's last failed operation (errno, Winsock or instrument status) and
    // the instrument's message when it sent one. 0 after a success.
    static int LastError();
    static std::wstring LastErrorText();
    static void SetLastError(int error, const std::wstring& text = {});
};

// Which of two entries was modified later: negative the first, positive the second, 0 when both fall in
// the same second or either time is unknown (0). Whole seconds, because the instrument and FTP list
// seconds while the workstation keeps microseconds: a fresh copy must not look newer than its original.
int CompareModified(const FileInfo& first, const FileInfo& second);

// Back end of the folder operations on one host.
class FileInfoImpl {
public:
    virtual ~FileInfoImpl();
    virtual bool ReadSensorDir(const std::wstring& folder, std::vector<FileInfo>& entries,
                               const std::wstring& pattern, uint32_t option) = 0;
    virtual bool MkDir(const std::wstring& path) = 0;
    virtual bool Rename(const std::wstring& oldPath, const std::wstring& newPath) = 0;
    virtual bool RmDir(const std::wstring& path, bool recursive) = 0;
    virtual bool Delete(const std::wstring& path) = 0;
    virtual bool RunCommand(const std::wstring& command, std::wstring& output, int64_t timeoutUs);
    virtual bool GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview, int* previewSize) = 0;
    // The back end's last error and, where the other side sent one, its message.
    virtual int GetError() const = 0;
    virtual std::wstring GetErrorText() const { return {}; }
    // The other side's last refusal (its status, 0 for none, and its message) for a back end whose
    // GetError() a refusal leaves unchanged: the status is then the reason the operation failed.
    virtual uint32_t LastReplyStatus() const { return 0; }
    virtual std::wstring LastReplyText() const { return {}; }
};

// A factory registers itself when constructed and unregisters when destroyed. Factories are asked in
// the order they registered; the first to return a back end serves the host.
class FileInfoImplFactory {
public:
    FileInfoImplFactory();
    virtual ~FileInfoImplFactory();
    virtual FileInfoImpl* Create(const std::wstring& host) = 0;
};

// The workstation's folder back end.
FileInfoImpl* CreateLocalFileInfoImpl();
