// SPDX-License-Identifier: Apache-2.0
#pragma once
// The lower-case form of a character beyond ASCII, by the platform's own Unicode tables (the C
// runtime's towlower knows only ASCII on Windows and in a "C" locale elsewhere).
wchar_t LowerNonAscii(wchar_t c);
