// SPDX-License-Identifier: Apache-2.0
#include "text.h"

#include "lowercase.h"

#include <algorithm>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

bool IsSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

void AppendUtf8(std::string& out, char32_t c) {
    if (c > 0x10FFFF || IsSurrogate(c))
        c = kReplacement;
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

void AppendWide(std::wstring& out, char32_t c) {
    if constexpr (sizeof(wchar_t) == 2) {
        if (c >= 0x10000) {
            c -= 0x10000;
            out += static_cast<wchar_t>(0xD800 + (c >> 10));
            out += static_cast<wchar_t>(0xDC00 + (c & 0x3FF));
            return;
        }
    }
    out += static_cast<wchar_t>(c);
}

// Decodes one UTF-8 sequence at `pos`; malformed, overlong, surrogate or out-of-range sequences give
// U+FFFD and consume one byte (the maximal-subpart rule would consume more; one byte is enough to
// guarantee progress and never swallows a following valid character).
char32_t DecodeUtf8(std::string_view text, size_t& pos) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(pos);
    if (lead < 0x80) {
        ++pos;
        return lead;
    }
    int length = 0;
    char32_t c = 0;
    char32_t minimum = 0;
    if ((lead & 0xE0) == 0xC0) {
        length = 2;
        c = lead & 0x1F;
        minimum = 0x80;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        c = lead & 0x0F;
        minimum = 0x800;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        c = lead & 0x07;
        minimum = 0x10000;
    } else {
        ++pos;
        return kReplacement;
    }
    if (pos + length > text.size()) {
        ++pos;
        return kReplacement;
    }
    for (int i = 1; i < length; ++i) {
        const unsigned char next = byte(pos + i);
        if ((next & 0xC0) != 0x80) {
            ++pos;
            return kReplacement;
        }
        c = (c << 6) | (next & 0x3F);
    }
    if (c < minimum || c > 0x10FFFF || IsSurrogate(c)) {
        ++pos;
        return kReplacement;
    }
    pos += length;
    return c;
}

} // namespace

std::string ToUtf8(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = static_cast<char32_t>(text[i]);
        if constexpr (sizeof(wchar_t) == 2) {
            c &= 0xFFFF;
            if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size()) {
                const char32_t low = static_cast<char32_t>(text[i + 1]) & 0xFFFF;
                if (low >= 0xDC00 && low <= 0xDFFF) {
                    c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
                    ++i;
                }
            }
        }
        AppendUtf8(out, c);
    }
    return out;
}

std::wstring FromUtf16(std::u16string_view text) {
    std::wstring out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] <= 0xDFFF) {
            c = 0x10000 + ((c - 0xD800) << 10) + (char32_t(text[i + 1]) - 0xDC00);
            ++i;
        } else if (IsSurrogate(c)) {
            c = kReplacement;
        }
        AppendWide(out, c);
    }
    return out;
}

std::wstring FromUtf8(std::string_view text) {
    std::wstring out;
    out.reserve(text.size());
    size_t pos = 0;
    while (pos < text.size())
        AppendWide(out, DecodeUtf8(text, pos));
    return out;
}

wchar_t ToLowerChar(wchar_t c) {
    // Most names are ASCII; the table look-up of towlower costs a folder listing's sort a sixth of its time.
    if (c < 0x80)
        return c >= L'A' && c <= L'Z' ? wchar_t(c + (L'a' - L'A')) : c;
    return LowerNonAscii(c);
}

std::wstring ToLowerW(std::wstring_view text) {
    std::wstring out(text);
    for (auto& c : out)
        c = ToLowerChar(c);
    return out;
}

int CompareNoCase(std::wstring_view a, std::wstring_view b) {
    const size_t n = std::min(a.size(), b.size());
    for (size_t i = 0; i < n; ++i) {
        const wchar_t ca = ToLowerChar(a[i]);
        const wchar_t cb = ToLowerChar(b[i]);
        if (ca != cb)
            return static_cast<char32_t>(ca) < static_cast<char32_t>(cb) ? -1 : 1;
    }
    if (a.size() == b.size())
        return 0;
    return a.size() < b.size() ? -1 : 1;
}

bool EqualsNoCase(std::wstring_view a, std::wstring_view b) {
    return a.size() == b.size() && CompareNoCase(a, b) == 0;
}

bool StartsWith(std::wstring_view text, std::wstring_view prefix) {
    return text.starts_with(prefix);
}

bool EndsWith(std::wstring_view text, std::wstring_view suffix) {
    return text.ends_with(suffix);
}

std::string_view TrimBlanks(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::wstring ReplaceAll(std::wstring text, std::wstring_view from, std::wstring_view to) {
    if (from.empty())
        return text;
    size_t pos = 0;
    while ((pos = text.find(from, pos)) != std::wstring::npos) {
        text.replace(pos, from.size(), to);
        pos += to.size();
    }
    return text;
}
