// SPDX-License-Identifier: Apache-2.0
#pragma once
// What an overwrite question is about: the name, what it would replace, and both entries when they are
// known, so the user can decide on sizes and times rather than on a name alone.
#include "fileinfo.h"

#include <optional>
#include <string>

struct OverwriteSubject {
    std::wstring name;
    std::wstring description; // a line under the question, e.g. the full name it would replace
    bool folder = false;      // a folder of that name exists: the copy would go into it
    std::optional<FileInfo> existing;
    std::optional<FileInfo> replacement;
};
