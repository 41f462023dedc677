// SPDX-License-Identifier: Apache-2.0
#pragma once
// Wide/UTF-8 text conversion. Module strings are std::wstring (UTF-16 on Windows, UTF-32 elsewhere);
// the instrument link and files carry UTF-8.
#include <string>
#include <string_view>

std::string ToUtf8(std::wstring_view text);
// Invalid UTF-8 sequences become U+FFFD, so bad bytes from the wire never throw.
std::wstring FromUtf8(std::string_view text);
// UTF-16 units (resource files, the Windows wire formats); unpaired surrogates become U+FFFD.
std::wstring FromUtf16(std::u16string_view text);

// towlower with Unicode case tables whatever the process locale (the "C" locale folds ASCII only), so
// the CLI and the studio sort and compare names alike.
wchar_t ToLowerChar(wchar_t c);
// Lower-cases character by character through ToLowerChar.
std::wstring ToLowerW(std::wstring_view text);
// Case-insensitive comparison through ToLowerChar, with the ordering of _wcsicmp.
int CompareNoCase(std::wstring_view a, std::wstring_view b);
bool EqualsNoCase(std::wstring_view a, std::wstring_view b);
// Ends with/starts with, case-sensitive.
bool StartsWith(std::wstring_view text, std::wstring_view prefix);
bool EndsWith(std::wstring_view text, std::wstring_view suffix);
// Without leading and trailing blanks (space, tab, CR, LF).
std::string_view TrimBlanks(std::string_view text);

// Replaces every occurrence of `from` by `to`.
std::wstring ReplaceAll(std::wstring text, std::wstring_view from, std::wstring_view to);
