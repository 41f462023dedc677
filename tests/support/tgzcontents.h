// SPDX-License-Identifier: Apache-2.0
#pragma once
// What a gzip-compressed tar archive holds, read with libarchive: files with their bytes, folders by
// name. A damaged or truncated archive reads as not ok.
#include <map>
#include <set>
#include <string>

struct TgzContents {
    bool ok = false;
    std::map<std::string, std::string> files; // name inside the archive -> content
    std::set<std::string> folders;            // without the trailing "/"
};

TgzContents ReadTgz(const std::string& path);

// The regular files below `folder`, by path relative to it ("Data/run1.vxs"), with their bytes.
// Sub-folders whose relative path is in `skip` are left out.
std::map<std::string, std::string> FilesBelow(const std::string& folder,
                                              const std::set<std::string>& skip = {});
