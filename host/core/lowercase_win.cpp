// SPDX-License-Identifier: Apache-2.0
#include "lowercase.h"

#include <windows.h>

wchar_t LowerNonAscii(wchar_t c) {
    // The invariant locale: the same mapping whatever the user's language (no Turkish dotless i).
    wchar_t lower = c;
    if (LCMapStringEx(LOCALE_NAME_INVARIANT, LCMAP_LOWERCASE, &c, 1, &lower, 1, nullptr, nullptr, 0) != 1)
        return c;
    return lower;
}
