// SPDX-License-Identifier: Apache-2.0
#include "fileservice.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include "byteorder.h"
#include "directoryrecord.h"
#include "pathconfinement.h"
#include "pendingupload.h"
#include "simrequest.h"
#include "wireconstants.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kUploadPrefix = ".vexa-sim-upload.";
constexpr std::size_t kRecordsPerFrame = wire::kMaxPayload / wire::kRecordSize;
constexpr std::size_t kMaxPlainRun = 16; // frames sent plain after repeated misses: 1 MiB

bool Reply(const FileService::FrameOutput& out, std::uint32_t id, std::uint32_t status,
           const std::string& message = {}) {
    return out(FrameCodec::MakeReply(id, status, message));
}

bool ReplyErrno(const FileService::FrameOutput& out, std::uint32_t id, int error, const std::string& what) {
    return Reply(out, id, static_cast<std::uint32_t>(error), what + ": " + std::strerror(error));
}

// Closes a file descriptor when it goes out of scope.
struct FileCloser {
    int fd;
    ~FileCloser() {
        if (fd >= 0)
            ::close(fd);
    }
};

// Reads up to `limit` bytes (fewer only at the end of the file); false on a read error.
bool ReadChunk(int fd, std::size_t limit, std::vector<std::uint8_t>* chunk) {
    chunk->resize(limit);
    std::size_t filled = 0;
    while (filled < limit) {
        const ssize_t got = ::read(fd, chunk->data() + filled, limit - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return false;
        if (got == 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    chunk->resize(filled);
    return true;
}

} // namespace

FileService::FileService(const PathConfinement& paths, bool compress)
    : m_paths(paths), m_compress(compress) {}

bool FileService::CompressIfSmaller(std::vector<std::uint8_t>& payload) {
    if (payload.empty())
        return false;
    // A sample of the frame tells incompressible data (packed runs, random bytes) cheaply, so such
    // files stream at link speed instead of paying for a compression that gains nothing.
    constexpr std::size_t kSample = 4096;
    if (payload.size() > 2 * kSample) {
        uLongf sampleSize = compressBound(static_cast<uLong>(kSample));
        std::vector<std::uint8_t> sample(sampleSize);
        if (compress2(sample.data(), &sampleSize, payload.data(), static_cast<uLong>(kSample),
                      Z_BEST_SPEED) != Z_OK ||
            sampleSize >= kSample * 95 / 100)
            return false;
    }
    uLongf packedSize = compressBound(static_cast<uLong>(payload.size()));
    std::vector<std::uint8_t> packed(packedSize);
    // The fastest level: an instrument compresses while it streams, and a frame of incompressible data
    // must not cost more time than sending it plain.
    if (compress2(packed.data(), &packedSize, payload.data(), static_cast<uLong>(payload.size()),
                  Z_BEST_SPEED) != Z_OK ||
        packedSize >= payload.size())
        return false;
    packed.resize(packedSize);
    payload = std::move(packed);
    return true;
}

bool FileService::List(const SimRequest& request, const FrameOutput& out) const {
    const PathConfinement::Resolved folder = m_paths.Resolve(request.first);
    if (!folder.ok())
        return Reply(out, request.id, folder.status, folder.message);
    std::error_code error;
    const fs::file_status status = fs::status(folder.real, error);
    if (!fs::exists(status))
        return Reply(out, request.id, wire::kStatusNotFound, "no such folder: " + folder.instrumentPath);
    if (!fs::is_directory(status))
        return Reply(out, request.id, wire::kStatusNotFolder, "not a folder: " + folder.instrumentPath);

    const bool showHidden = (request.flags & wire::kFlagListingOption) != 0;
    std::vector<std::string> names;
    fs::directory_iterator entries(folder.real, error);
    if (error)
        return ReplyErrno(out, request.id, error.value(), "cannot list " + folder.instrumentPath);
    const int folderFd = ::open(folder.real.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folderFd < 0)
        return ReplyErrno(out, request.id, errno, "cannot list " + folder.instrumentPath);
    FileCloser closer{folderFd};
    for (const fs::directory_entry& entry : entries) {
        std::string name = entry.path().filename().native();
        if (name.rfind(kUploadPrefix, 0) == 0 || (name.front() == '.' && !showHidden))
            continue;
        // Links that lead out of the served folder are not part of the instrument. The folder itself
        // is resolved already, so only a link can lead out; resolving every entry would cost more than
        // the rest of the listing.
        std::error_code ignored;
        const bool mayLeadOut = entry.is_symlink(ignored) || ignored;
        if (mayLeadOut && (!m_paths.Contains(fs::weakly_canonical(entry.path(), ignored)) || ignored))
            continue;
        names.push_back(std::move(name));
    }
    std::sort(names.begin(), names.end());

    // Each frame's entries are examined just before it is sent, so the client decodes the first frames
    // while the rest are looked at. An entry that vanished meanwhile is left out; an empty listing is
    // still one (empty) data frame.
    std::size_t next = 0;
    bool first = true;
    do {
        std::vector<std::uint8_t> payload;
        payload.reserve(kRecordsPerFrame * wire::kRecordSize);
        std::size_t count = 0;
        if (first && !folder.isRoot) {
            DirectoryRecord::ParentEntry().AppendTo(payload);
            ++count;
        }
        first = false;
        for (; next < names.size() && count < kRecordsPerFrame; ++next) {
            if (std::optional<DirectoryRecord> record =
                    DirectoryRecord::FromFolderEntry(folderFd, names[next])) {
                record->AppendTo(payload);
                ++count;
            }
        }
        const std::uint16_t flags = wire::kFlagListing | (next < names.size() ? wire::kFlagMore : 0);
        if (!out(FrameCodec::MakeData(request.id, flags, std::move(payload))))
            return false;
    } while (next < names.size());
    return true;
}

bool FileService::Read(const SimRequest& request, const FrameOutput& out) const {
    const PathConfinement::Resolved file = m_paths.Resolve(request.first);
    if (!file.ok())
        return Reply(out, request.id, file.status, file.message);
    const int fd = ::open(file.real.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        const int error = errno;
        if (error == ENOENT)
            return Reply(out, request.id, wire::kStatusNotFound, "no such file: " + file.instrumentPath);
        return ReplyErrno(out, request.id, error, "cannot open " + file.instrumentPath);
    }
    FileCloser closer{fd};
    struct stat info {};
    if (::fstat(fd, &info) != 0)
        return ReplyErrno(out, request.id, errno, "cannot open " + file.instrumentPath);
    if (S_ISDIR(info.st_mode))
        return Reply(out, request.id, wire::kStatusIsFolder, "a folder, not a file: " + file.instrumentPath);
    if (static_cast<unsigned long long>(info.st_size) > std::numeric_limits<std::uint32_t>::max())
        return Reply(out, request.id, wire::kStatusTooLarge, "file too large: " + file.instrumentPath);

    // Read one chunk ahead, so the last frame is known when it is sent.
    std::vector<std::uint8_t> chunk;
    std::vector<std::uint8_t> following;
    if (!ReadChunk(fd, wire::kMaxPayload, &chunk))
        return ReplyErrno(out, request.id, errno, "cannot read " + file.instrumentPath);
    bool first = true;
    // After a frame that did not shrink, the next frames go plain without a try, a run that doubles
    // with every further miss (up to kMaxPlainRun): random or packed files then cost no compression
    // time at all, and a file that becomes compressible again is noticed within a few frames.
    std::size_t plainRun = 0;
    std::size_t plainLeft = 0;
    for (;;) {
        bool more = false;
        if (chunk.size() == wire::kMaxPayload) {
            // A read error once frames have gone out cannot be reported: closing tells the reader.
            if (!ReadChunk(fd, wire::kMaxPayload, &following))
                return false;
            more = !following.empty();
        }
        std::uint16_t flags = more ? wire::kFlagMore : 0;
        if (m_compress && plainLeft > 0) {
            --plainLeft;
        } else if (m_compress && CompressIfSmaller(chunk)) {
            flags |= wire::kFlagCompressed;
            plainRun = 0;
        } else if (m_compress) {
            plainRun = std::min(kMaxPlainRun, std::max<std::size_t>(1, plainRun * 2));
            plainLeft = plainRun;
        }
        Frame frame = FrameCodec::MakeData(request.id, flags, std::move(chunk));
        if (first)
            frame.header.extra = static_cast<std::uint32_t>(info.st_size);
        first = false;
        if (!out(frame))
            return false;
        if (!more)
            return true;
        chunk = std::move(following);
        // The buffer just sent is read into next: no allocation and no zero fill per frame.
        following = std::move(frame.payload);
    }
}

bool FileService::Describe(const SimRequest& request, const FrameOutput& out) const {
    const PathConfinement::Resolved file = m_paths.Resolve(request.first);
    if (!file.ok())
        return Reply(out, request.id, file.status, file.message);
    const std::string name = file.isRoot ? "/" : file.entry.filename().native();
    const std::optional<DirectoryRecord> record = DirectoryRecord::FromPath(file.real, name);
    if (!record)
        return Reply(out, request.id, wire::kStatusNotFound, "no such file: " + file.instrumentPath);

    std::vector<std::uint8_t> preview;
    if (!record->folder) {
        const int fd = ::open(file.real.c_str(), O_RDONLY | O_CLOEXEC);
        FileCloser closer{fd};
        if (fd < 0 || !ReadChunk(fd, wire::kPreviewLimit, &preview))
            preview.clear();
    }
    std::vector<std::uint8_t> payload;
    record->AppendTo(payload);
    wire::AppendU32(payload, static_cast<std::uint32_t>(preview.size()));
    payload.insert(payload.end(), preview.begin(), preview.end());
    return out(FrameCodec::MakeData(request.id, 0, std::move(payload)));
}

bool FileService::Delete(const SimRequest& request, const FrameOutput& out) const {
    const PathConfinement::Resolved target = m_paths.Resolve(request.first);
    if (!target.ok())
        return Reply(out, request.id, target.status, target.message);
    if (target.isRoot)
        return Reply(out, request.id, wire::kStatusRefused, "the root folder cannot be deleted");
    std::error_code error;
    const fs::file_status status = fs::symlink_status(target.entry, error);
    if (!fs::exists(status))
        return Reply(out, request.id, wire::kStatusNotFound,
                     "no such file or folder: " + target.instrumentPath);

    if (fs::is_directory(status) && (request.flags & wire::kFlagRecursive)) {
        fs::remove_all(target.entry, error);
    } else if (::remove(target.entry.c_str()) != 0) {
        const int code = errno;
        if (code == ENOTEMPTY || code == EEXIST)
            return Reply(out, request.id, wire::kStatusNotEmpty,
                         "folder not empty: " + target.instrumentPath);
        return ReplyErrno(out, request.id, code, "cannot delete " + target.instrumentPath);
    }
    if (error)
        return ReplyErrno(out, request.id, error.value(), "cannot delete " + target.instrumentPath);
    return Reply(out, request.id, wire::kStatusOk);
}

bool FileService::Rename(const SimRequest& request, const FrameOutput& out) const {
    const PathConfinement::Resolved from = m_paths.Resolve(request.first);
    if (!from.ok())
        return Reply(out, request.id, from.status, from.message);
    const PathConfinement::Resolved to = m_paths.Resolve(request.second);
    if (!to.ok())
        return Reply(out, request.id, to.status, to.message);
    if (from.isRoot || to.isRoot)
        return Reply(out, request.id, wire::kStatusRefused, "the root folder cannot be renamed");
    std::error_code error;
    if (!fs::exists(fs::symlink_status(from.entry, error)))
        return Reply(out, request.id, wire::kStatusNotFound,
                     "no such file or folder: " + from.instrumentPath);
    // Never replace an existing entry: the caller asks about overwriting before it renames.
    if (fs::exists(fs::symlink_status(to.entry, error)))
        return Reply(out, request.id, wire::kStatusExists, "already exists: " + to.instrumentPath);
    if (::rename(from.entry.c_str(), to.entry.c_str()) != 0)
        return ReplyErrno(out, request.id, errno, "cannot rename " + from.instrumentPath);
    return Reply(out, request.id, wire::kStatusOk);
}

bool FileService::MakeFolder(const SimRequest& request, const FrameOutput& out) const {
    const PathConfinement::Resolved folder = m_paths.Resolve(request.first);
    if (!folder.ok())
        return Reply(out, request.id, folder.status, folder.message);
    if (::mkdir(folder.entry.c_str(), 0755) != 0) {
        const int code = errno;
        if (code == EEXIST)
            return Reply(out, request.id, wire::kStatusExists, "already exists: " + folder.instrumentPath);
        return ReplyErrno(out, request.id, code, "cannot make " + folder.instrumentPath);
    }
    return Reply(out, request.id, wire::kStatusOk);
}

std::unique_ptr<PendingUpload> FileService::OpenUpload(const SimRequest& request) const {
    const PathConfinement::Resolved file = m_paths.Resolve(request.first);
    if (!file.ok())
        return std::make_unique<PendingUpload>(fs::path(), file.message);
    if (file.isRoot)
        return std::make_unique<PendingUpload>(fs::path(), "the root folder is no file");
    return std::make_unique<PendingUpload>(file.real);
}
