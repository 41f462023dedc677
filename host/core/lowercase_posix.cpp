// SPDX-License-Identifier: Apache-2.0
#include "lowercase.h"

#include <cwctype>

#include <locale.h>
#include <wctype.h>

wchar_t LowerNonAscii(wchar_t c) {
    // Made once; a missing UTF-8 locale leaves the process locale's towlower.
    static const locale_t utf8 = [] {
        locale_t made = newlocale(LC_CTYPE_MASK, "C.UTF-8", static_cast<locale_t>(0));
        if (made == static_cast<locale_t>(0))
            made = newlocale(LC_CTYPE_MASK, "en_US.UTF-8", static_cast<locale_t>(0));
        return made;
    }();
    if (utf8 != static_cast<locale_t>(0))
        return static_cast<wchar_t>(towlower_l(static_cast<wint_t>(c), utf8));
    return static_cast<wchar_t>(std::towlower(static_cast<wint_t>(c)));
}
