// SPDX-License-Identifier: Apache-2.0
#include "movefolder.h"

#include "text.h"

#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// UTF-8 both ways, whatever the platform's narrow code page.
fs::path ToPath(const std::wstring& path) {
    const std::string utf8 = ToUtf8(path);
    return fs::path(std::u8string(utf8.begin(), utf8.end()));
}

std::wstring FromPath(const fs::path& path) {
    const std::u8string utf8 = path.u8string();
    return FromUtf8(std::string(utf8.begin(), utf8.end()));
}

} // namespace

bool MoveFolderInto(const std::wstring& from, const std::wstring& to, std::vector<std::wstring>* kept,
                    int* error) {
    std::error_code ec;
    const fs::path source = ToPath(from);
    const fs::path target = ToPath(to);
    *error = 0;
    if (!fs::is_directory(source, ec))
        return true;
    if (!fs::exists(target, ec)) {
        fs::create_directories(target.parent_path(), ec);
        fs::rename(source, target, ec);
        *error = ec.value();
        return !ec;
    }
    std::vector<fs::path> entries;
    for (fs::directory_iterator it(source, ec), end; !ec && it != end; it.increment(ec))
        entries.push_back(it->path());
    if (ec) {
        *error = ec.value();
        return false;
    }
    for (const fs::path& entry : entries) {
        const fs::path destination = target / entry.filename();
        if (fs::exists(fs::symlink_status(destination, ec))) {
            kept->push_back(FromPath(entry.filename()));
            continue;
        }
        fs::rename(entry, destination, ec);
        if (ec) {
            *error = ec.value();
            return false;
        }
    }
    if (kept->empty())
        fs::remove(source, ec);
    return true;
}
