// SPDX-License-Identifier: Apache-2.0
// The workstation's folder back end over the Windows wide-path calls. Errors are kept as the C
// library's errno numbers, as on every platform, so that messages and tests read alike.
#include "fileinfo.h"

#include "paths.h"
#include "remotename.h"
#include "wildmatch.h"
#include "winsockerror.h"

#include <windows.h>

#include <cerrno>
#include <climits>
#include <filesystem>

namespace {

int ErrnoFromWin32(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
        return ENOENT;
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return EACCES;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return EEXIST;
    case ERROR_DIR_NOT_EMPTY:
        return ENOTEMPTY;
    case ERROR_DIRECTORY:
        return ENOTDIR;
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
        return EINVAL;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return ENOSPC;
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
        return ENOMEM;
    default:
        return EIO;
    }
}

// FILETIME counts 100 ns from 1601; entries count microseconds from 1970.
int64_t Microseconds(const FILETIME& time) {
    constexpr int64_t kEpochDifference = 11644473600LL * 1000000;
    const int64_t ticks = (int64_t(time.dwHighDateTime) << 32) | time.dwLowDateTime;
    return ticks / 10 - kEpochDifference;
}

void FillEntry(FileInfo& entry, const std::wstring& name, DWORD attributes, DWORD sizeHigh, DWORD sizeLow,
               const FILETIME& created, const FILETIME& accessed, const FILETIME& written) {
    entry.name = name;
    const bool folder = (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    entry.attrib = folder ? uint32_t{kFileAttrFolder} : 0u;
    const uint64_t size = (uint64_t(sizeHigh) << 32) | sizeLow;
    entry.size = folder ? -1 : (size > INT32_MAX ? INT32_MAX : static_cast<int32_t>(size));
    entry.times[0] = Microseconds(created);
    entry.times[1] = Microseconds(accessed);
    entry.times[2] = Microseconds(written);
}

bool IsRootFolder(const std::wstring& path) {
    const std::wstring rest = path.size() >= 2 && path[1] == L':' ? path.substr(2) : path;
    return rest.find_first_not_of(L"/\\") == std::wstring::npos;
}

class LocalFileInfoImpl : public FileInfoImpl {
public:
    bool ReadSensorDir(const std::wstring& folder, std::vector<FileInfo>& entries,
                       const std::wstring& pattern, uint32_t) override {
        entries.clear();
        const std::wstring dir = folder.empty() ? std::wstring(L".") : folder;
        const bool root = IsRootFolder(dir);
        const std::wstring prefix = (dir.back() == L'/' || dir.back() == L'\\') ? dir : dir + L"\\";
        WIN32_FIND_DATAW found{};
        HANDLE search = FindFirstFileW((prefix + L"*").c_str(), &found);
        if (search == INVALID_HANDLE_VALUE)
            return Fail(ErrnoFromWin32(GetLastError()));
        do {
            const std::wstring name = found.cFileName;
            if (name == L"." || (name == L".." && root))
                continue;
            // ".." is the way up: it is offered whatever the pattern says.
            if (name != L".." && !pattern.empty() && !WildMatch(pattern, name, false))
                continue;
            FileInfo entry;
            FillEntry(entry, name, found.dwFileAttributes, found.nFileSizeHigh, found.nFileSizeLow,
                      found.ftCreationTime, found.ftLastAccessTime, found.ftLastWriteTime);
            entries.push_back(std::move(entry));
        } while (FindNextFileW(search, &found));
        const DWORD error = GetLastError();
        FindClose(search);
        return error == ERROR_NO_MORE_FILES ? Succeed() : Fail(ErrnoFromWin32(error));
    }

    bool MkDir(const std::wstring& path) override {
        if (path.empty())
            return Fail(kErrInvalid);
        return CreateDirectoryW(path.c_str(), nullptr) ? Succeed() : Fail(ErrnoFromWin32(GetLastError()));
    }

    // As rename(2): an existing file of the new name is replaced.
    bool Rename(const std::wstring& oldPath, const std::wstring& newPath) override {
        if (oldPath.empty() || newPath.empty())
            return Fail(kErrInvalid);
        return MoveFileExW(oldPath.c_str(), newPath.c_str(), MOVEFILE_REPLACE_EXISTING)
                   ? Succeed()
                   : Fail(ErrnoFromWin32(GetLastError()));
    }

    bool RmDir(const std::wstring& path, bool recursive) override {
        if (path.empty())
            return Fail(kErrInvalid);
        if (!recursive)
            return RemoveDirectoryW(path.c_str()) ? Succeed() : Fail(ErrnoFromWin32(GetLastError()));
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES)
            return Fail(ErrnoFromWin32(GetLastError()));
        // A junction or link to a folder is not followed and not removed here.
        if (!(attributes & FILE_ATTRIBUTE_DIRECTORY) || (attributes & FILE_ATTRIBUTE_REPARSE_POINT))
            return Fail(ENOTDIR);
        std::error_code ec;
        std::filesystem::remove_all(std::filesystem::path(path), ec);
        return ec ? Fail(ec.value()) : Succeed();
    }

    bool Delete(const std::wstring& path) override {
        if (path.empty())
            return Fail(kErrInvalid);
        return DeleteFileW(path.c_str()) ? Succeed() : Fail(ErrnoFromWin32(GetLastError()));
    }

    bool GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview, int* previewSize) override {
        if (path.empty())
            return Fail(kErrInvalid);
        WIN32_FILE_ATTRIBUTE_DATA data{};
        if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) {
            if (previewSize)
                *previewSize = 0;
            return Fail(ErrnoFromWin32(GetLastError()));
        }
        if (entry)
            FillEntry(*entry, LastPathPart(path), data.dwFileAttributes, data.nFileSizeHigh,
                      data.nFileSizeLow, data.ftCreationTime, data.ftLastAccessTime, data.ftLastWriteTime);
        if (previewSize) {
            const int wanted = preview ? *previewSize : 0;
            *previewSize = 0;
            if (wanted > 0 && !(data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) {
                HANDLE file = CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                          nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
                if (file == INVALID_HANDLE_VALUE)
                    return Fail(ErrnoFromWin32(GetLastError()));
                DWORD read = 0;
                int total = 0;
                while (total < wanted &&
                       ReadFile(file, static_cast<char*>(preview) + total, DWORD(wanted - total), &read,
                                nullptr) &&
                       read > 0)
                    total += static_cast<int>(read);
                CloseHandle(file);
                *previewSize = total;
            }
        }
        return Succeed();
    }

    int GetError() const override { return m_error; }

private:
    bool Succeed() {
        m_error = 0;
        return true;
    }
    bool Fail(int error) {
        m_error = error;
        return false;
    }

    int m_error = 0;
};

} // namespace

FileInfoImpl* CreateLocalFileInfoImpl() {
    return new LocalFileInfoImpl();
}
