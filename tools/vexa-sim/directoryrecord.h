// SPDX-License-Identifier: Apache-2.0
#pragma once
// One 1,104-byte directory record: the instrument's description of a file or folder.
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

class DirectoryRecord {
public:
    // Describes `path` under the name `name` (a plain name in a listing). Follows symbolic links;
    // nothing when the entry cannot be examined.
    static std::optional<DirectoryRecord> FromPath(const std::filesystem::path& path,
                                                   const std::string& name);
    // The same for the entry `name` of an open folder: no path is walked again for each entry.
    static std::optional<DirectoryRecord> FromFolderEntry(int folderFd, const std::string& name);
    // The ".." entry of a listing.
    static DirectoryRecord ParentEntry();

    // Appends the record's 1,104 bytes. Names longer than the field are cut to 1,023 bytes.
    void AppendTo(std::vector<std::uint8_t>& out) const;

    std::string name;
    std::uint32_t size = 0;
    std::int32_t changeTime = 0; // time stamps in the record's order, seconds since 1970
    std::int32_t accessTime = 0;
    std::int32_t modifyTime = 0;
    bool folder = false;

private:
    static DirectoryRecord FromStat(const struct stat& info, const std::string& name);
};
