// SPDX-License-Identifier: Apache-2.0
#include "tgzcontents.h"

#include <archive.h>
#include <archive_entry.h>
#include <filesystem>
#include <memory>

#include "tempdir.h"

namespace fs = std::filesystem;

TgzContents ReadTgz(const std::string& path) {
    TgzContents contents;
    std::unique_ptr<archive, decltype(&archive_read_free)> reader(archive_read_new(), archive_read_free);
    archive_read_support_filter_gzip(reader.get());
    archive_read_support_format_tar(reader.get());
    if (archive_read_open_filename(reader.get(), path.c_str(), 16384) != ARCHIVE_OK)
        return contents;
    archive_entry* entry = nullptr;
    int result = ARCHIVE_OK;
    while ((result = archive_read_next_header(reader.get(), &entry)) == ARCHIVE_OK) {
        std::string name = archive_entry_pathname(entry);
        if (archive_entry_filetype(entry) == AE_IFDIR) {
            if (!name.empty() && name.back() == '/')
                name.pop_back();
            contents.folders.insert(name);
            continue;
        }
        std::string data(static_cast<std::size_t>(archive_entry_size(entry)), '\0');
        if (archive_read_data(reader.get(), data.data(), data.size()) != static_cast<la_ssize_t>(data.size()))
            return contents;
        contents.files[name] = data;
    }
    contents.ok = result == ARCHIVE_EOF;
    return contents;
}

std::map<std::string, std::string> FilesBelow(const std::string& folder, const std::set<std::string>& skip) {
    std::map<std::string, std::string> files;
    for (auto it = fs::recursive_directory_iterator(folder); it != fs::recursive_directory_iterator(); ++it) {
        const std::string relative = fs::relative(it->path(), folder).generic_string();
        if (it->is_directory() && skip.count(relative)) {
            it.disable_recursion_pending();
        } else if (it->is_regular_file()) {
            files[relative] = ReadWholeFile(it->path().string());
        }
    }
    return files;
}
