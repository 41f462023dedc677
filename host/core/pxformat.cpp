// SPDX-License-Identifier: Apache-2.0
#include "pxformat.h"

#include "text.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cwchar>
#include <map>
#include <string>
#include <vector>

namespace {

enum class Length { None, HH, H, L, LL, LongDouble, Size, IntMax, PtrDiff, I32 };

// One conversion: %[flags][width][.precision][length]conv. Width and precision are -1 when absent
// and -2 when given as '*' (taken from the arguments).
struct Conversion {
    std::string flags;
    int width = -1;
    int precision = -1;
    Length length = Length::None;
    wchar_t conv = 0;
};

bool IsDigit(wchar_t c) {
    return c >= L'0' && c <= L'9';
}

// A width or precision at `p`: -2 for '*', the value of the digits (held below a million), or
// `absent` when neither is there.
int ParseCount(const wchar_t* format, size_t& p, int absent) {
    if (format[p] == L'*') {
        ++p;
        return -2;
    }
    if (!IsDigit(format[p]))
        return absent;
    int value = 0;
    for (; IsDigit(format[p]); ++p)
        value = value < 100000 ? value * 10 + (format[p] - L'0') : value;
    return value;
}

// The length modifier at `p` (hh, h, l, ll, w, L, z, j, t, I, I32, I64), if any.
Length ParseLength(const wchar_t* format, size_t& p) {
    switch (format[p++]) {
    case L'h':
        return format[p] == L'h' ? (++p, Length::HH) : Length::H;
    case L'l':
        return format[p] == L'l' ? (++p, Length::LL) : Length::L;
    case L'w':
        return Length::L;
    case L'L':
        return Length::LongDouble;
    case L'z':
        return Length::Size;
    case L'j':
        return Length::IntMax;
    case L't':
        return Length::PtrDiff;
    case L'I':
        if (format[p] == L'6' && format[p + 1] == L'4') {
            p += 2;
            return Length::LL;
        }
        if (format[p] == L'3' && format[p + 1] == L'2') {
            p += 2;
            return Length::I32;
        }
        return Length::Size;
    default:
        --p;
        return Length::None;
    }
}

// Parses the part after '%' at `pos`; returns false (pos untouched) when the text is no conversion.
bool ParseConversion(const wchar_t* format, size_t& pos, Conversion& conv) {
    size_t p = pos;
    for (; format[p] != 0 && std::wcschr(L"-+ 0#", format[p]); ++p)
        conv.flags += static_cast<char>(format[p]);
    conv.width = ParseCount(format, p, -1);
    if (format[p] == L'.') {
        ++p;
        conv.precision = ParseCount(format, p, 0);
    }
    conv.length = ParseLength(format, p);
    if (format[p] == 0 || !std::wcschr(L"diuxXofFeEgGaAcCsSpn", format[p]))
        return false;
    conv.conv = format[p];
    pos = p + 1;
    return true;
}

bool IsSigned(wchar_t conv) {
    return conv == L'd' || conv == L'i';
}
bool IsUnsigned(wchar_t conv) {
    return conv == L'u' || conv == L'x' || conv == L'X' || conv == L'o';
}
bool IsFloat(wchar_t conv) {
    return conv == L'f' || conv == L'F' || conv == L'e' || conv == L'E' || conv == L'g' || conv == L'G' ||
           conv == L'a' || conv == L'A';
}
// In the wide printf family %s/%c take wide text unless 'h' says narrow; %S/%C the other way round.
bool IsWideText(const Conversion& conv) {
    if (conv.conv == L's' || conv.conv == L'c')
        return conv.length != Length::H && conv.length != Length::HH;
    return conv.length == Length::L;
}

// One argument taken from the list, whatever its kind.
struct ArgValue {
    long long i = 0;
    unsigned long long u = 0;
    long double ld = 0;
    double d = 0;
    const void* ptr = nullptr;
};

// Takes the argument a conversion needs, with the type the caller passed.
ArgValue FetchArg(const Conversion& conv, va_list& args) {
    ArgValue v;
    if (IsSigned(conv.conv)) {
        switch (conv.length) {
        case Length::HH:
            v.i = static_cast<signed char>(va_arg(args, int));
            break;
        case Length::H:
            v.i = static_cast<short>(va_arg(args, int));
            break;
        case Length::L:
            v.i = va_arg(args, long);
            break;
        case Length::LL:
            v.i = va_arg(args, long long);
            break;
        case Length::Size:
        case Length::PtrDiff:
            v.i = va_arg(args, ptrdiff_t);
            break;
        case Length::IntMax:
            v.i = va_arg(args, intmax_t);
            break;
        default:
            v.i = va_arg(args, int);
            break;
        }
    } else if (IsUnsigned(conv.conv)) {
        switch (conv.length) {
        case Length::HH:
            v.u = static_cast<unsigned char>(va_arg(args, unsigned));
            break;
        case Length::H:
            v.u = static_cast<unsigned short>(va_arg(args, unsigned));
            break;
        case Length::L:
            v.u = va_arg(args, unsigned long);
            break;
        case Length::LL:
            v.u = va_arg(args, unsigned long long);
            break;
        case Length::Size:
        case Length::PtrDiff:
            v.u = va_arg(args, size_t);
            break;
        case Length::IntMax:
            v.u = va_arg(args, uintmax_t);
            break;
        default:
            v.u = va_arg(args, unsigned);
            break;
        }
    } else if (IsFloat(conv.conv)) {
        if (conv.length == Length::LongDouble)
            v.ld = va_arg(args, long double);
        else
            v.d = va_arg(args, double);
    } else if (conv.conv == L'c' || conv.conv == L'C') {
        v.u = static_cast<unsigned>(va_arg(args, int));
    } else {
        v.ptr = va_arg(args, const void*);
    }
    return v;
}

void AppendNarrow(std::wstring& out, const std::string& text) {
    for (char c : text)
        out += static_cast<wchar_t>(static_cast<unsigned char>(c));
}

void AppendPadded(std::wstring& out, const std::wstring& text, const Conversion& conv) {
    const size_t width = conv.width > 0 ? static_cast<size_t>(conv.width) : 0;
    const bool left = conv.flags.find('-') != std::string::npos;
    if (!left && text.size() < width)
        out.append(width - text.size(), L' ');
    out += text;
    if (left && text.size() < width)
        out.append(width - text.size(), L' ');
}

std::string RunSnprintf(const std::string& format, auto... value) {
    char buffer[128];
    const int n = std::snprintf(buffer, sizeof buffer, format.c_str(), value...);
    if (n < 0)
        return {};
    if (static_cast<size_t>(n) < sizeof buffer)
        return std::string(buffer, static_cast<size_t>(n));
    std::string big(static_cast<size_t>(n) + 1, '\0');
    std::snprintf(big.data(), big.size(), format.c_str(), value...);
    big.resize(static_cast<size_t>(n));
    return big;
}

// Appends one conversion with resolved width and precision (-1 when absent).
void AppendConversion(std::wstring& out, const Conversion& conv, const ArgValue& v) {
    if (conv.conv == L'n')
        return; // writing back a count is never wanted from a format text
    if (conv.conv == L's' || conv.conv == L'S') {
        std::wstring text;
        if (v.ptr == nullptr) {
            text = L"(null)";
        } else if (IsWideText(conv)) {
            const auto* s = static_cast<const wchar_t*>(v.ptr);
            size_t len = 0;
            while (s[len] != 0 && (conv.precision < 0 || len < static_cast<size_t>(conv.precision)))
                ++len;
            text.assign(s, len);
        } else {
            const auto* s = static_cast<const char*>(v.ptr);
            text = FromUtf8(s);
            if (conv.precision >= 0 && text.size() > static_cast<size_t>(conv.precision))
                text.resize(static_cast<size_t>(conv.precision));
        }
        AppendPadded(out, text, conv);
        return;
    }
    if (conv.conv == L'c' || conv.conv == L'C') {
        wchar_t c = IsWideText(conv) ? static_cast<wchar_t>(v.u)
                                     : static_cast<wchar_t>(static_cast<unsigned char>(v.u));
        AppendPadded(out, std::wstring(1, c), conv);
        return;
    }
    std::string narrow = "%" + conv.flags;
    if (conv.width >= 0)
        narrow += std::to_string(conv.width);
    if (conv.precision >= 0)
        narrow += "." + std::to_string(conv.precision);
    if (IsSigned(conv.conv)) {
        AppendNarrow(out, RunSnprintf(narrow + "lld", v.i));
    } else if (IsUnsigned(conv.conv)) {
        AppendNarrow(out, RunSnprintf(narrow + "ll" + static_cast<char>(conv.conv), v.u));
    } else if (IsFloat(conv.conv)) {
        if (conv.length == Length::LongDouble)
            AppendNarrow(out, RunSnprintf(narrow + "L" + static_cast<char>(conv.conv), v.ld));
        else
            AppendNarrow(out, RunSnprintf(narrow + static_cast<char>(conv.conv), v.d));
    } else if (conv.conv == L'p') {
        AppendNarrow(out, RunSnprintf(narrow + "p", v.ptr));
    }
}

// A '*' width or precision from the arguments; a negative width means left-justified and a negative
// precision means none, as in printf.
void ResolveStars(Conversion& conv, va_list& args) {
    if (conv.width == -2) {
        int width = va_arg(args, int);
        if (width < 0) {
            conv.flags += '-';
            width = width == INT32_MIN ? INT32_MAX : -width;
        }
        conv.width = width;
    }
    if (conv.precision == -2) {
        const int precision = va_arg(args, int);
        conv.precision = precision < 0 ? -1 : precision;
    }
}

std::wstring FormatList(const wchar_t* format, va_list& args) {
    std::wstring out;
    if (format == nullptr)
        return out;
    size_t pos = 0;
    while (format[pos] != 0) {
        const wchar_t c = format[pos++];
        if (c != L'%') {
            out += c;
            continue;
        }
        if (format[pos] == L'%') {
            out += L'%';
            ++pos;
            continue;
        }
        Conversion conv;
        const size_t start = pos;
        if (!ParseConversion(format, pos, conv)) {
            // Not a conversion: keep the text as it stands.
            out += L'%';
            pos = start;
            continue;
        }
        ResolveStars(conv, args);
        AppendConversion(out, conv, FetchArg(conv, args));
    }
    return out;
}

// One insert of a message text: its argument number and its printf form ("s" when none is given).
struct Insert {
    int number = 0;
    Conversion conv;
};

// Parses "%<n>" and an optional "!conv!" after the '%' at `pos`; false when the text is no insert.
bool ParseInsert(const wchar_t* format, size_t& pos, Insert& insert) {
    size_t p = pos;
    if (format[p] < L'1' || format[p] > L'9')
        return false;
    int number = format[p++] - L'0';
    if (format[p] >= L'0' && format[p] <= L'9')
        number = number * 10 + (format[p++] - L'0');
    insert.number = number;
    insert.conv = Conversion{};
    insert.conv.conv = L's';
    if (format[p] == L'!') {
        size_t q = p + 1;
        Conversion conv;
        // Argument-taken widths are not supported inside inserts; such an insert stays literal text.
        if (ParseConversion(format, q, conv) && format[q] == L'!' && conv.width != -2 &&
            conv.precision != -2) {
            insert.conv = conv;
            p = q + 1;
        }
    }
    pos = p;
    return true;
}

} // namespace

std::wstring PXFormat(const wchar_t* format, ...) {
    va_list args;
    va_start(args, format);
    std::wstring out = FormatList(format, args);
    va_end(args);
    return out;
}

std::wstring PXFormatMessage(const wchar_t* format, ...) {
    if (format == nullptr)
        return {};
    // First pass: the highest insert number and each number's argument type, so the arguments can be
    // taken from the list in number order.
    std::map<int, Conversion> types;
    for (size_t pos = 0; format[pos] != 0;) {
        if (format[pos++] != L'%')
            continue;
        Insert insert;
        if (ParseInsert(format, pos, insert))
            types.emplace(insert.number, insert.conv);
        else if (format[pos] != 0)
            ++pos;
    }
    std::vector<ArgValue> values;
    va_list args;
    va_start(args, format);
    const int highest = types.empty() ? 0 : types.rbegin()->first;
    for (int n = 1; n <= highest; ++n) {
        auto it = types.find(n);
        if (it != types.end()) {
            values.push_back(FetchArg(it->second, args));
        } else {
            // A number the text never uses: its type is unknown; take one pointer-sized slot.
            Conversion unused;
            unused.conv = L'p';
            values.push_back(FetchArg(unused, args));
        }
    }
    va_end(args);

    std::wstring out;
    for (size_t pos = 0; format[pos] != 0;) {
        const wchar_t c = format[pos++];
        if (c != L'%') {
            out += c;
            continue;
        }
        const wchar_t next = format[pos];
        Insert insert;
        if (ParseInsert(format, pos, insert)) {
            AppendConversion(out, insert.conv, values[static_cast<size_t>(insert.number - 1)]);
            continue;
        }
        switch (next) {
        case 0:
            out += L'%';
            break;
        case L'0':
            return out; // ends the message
        case L'n':
            out += L'\n';
            ++pos;
            break;
        case L't':
            out += L'\t';
            ++pos;
            break;
        case L'r':
            out += L'\r';
            ++pos;
            break;
        default:
            // "%%", "%!", "%." and "% " stand for the character itself.
            out += next;
            ++pos;
            break;
        }
    }
    return out;
}
