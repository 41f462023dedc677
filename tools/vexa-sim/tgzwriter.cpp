// SPDX-License-Identifier: Apache-2.0
#include "tgzwriter.h"

#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr std::size_t kBlockSize = 64 * 1024;

using EntryPtr = std::unique_ptr<archive_entry, decltype(&archive_entry_free)>;

class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    int get() const { return m_fd; }

private:
    int m_fd;
};

} // namespace

TgzWriter::~TgzWriter() {
    if (m_archive != nullptr)
        archive_write_free(m_archive);
}

bool TgzWriter::Fail(const std::string& what) {
    const char* detail = m_archive != nullptr ? archive_error_string(m_archive) : nullptr;
    m_problem = what + (detail != nullptr ? std::string(": ") + detail : std::string());
    return false;
}

bool TgzWriter::Open(const std::filesystem::path& file) {
    m_archive = archive_write_new();
    if (m_archive == nullptr)
        return Fail("cannot create the archive writer");
    if (archive_write_add_filter_gzip(m_archive) != ARCHIVE_OK ||
        archive_write_set_format_pax_restricted(m_archive) != ARCHIVE_OK)
        return Fail("cannot set up the tgz format");
    if (archive_write_open_filename(m_archive, file.c_str()) != ARCHIVE_OK)
        return Fail("cannot create " + file.string());
    return true;
}

bool TgzWriter::AddFolder(const std::string& name, std::time_t modified) {
    EntryPtr entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), (name + "/").c_str());
    archive_entry_set_filetype(entry.get(), AE_IFDIR);
    archive_entry_set_perm(entry.get(), 0755);
    archive_entry_set_mtime(entry.get(), modified, 0);
    if (archive_write_header(m_archive, entry.get()) != ARCHIVE_OK)
        return Fail("cannot add " + name);
    return true;
}

bool TgzWriter::AddFile(const std::string& name, const std::filesystem::path& source,
                        const std::function<bool(std::size_t)>& onBlock) {
    // Opened without following a last link, so what is packed is what was confined.
    const FileDescriptor file(::open(source.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        m_problem = "cannot read " + name + ": " + std::strerror(errno);
        return false;
    }
    EntryPtr entry(archive_entry_new(), archive_entry_free);
    archive_entry_set_pathname(entry.get(), name.c_str());
    archive_entry_set_filetype(entry.get(), AE_IFREG);
    archive_entry_set_perm(entry.get(), 0644);
    archive_entry_set_size(entry.get(), info.st_size);
    archive_entry_set_mtime(entry.get(), info.st_mtime, 0);
    if (archive_write_header(m_archive, entry.get()) != ARCHIVE_OK)
        return Fail("cannot add " + name);

    std::vector<char> block(kBlockSize);
    // Exactly the size the header announced: a file that grows meanwhile is cut, one that shrinks
    // fails rather than leaving a short member.
    for (la_int64_t left = info.st_size; left > 0;) {
        const ssize_t got = ::read(file.get(), block.data(), std::min<la_int64_t>(left, kBlockSize));
        if (got <= 0) {
            m_problem = "cannot read " + name + (got < 0 ? std::string(": ") + std::strerror(errno) : "");
            return false;
        }
        if (archive_write_data(m_archive, block.data(), static_cast<std::size_t>(got)) != got)
            return Fail("cannot write " + name);
        left -= got;
        if (!onBlock(static_cast<std::size_t>(got))) {
            m_problem = "stopped";
            return false;
        }
    }
    return true;
}

bool TgzWriter::Close() {
    if (m_archive == nullptr)
        return Fail("no archive is open");
    const bool closed = archive_write_close(m_archive) == ARCHIVE_OK;
    if (!closed)
        Fail("cannot finish the archive");
    archive_write_free(m_archive);
    m_archive = nullptr;
    return closed;
}
