// SPDX-License-Identifier: Apache-2.0
#pragma once
// Formatting with the Windows wide-printf meaning on every platform: %s takes a wide string
// (const wchar_t*), %S a narrow one; numeric conversions follow printf (%d, %0*d, %2d, %.01f, %.02e...).
#include <string>

std::wstring PXFormat(const wchar_t* format, ...);

// Message-table inserts: %1!s! (const wchar_t*), %2!d! (int), %n!x!/%n!u!; also %% and %n (newline)...
// The arguments are passed in order of their numbers; an insert may appear several times.
std::wstring PXFormatMessage(const wchar_t* format, ...);
