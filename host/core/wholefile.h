// SPDX-License-Identifier: Apache-2.0
#pragma once
// Reading a whole local or remote ("@HOST:PATH") file into memory, refusing one larger than a bound
// before it is all read.
#include <cstdint>
#include <string>

struct WholeFileError {
    int number = 0;    // a file or link error number, or kErrTooLarge past the bound
    std::wstring text; // the back end's message, if any
};

bool ReadWholeFile(const std::wstring& name, int64_t maxSize, std::string* bytes, WholeFileError* error);
