// SPDX-License-Identifier: Apache-2.0
#pragma once
// The POSIX environment calls the shared tests use, on the C runtime's own: the Windows test programs
// include this first (see CMakeLists.txt). _putenv_s changes the process environment too, so what the
// platform layer reads there sees the change.
#include <cstdlib>

inline int setenv(const char* name, const char* value, int overwrite) {
    if (!overwrite && std::getenv(name) != nullptr)
        return 0;
    return _putenv_s(name, value) == 0 ? 0 : -1;
}

inline int unsetenv(const char* name) {
    return _putenv_s(name, "") == 0 ? 0 : -1; // an empty value removes the variable here
}
