// SPDX-License-Identifier: Apache-2.0
// The workstation's folder back end over POSIX calls.
#include "fileinfo.h"

#include "paths.h"
#include "remotename.h"
#include "text.h"
#include "wildmatch.h"
#include "winsockerror.h"

#include <cerrno>
#include <climits>
#include <filesystem>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

int64_t Microseconds(const timespec& time) {
    return static_cast<int64_t>(time.tv_sec) * 1000000 + time.tv_nsec / 1000;
}

// Fills an entry from stat data; folders and other non-files get size -1.
void FillEntry(FileInfo& entry, const std::wstring& name, const struct stat& st) {
    entry.name = name;
    entry.attrib = S_ISDIR(st.st_mode) ? uint32_t{kFileAttrFolder} : 0u;
    if (S_ISREG(st.st_mode))
        entry.size = st.st_size > INT32_MAX ? INT32_MAX : static_cast<int32_t>(st.st_size);
    else
        entry.size = -1;
    entry.times[0] = Microseconds(st.st_ctim);
    entry.times[1] = Microseconds(st.st_atim);
    entry.times[2] = Microseconds(st.st_mtim);
}

// stat, or lstat for a link whose target is gone (the link itself is then listed).
bool StatEntry(const std::string& path, struct stat* st) {
    return stat(path.c_str(), st) == 0 || lstat(path.c_str(), st) == 0;
}

bool IsRootFolder(const std::string& path) {
    return path.find_first_not_of('/') == std::string::npos;
}

class LocalFileInfoImpl : public FileInfoImpl {
public:
    bool ReadSensorDir(const std::wstring& folder, std::vector<FileInfo>& entries,
                       const std::wstring& pattern, uint32_t) override {
        entries.clear();
        const std::string dirPath = NativePath(folder.empty() ? std::wstring(L".") : folder);
        std::unique_ptr<DIR, int (*)(DIR*)> dir(opendir(dirPath.c_str()), closedir);
        if (!dir)
            return Fail(errno);
        const bool root = IsRootFolder(dirPath);
        const std::string prefix = dirPath.back() == '/' ? dirPath : dirPath + "/";
        for (;;) {
            // readdir leaves errno alone at the end, so only a value set by this call means failure.
            errno = 0;
            const dirent* item = readdir(dir.get());
            if (item == nullptr) {
                if (errno != 0)
                    return Fail(errno);
                break;
            }
            const std::string name = item->d_name;
            if (name == "." || (name == ".." && root))
                continue;
            const std::wstring wideName = FromUtf8(name);
            // ".." is the way up: it is offered whatever the pattern says.
            if (name != ".." && !pattern.empty() && !WildMatch(pattern, wideName, false))
                continue;
            struct stat st {};
            if (!StatEntry(prefix + name, &st))
                continue; // vanished while listing
            FileInfo entry;
            FillEntry(entry, wideName, st);
            entries.push_back(std::move(entry));
        }
        return Succeed();
    }

    bool MkDir(const std::wstring& path) override {
        if (path.empty())
            return Fail(kErrInvalid);
        return mkdir(NativePath(path).c_str(), 0777) == 0 ? Succeed() : Fail(errno);
    }

    bool Rename(const std::wstring& oldPath, const std::wstring& newPath) override {
        if (oldPath.empty() || newPath.empty())
            return Fail(kErrInvalid);
        return rename(NativePath(oldPath).c_str(), NativePath(newPath).c_str()) == 0 ? Succeed()
                                                                                     : Fail(errno);
    }

    bool RmDir(const std::wstring& path, bool recursive) override {
        if (path.empty())
            return Fail(kErrInvalid);
        const std::string native = NativePath(path);
        if (!recursive)
            return rmdir(native.c_str()) == 0 ? Succeed() : Fail(errno);
        // The folder itself must be a real folder: a link to one is not followed and not removed here.
        struct stat st {};
        if (lstat(native.c_str(), &st) != 0)
            return Fail(errno);
        if (!S_ISDIR(st.st_mode))
            return Fail(ENOTDIR);
        // remove_all deletes links inside the tree as links and never descends through them.
        std::error_code ec;
        std::filesystem::remove_all(std::filesystem::path(native), ec);
        return ec ? Fail(ec.value()) : Succeed();
    }

    bool Delete(const std::wstring& path) override {
        if (path.empty())
            return Fail(kErrInvalid);
        return unlink(NativePath(path).c_str()) == 0 ? Succeed() : Fail(errno);
    }

    bool GetFileInfo(const std::wstring& path, FileInfo* entry, void* preview, int* previewSize) override {
        if (path.empty())
            return Fail(kErrInvalid);
        const std::string native = NativePath(path);
        struct stat st {};
        if (!StatEntry(native, &st)) {
            if (previewSize)
                *previewSize = 0;
            return Fail(errno);
        }
        if (entry)
            FillEntry(*entry, LastPathPart(path), st);
        if (previewSize) {
            int wanted = preview ? *previewSize : 0;
            *previewSize = 0;
            if (wanted > 0 && S_ISREG(st.st_mode)) {
                const int fd = open(native.c_str(), O_RDONLY | O_CLOEXEC);
                if (fd < 0)
                    return Fail(errno);
                int total = 0;
                while (total < wanted) {
                    const ssize_t n =
                        read(fd, static_cast<char*>(preview) + total, static_cast<size_t>(wanted - total));
                    if (n < 0 && errno == EINTR)
                        continue;
                    if (n <= 0)
                        break;
                    total += static_cast<int>(n);
                }
                close(fd);
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
