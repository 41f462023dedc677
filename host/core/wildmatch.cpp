// SPDX-License-Identifier: Apache-2.0
#include "wildmatch.h"

#include "text.h"

#include <string_view>

namespace {

wchar_t Fold(wchar_t c, bool caseSensitive) {
    return caseSensitive ? c : ToLowerChar(c);
}

// One pattern with '*' (any run) and '?' (one character); greedy with a single backtrack point,
// which is linear enough for file names.
bool MatchOne(std::wstring_view pattern, std::wstring_view name, bool caseSensitive) {
    // "*.*" is the "all files" filter: it matches names without a dot as well.
    if (pattern == L"*.*" || pattern == L"*")
        return true;
    size_t p = 0, n = 0;
    size_t starP = std::wstring_view::npos, starN = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == L'*') {
            starP = p++;
            starN = n;
        } else if (p < pattern.size() &&
                   (pattern[p] == L'?' || Fold(pattern[p], caseSensitive) == Fold(name[n], caseSensitive))) {
            ++p;
            ++n;
        } else if (starP != std::wstring_view::npos) {
            p = starP + 1;
            n = ++starN;
        } else {
            return false;
        }
    }
    while (p < pattern.size() && pattern[p] == L'*')
        ++p;
    return p == pattern.size();
}

std::wstring_view TrimSpaces(std::wstring_view text) {
    while (!text.empty() && (text.front() == L' ' || text.front() == L'\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == L' ' || text.back() == L'\t'))
        text.remove_suffix(1);
    return text;
}

} // namespace

// An empty pattern (or one of only separators) matches every name.
bool WildMatch(const std::wstring& pattern, const std::wstring& name, bool caseSensitive) {
    bool anyPattern = false;
    std::wstring_view rest(pattern);
    while (true) {
        const size_t semi = rest.find(L';');
        const std::wstring_view item = TrimSpaces(rest.substr(0, semi));
        if (!item.empty()) {
            anyPattern = true;
            if (MatchOne(item, name, caseSensitive))
                return true;
        }
        if (semi == std::wstring_view::npos)
            break;
        rest.remove_prefix(semi + 1);
    }
    return !anyPattern;
}

bool WildMatch(const std::string& pattern, const std::string& name, bool caseSensitive) {
    return WildMatch(FromUtf8(pattern), FromUtf8(name), caseSensitive);
}
