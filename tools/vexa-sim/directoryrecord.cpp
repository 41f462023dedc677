// SPDX-License-Identifier: Apache-2.0
#include "directoryrecord.h"

#include <algorithm>
#include <limits>
#include <sys/stat.h>

#include "byteorder.h"
#include "wireconstants.h"

namespace {

std::int32_t Seconds32(time_t seconds) {
    const auto clamped = std::clamp<long long>(seconds, std::numeric_limits<std::int32_t>::min(),
                                               std::numeric_limits<std::int32_t>::max());
    return static_cast<std::int32_t>(clamped);
}

} // namespace

std::optional<DirectoryRecord> DirectoryRecord::FromPath(const std::filesystem::path& path,
                                                         const std::string& name) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0)
        return std::nullopt;
    return FromStat(info, name);
}

std::optional<DirectoryRecord> DirectoryRecord::FromFolderEntry(int folderFd, const std::string& name) {
    struct stat info {};
    if (::fstatat(folderFd, name.c_str(), &info, 0) != 0)
        return std::nullopt;
    return FromStat(info, name);
}

DirectoryRecord DirectoryRecord::FromStat(const struct stat& info, const std::string& name) {
    DirectoryRecord record;
    record.name = name;
    record.folder = S_ISDIR(info.st_mode);
    // The record's size is 32 bits; larger files report the largest value it holds.
    if (!record.folder)
        record.size = static_cast<std::uint32_t>(
            std::min<unsigned long long>(info.st_size, std::numeric_limits<std::uint32_t>::max()));
    record.changeTime = Seconds32(info.st_ctime);
    record.accessTime = Seconds32(info.st_atime);
    record.modifyTime = Seconds32(info.st_mtime);
    return record;
}

DirectoryRecord DirectoryRecord::ParentEntry() {
    DirectoryRecord record;
    record.name = "..";
    record.folder = true;
    return record;
}

void DirectoryRecord::AppendTo(std::vector<std::uint8_t>& out) const {
    const std::size_t at = out.size();
    out.resize(at + wire::kRecordSize, 0);
    std::uint8_t* p = out.data() + at;
    const std::size_t nameBytes = std::min(name.size(), wire::kRecordNameSize - 1);
    std::copy_n(name.begin(), nameBytes, p);
    wire::PutU32(p + 1024, size);
    wire::PutU32(p + 1028, static_cast<std::uint32_t>(changeTime));
    wire::PutU32(p + 1032, static_cast<std::uint32_t>(accessTime));
    wire::PutU32(p + 1036, static_cast<std::uint32_t>(modifyTime));
    wire::PutU32(p + 1040, folder ? wire::kAttributeFolder : 0);
}
