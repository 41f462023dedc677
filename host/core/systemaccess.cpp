// SPDX-License-Identifier: Apache-2.0
#include "systemaccess.h"

#include "registry.h"
#include "text.h"

#include <cstdlib>
#include <set>
#include <string>

namespace {

// Parses a list such as "0,1" or "0 1"; "" and "none" grant nothing; unreadable items are skipped.
std::set<int> ParseLevels(const std::string& text) {
    std::set<int> levels;
    std::string item;
    auto flush = [&] {
        if (!item.empty() && item.find_first_not_of("0123456789") == std::string::npos && item.size() < 9)
            levels.insert(std::stoi(item));
        item.clear();
    };
    for (char c : text) {
        if (c == ',' || c == ';' || c == ' ' || c == '\t')
            flush();
        else
            item += c;
    }
    flush();
    return levels;
}

} // namespace

bool CSystemAccess::Accessible(int level) {
    if (const char* env = std::getenv("VEXA_ACCESS"))
        return ParseLevels(env).count(level) != 0;
    if (const auto setting = CPXRegistry::Instance().GetString(L"Access", L"Levels"))
        return ParseLevels(ToUtf8(*setting)).count(level) != 0;
    return level == 0 || level == 1;
}
